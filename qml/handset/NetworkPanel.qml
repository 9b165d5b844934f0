// Beside the phone: plays the network, the other party and the state of the handset, as somebody at a desk does.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

Pane {
    id: panel

    signal closed
    property bool closable: false

    objectName: "networkPanel"
    padding: 0
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Network")
    background: Rectangle {
        color: Qt.darker(Theme.background, Theme.dark ? 1.25 : 1.03)
    }

    Connections {
        target: DeskNetwork

        function onRefused(reason) {
            refusal.show(reason)
        }
    }
    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.margin

            PhoneText {
                Layout.fillWidth: true
                Layout.minimumHeight: Theme.touch
                verticalAlignment: Text.AlignVCenter
                font.pixelSize: Theme.title
                font.weight: Font.DemiBold
                text: qsTr("The network")
                Accessible.role: Accessible.Heading
            }
            PhoneButton {
                objectName: "panelClose"
                visible: panel.closable
                bare: true
                symbol: "close"
                text: qsTr("Close the network's panel")
                onClicked: panel.closed()
            }
        }
        MessageBar {
            id: refusal

            objectName: "panelMessage"
            Layout.fillWidth: true
            Layout.margins: Theme.gap
        }
        ListPlaceholder {
            objectName: "panelPlaceholder"
            Layout.fillWidth: true
            Layout.margins: Theme.margin * 2
            visible: !DeskNetwork.available
            symbol: "network"
            title: qsTr("Nothing to play")
            text: qsTr("The phone server does not run, or a modem makes its calls. Start zyn-phoned without --modem to "
                + "play the network here.")
        }
        Flickable {
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentHeight: column.implicitHeight + Theme.margin
            clip: true
            enabled: DeskNetwork.available
            visible: DeskNetwork.available
            ScrollBar.vertical: ScrollBar {}

            ColumnLayout {
                id: column

                x: Theme.margin
                width: parent.width - 2 * Theme.margin
                spacing: Theme.margin

                PanelCalls {}
                PanelStates {
                    Layout.fillWidth: true
                }
                PanelScript {}
            }
        }
        Item {
            Layout.fillHeight: true
            visible: !DeskNetwork.available
        }
    }
}
