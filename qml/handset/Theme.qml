// The look: every colour, size and time, told here alone.
pragma Singleton
import QtQuick

QtObject {
    id: theme

    /// "light" or "dark"; empty follows the system.
    property string choice

    // Qt before 6.5 does not tell the system's scheme, but its palette does.
    readonly property SystemPalette system: SystemPalette {}
    readonly property bool dark: choice === "dark"
        || (choice === "" && system.window.hslLightness < system.windowText.hslLightness)

    readonly property color background: dark ? "#0f1217" : "#f3f5f8"
    readonly property color surface: dark ? "#1a1f28" : "#ffffff"
    readonly property color raised: dark ? "#272e3a" : "#e6eaf0"
    readonly property color line: dark ? "#313a48" : "#d5dbe3"
    readonly property color text: dark ? "#f1f4f8" : "#141820"
    readonly property color soft: dark ? "#a3afbe" : "#566070"
    readonly property color accent: dark ? "#7db0ff" : "#1f5fd6"
    readonly property color good: dark ? "#3fcf7c" : "#157f42"
    readonly property color bad: dark ? "#ff7a70" : "#c4262b"
    readonly property color warning: dark ? "#f5bb5c" : "#8f5600"
    /// On a ground of accent, good, bad or warning.
    readonly property color onTone: dark ? "#0b0e13" : "#ffffff"

    // All sizes follow the font of the application, so that whoever needs large letters gets room for them, too.
    readonly property FontMetrics metrics: FontMetrics {}
    readonly property real base: Math.max(8, metrics.font.pixelSize)
    readonly property real small: base
    readonly property real body: base * 1.2
    readonly property real title: base * 1.6
    readonly property real large: base * 2.2
    readonly property real clock: base * 5
    readonly property real gap: base * 0.7
    readonly property real margin: base * 1.4
    readonly property real radius: base * 1.1
    readonly property real icon: base * 1.9
    /// The least side of what a finger is to meet.
    readonly property real touch: base * 3.7

    readonly property int quick: 140
    /// How long a message stays, in milliseconds.
    readonly property int messageTime: 6000
}
