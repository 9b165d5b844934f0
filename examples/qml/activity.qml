// The latest calls and messages of a favourite.
import QtQuick
import ZynPhone

ListView {
    id: list
    property string number: "1234567"
    width: 320
    height: 480
    model: ActivityLogModel { number: list.number }
    delegate: Text {
        required property date start
        required property bool isMessage
        required property string message
        required property bool isRead
        text: start.toLocaleString() + "  " + (isMessage ? message : "Call")
        font.bold: !isRead
    }
}
