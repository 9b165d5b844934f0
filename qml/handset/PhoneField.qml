// A field for a number or a name.
import QtQuick
import QtQuick.Controls.Basic

TextField {
    id: field

    /// A number that can be dialed: digits, * # +, pauses and waits, as many as a call may have.
    property bool dialable: false

    implicitHeight: Theme.touch
    leftPadding: Theme.margin
    rightPadding: Theme.margin
    font.pixelSize: Theme.body
    color: Theme.text
    placeholderTextColor: Theme.soft
    selectionColor: Theme.accent
    selectedTextColor: Theme.onTone
    selectByMouse: true
    maximumLength: 41
    inputMethodHints: dialable ? Qt.ImhDialableCharactersOnly : Qt.ImhNone
    validator: dialable ? numbers : null
    horizontalAlignment: TextInput.AlignLeft
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText
    // A key that is held accepts once.
    Keys.onReturnPressed: event => event.accepted = event.isAutoRepeat
    Keys.onEnterPressed: event => event.accepted = event.isAutoRepeat

    background: Rectangle {
        radius: Theme.radius
        color: Theme.raised
        border.width: field.activeFocus ? 2 : 0
        border.color: Theme.accent
    }

    RegularExpressionValidator {
        id: numbers

        regularExpression: /[0-9*#+pPwW]*/
    }
}
