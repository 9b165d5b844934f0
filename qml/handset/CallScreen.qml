// The call that matters most, large, and the others under it. It rings, is talked on, or is being placed.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

FocusScope {
    id: screen

    required property LineCalls line
    readonly property LineCall call: line.first
    readonly property bool rings: line.rings
    readonly property bool talks: call !== null && call.state === PhoneCalls.Connected

    objectName: "callScreen"
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Call")

    onCallChanged: settling.restart()
    onRingsChanged: {
        settling.restart()
        takeFocus()
    }
    onVisibleChanged: takeFocus()

    function takeFocus() {
        if (visible && rings)
            answerButton.forceActiveFocus()
        else if (visible)
            endButton.forceActiveFocus()
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    // While it runs, a tap may be the second of two, the first of which was for a button that was here before.
    Timer {
        id: settling

        interval: Application.styleHints.mouseDoubleClickInterval
    }
    Timer {
        id: seconds

        property date now: new Date()

        interval: 1000
        repeat: true
        running: screen.visible && screen.talks
        triggeredOnStart: true
        onTriggered: now = new Date()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.gap

        PhoneButton {
            objectName: "asideButton"
            Layout.alignment: Qt.AlignLeft
            opacity: screen.rings ? 0 : 1
            enabled: !screen.rings
            bare: true
            symbol: "down"
            text: qsTr("Leave the call aside")
            onClicked: Navigation.callsAside = true
        }
        Item {
            Layout.fillHeight: true
            Layout.maximumHeight: Theme.base * 4
        }
        Rectangle {
            id: portrait

            Layout.alignment: Qt.AlignHCenter
            implicitWidth: Theme.base * 9
            implicitHeight: implicitWidth
            radius: width / 2
            color: Theme.raised

            Icon {
                anchors.centerIn: parent
                name: "person"
                size: Theme.base * 4.4
                color: Theme.soft
            }
            Rectangle {
                anchors.fill: parent
                anchors.margins: -Theme.gap
                radius: width / 2
                color: "transparent"
                border.width: 3
                border.color: Theme.good
                visible: screen.rings

                SequentialAnimation on opacity {
                    running: screen.visible && screen.rings
                    loops: Animation.Infinite
                    NumberAnimation { from: 1; to: 0.15; duration: 700 }
                    NumberAnimation { from: 0.15; to: 1; duration: 500 }
                }
            }
        }
        PhoneText {
            objectName: "callParty"
            Layout.fillWidth: true
            Layout.topMargin: Theme.margin
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 2
            font.pixelSize: Theme.large
            text: Phrases.party(screen.call?.name, screen.call?.number)
        }
        PhoneText {
            objectName: "callNumber"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            visible: Boolean(screen.call?.name)
            color: Theme.soft
            text: screen.call?.number ?? ""
        }
        PhoneText {
            objectName: "callState"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            color: screen.rings || screen.talks ? Theme.good : Theme.soft
            text: screen.talks ? Phrases.duration((seconds.now.getTime() - screen.call.since.getTime()) / 1000)
                : Phrases.callState(screen.call?.state)
            Accessible.name: Phrases.callState(screen.call?.state)
        }
        ListView {
            objectName: "otherCalls"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.topMargin: Theme.margin
            clip: true
            spacing: Theme.gap
            model: screen.line.others
            delegate: CallRow {
                required property var modelData

                width: ListView.view.width
                call: modelData
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: Theme.margin
            spacing: Theme.margin

            PhoneButton {
                id: endButton

                objectName: "endButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: Theme.base * 4.6
                enabled: !settling.running
                opacity: 1
                tone: PhoneButton.Bad
                symbol: "hangup"
                text: screen.rings ? qsTr("Reject") : qsTr("Hang up")
                onClicked: PhoneCalls.end(screen.call.callId)
            }
            PhoneButton {
                id: answerButton

                objectName: "answerButton"
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                implicitHeight: Theme.base * 4.6
                visible: screen.rings
                enabled: !settling.running
                opacity: 1
                tone: PhoneButton.Good
                symbol: "call"
                text: qsTr("Answer")
                onClicked: PhoneCalls.answer(screen.call.callId)
            }
        }
    }
}
