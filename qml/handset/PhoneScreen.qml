// What every screen has: a title, the way back, room for a few actions, and the content under them.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

Page {
    id: screen

    /// Whether the title has a button that leads back.
    property bool nested: false
    default property alias content: body.data
    property alias actions: actionRow.data

    padding: 0
    background: null
    Accessible.role: Accessible.Pane
    Accessible.name: title

    header: RowLayout {
        spacing: 0

        PhoneButton {
            objectName: "backButton"
            visible: screen.nested
            bare: true
            symbol: "back"
            text: qsTr("Back")
            onClicked: Navigation.back()
        }
        PhoneText {
            Layout.fillWidth: true
            Layout.leftMargin: screen.nested ? 0 : Theme.margin
            Layout.minimumHeight: Theme.touch
            Layout.topMargin: Theme.gap / 2
            Layout.bottomMargin: Theme.gap / 2
            verticalAlignment: Text.AlignVCenter
            text: screen.title
            font.pixelSize: Theme.title
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
        }
        RowLayout {
            id: actionRow

            Layout.rightMargin: Theme.gap
            spacing: 0
        }
    }

    Item {
        id: body

        anchors.fill: parent
    }
}
