// The top of the phone: its status bar, and the way to the panel that plays the network, where that is folded away.
import QtQuick
import QtQuick.Layouts

RowLayout {
    id: header

    property bool hasFoldedPanel: false
    signal panelRequested

    spacing: 0

    StatusBar {
        objectName: "statusBar"
        Layout.fillWidth: true
    }
    PhoneButton {
        objectName: "panelButton"
        Layout.preferredHeight: Theme.base * 2.2
        Layout.rightMargin: Theme.gap
        visible: header.hasFoldedPanel
        bare: true
        padding: 0
        implicitWidth: Theme.base * 3
        tone: PhoneButton.Soft
        symbol: "network"
        symbolSize: Theme.base * 1.5
        text: qsTr("Play the network")
        onClicked: header.panelRequested()
    }
}
