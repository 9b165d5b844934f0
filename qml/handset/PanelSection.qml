// A group of what the network and the handset can be made to do.
import QtQuick
import QtQuick.Layouts

Rectangle {
    id: section

    property string title
    default property alias content: column.data

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight + 2 * Theme.margin
    radius: Theme.radius
    color: Theme.surface
    border.width: Theme.dark ? 0 : 1
    border.color: Theme.line
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: Theme.margin
        spacing: Theme.gap

        PhoneText {
            Layout.fillWidth: true
            font.pixelSize: Theme.small
            font.weight: Font.DemiBold
            color: Theme.soft
            text: section.title
            Accessible.role: Accessible.Heading
        }
    }
}
