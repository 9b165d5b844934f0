// A text of the handset, in its font and colour.
import QtQuick

Text {
    color: Theme.text
    font.pixelSize: Theme.body
    // Told, so that it is mirrored where people read from right to left.
    horizontalAlignment: Text.AlignLeft
    elide: Text.ElideRight
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
