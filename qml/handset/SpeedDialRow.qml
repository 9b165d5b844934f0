// A place of speed dial: the key, and the number that holding it calls, which is edited here.
import QtQuick
import QtQuick.Layouts

ColumnLayout {
    id: row

    required property int key
    required property string number
    property bool editing: false
    signal stored(string number)
    signal cleared

    objectName: "speedDial" + key
    spacing: 0

    RowLayout {
        visible: !row.editing
        spacing: 0

        Rectangle {
            implicitWidth: Theme.base * 2.4
            implicitHeight: implicitWidth
            radius: width / 3
            color: Theme.raised

            PhoneText {
                anchors.centerIn: parent
                text: row.key
                Accessible.name: qsTr("Key %1").arg(row.key)
            }
        }
        PhoneText {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.margin
            elide: Text.ElideLeft
            color: row.number ? Theme.text : Theme.soft
            text: row.number || qsTr("Empty")
        }
        PhoneButton {
            objectName: "speedDialEdit"
            bare: true
            symbol: row.number ? "edit" : "plus"
            symbolSize: Theme.base * 1.6
            text: row.number ? qsTr("Change the number of key %1").arg(row.key)
                : qsTr("Give key %1 a number").arg(row.key)
            onClicked: row.editing = true
        }
        PhoneButton {
            objectName: "speedDialClear"
            visible: row.number !== ""
            bare: true
            symbol: "delete"
            symbolSize: Theme.base * 1.6
            text: qsTr("Clear key %1").arg(row.key)
            onClicked: row.cleared()
        }
    }
    Loader {
        Layout.fillWidth: true
        active: row.editing
        visible: active
        // A Loader of Qt 6.4 makes no component that is bound.
        // qmllint disable unqualified
        sourceComponent: NumberEditor {
            namable: false
            prompt: qsTr("Number for key %1").arg(row.key)
            number: row.number
            onStored: number => {
                row.editing = false
                row.stored(number)
            }
            onCancelled: row.editing = false
        }
        // qmllint enable unqualified
    }
}
