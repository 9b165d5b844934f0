// A group of what the network and the handset can be made to do.
import QtQuick
import QtQuick.Layouts

Card {
    id: section

    property string title
    default property alias content: column.data

    Layout.fillWidth: true
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    contentItem: ColumnLayout {
        id: column

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
