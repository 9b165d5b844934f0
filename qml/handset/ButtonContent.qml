// What stands on a button: an icon, a text beside it, or one of them.
import QtQuick

Item {
    id: content

    property string symbol
    property real symbolSize
    property string text
    property color ink
    property alias font: label.font

    readonly property real symbolWidth: symbol === "" ? 0 : symbolSize + (text === "" ? 0 : row.spacing)

    // Not the row's: its text is as wide as there is room.
    implicitWidth: symbolWidth + (text === "" ? 0 : label.implicitWidth)
    implicitHeight: row.implicitHeight

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Theme.gap

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: content.symbol !== ""
            name: content.symbol
            size: content.symbolSize
            color: content.ink
        }
        Text {
            id: label

            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            width: Math.min(implicitWidth, content.width - content.symbolWidth)
            elide: Text.ElideRight
            textFormat: Text.PlainText
            text: content.text
            color: content.ink
            Accessible.ignored: true
        }
    }
}
