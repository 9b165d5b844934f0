// Where a number is typed that is to be stored, and perhaps a name for it.
import QtQuick
import QtQuick.Layouts

ColumnLayout {
    id: editor

    property alias number: numberField.text
    property alias name: nameField.text
    property bool namable: true
    property string prompt: qsTr("Number")
    signal stored(string number, string name)
    signal cancelled

    spacing: Theme.gap
    onVisibleChanged: {
        if (visible)
            numberField.forceActiveFocus()
        else
            numberField.focus = nameField.focus = false
    }

    function store() {
        if (numberField.text !== "")
            stored(numberField.text, nameField.text)
    }

    PhoneField {
        id: numberField

        objectName: "editorNumber"
        Layout.fillWidth: true
        dialable: true
        placeholderText: editor.prompt
        onAccepted: editor.store()
    }
    PhoneField {
        id: nameField

        objectName: "editorName"
        Layout.fillWidth: true
        visible: editor.namable
        placeholderText: qsTr("Name, if you like")
        onAccepted: editor.store()
    }
    RowLayout {
        Layout.alignment: Qt.AlignRight
        spacing: Theme.gap

        PhoneButton {
            objectName: "editorCancel"
            text: qsTr("Cancel")
            onClicked: editor.cancelled()
        }
        PhoneButton {
            objectName: "editorStore"
            tone: PhoneButton.Accent
            text: qsTr("Store")
            enabled: numberField.text !== ""
            onClicked: editor.store()
        }
    }
}
