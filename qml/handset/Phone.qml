// The phone itself: its screens between status bar and tabs, and over them what comes before all: calls and the lock.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone
import ZynPhone.Handset

FocusScope {
    id: phone

    /// Those that this program looks after; null where others do.
    property Services services: null

    readonly property var screens: ({
        "activity": "ActivityScreen.qml",
        "dialer": "DialerScreen.qml",
        "favourites": "FavouritesScreen.qml",
        "idle": "IdleScreen.qml",
        "pushToTalk": "PushToTalkScreen.qml",
        "recents": "RecentsScreen.qml",
        "settings": "SettingsScreen.qml"
    })
    /// Whether the panel that plays the network is folded away, and has to be asked for.
    property bool hasFoldedPanel: false
    signal panelRequested

    readonly property bool locked: DeskNetwork.keypadLocked
    readonly property bool showsCalls: line.busy && (line.rings || locked || !Navigation.callsAside)

    /// The list that the call key opens.
    readonly property int idleList: RecentCallSettings.loaded
        ? Math.min(RecentCallSettings.idleSendView, RecentCallsModel.All) : RecentCallsModel.All

    function urlOf(name) {
        return Qt.resolvedUrl(screens[name])
    }

    function answer() {
        if (line.rings || line.first?.state === PhoneCalls.Waiting)
            PhoneCalls.answer(line.first.callId)
    }

    function hangUp() {
        if (line.busy)
            PhoneCalls.end(line.first.callId)
    }

    Component.onCompleted: stack.push(urlOf(Navigation.tab), StackView.Immediate)
    Keys.onCallPressed: {
        if (line.busy)
            answer()
        else if (!locked)
            Navigation.go("recents", {"category": idleList})
    }
    Keys.onHangupPressed: event => {
        if (!event.isAutoRepeat)
            hangUp()
    }
    Keys.onEscapePressed: {
        if (showsCalls)
            Navigation.callsAside = !line.rings
        else if (stack.depth > 1)
            Navigation.back()
        else
            Navigation.go("idle")
    }
    // Whoever types a number wants to dial it, wherever he is.
    Keys.onPressed: event => {
        const isShortcut = event.modifiers & ~(Qt.ShiftModifier | Qt.KeypadModifier)
        if (showsCalls || locked || isShortcut || !/^[0-9*#+]$/.test(event.text))
            return
        event.accepted = true
        const dialer = stack.currentItem as DialerScreen
        if (dialer)
            dialer.type(event.text)
        else
            Navigation.go("dialer", {"number": event.text})
    }

    Shortcut {
        sequences: ["Alt+A"]
        autoRepeat: false
        onActivated: phone.answer()
    }
    Shortcut {
        sequences: ["Alt+H"]
        autoRepeat: false
        onActivated: phone.hangUp()
    }
    LineCalls {
        id: line

        onBusyChanged: Navigation.callsAside = false
    }
    Connections {
        target: Navigation

        function onTabRequested(name, properties) {
            stack.replace(null, phone.urlOf(name), properties, StackView.Immediate)
        }
        function onOpenRequested(name, properties) {
            stack.push(phone.urlOf(name), properties)
        }
        function onBackRequested() {
            stack.pop()
        }
        function onMessageRequested(text) {
            messages.show(text)
        }
    }
    Connections {
        target: PhoneCalls

        function onFailed(reason) {
            messages.show(reason)
        }
        function onCallOver(callId, number, name, state) {
            if (state === PhoneCalls.Failed)
                messages.show(qsTr("The call to %1 was not put through.").arg(Phrases.party(name, number)))
        }
        function onAvailableChanged() {
            phone.services?.check()
        }
    }
    Connections {
        target: MissedCalls

        function onErrorChanged() {
            phone.services?.check()
        }
    }
    ScreenRequests {
        shown: stack.currentItem as RecentsScreen
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        PhoneHeader {
            Layout.fillWidth: true
            Layout.minimumWidth: 0
            Layout.preferredHeight: Theme.base * 2.8
            hasFoldedPanel: phone.hasFoldedPanel
            onPanelRequested: phone.panelRequested()
        }
        ServiceBar {
            Layout.fillWidth: true
            services: phone.services
        }
        PhoneButton {
            objectName: "returnButton"
            Layout.fillWidth: true
            visible: line.busy && !phone.showsCalls
            radius: 0
            tone: PhoneButton.Good
            symbol: "call"
            font.pixelSize: Theme.small
            text: qsTr("Back to the call with %1").arg(Phrases.party(line.first?.name, line.first?.number))
            onClicked: Navigation.callsAside = false
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors.fill: parent
                spacing: 0
                visible: !phone.locked && !phone.showsCalls
                onVisibleChanged: if (visible) stack.currentItem?.forceActiveFocus()

                StackView {
                    id: stack

                    objectName: "screens"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    clip: true
                    focus: true
                    // Others may ask for a screen while calls or the lock are before it: those keep the keys.
                    onCurrentItemChanged: if (visible) currentItem?.forceActiveFocus()
                }
                NavigationBar {
                    objectName: "tabs"
                    Layout.fillWidth: true
                }
            }
            LockScreen {
                anchors.fill: parent
                visible: phone.locked && !phone.showsCalls
            }
            CallScreen {
                anchors.fill: parent
                visible: phone.showsCalls
                line: line
            }
            MessageBar {
                id: messages

                anchors.left: parent.left
                anchors.right: parent.right
                anchors.top: parent.top
                anchors.margins: Theme.gap
            }
        }
    }
}
