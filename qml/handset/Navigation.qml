// Which screen is shown. Screens ask for others, and for a message, here, and know nothing of each other.
pragma Singleton
import QtQuick

QtObject {
    id: navigation

    /// The screen at the bottom of those that are open: its name in the table of Phone.qml.
    property string tab: "idle"
    /// Whether the calls on the line are left aside to see another screen.
    property bool callsAside: false

    /// A screen takes the place of all others.
    signal tabRequested(string name, var properties)
    /// A screen is laid on the one that is shown.
    signal openRequested(string name, var properties)
    signal backRequested
    signal messageRequested(string text)

    function go(name, properties) {
        tab = name
        tabRequested(name, properties ?? {})
    }

    function open(name, properties) {
        openRequested(name, properties ?? {})
    }

    function back() {
        backRequested()
    }

    function say(text) {
        messageRequested(text)
    }
}
