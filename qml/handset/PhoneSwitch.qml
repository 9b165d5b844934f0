// A setting that is on or off, as a row.
import QtQuick
import QtQuick.Controls.Basic

Switch {
    id: control

    implicitHeight: Math.max(Theme.touch, implicitContentHeight)
    padding: 0
    font.pixelSize: Theme.body
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checked: checked
    Accessible.onToggleAction: control.flip()
    Keys.onReturnPressed: control.flip()

    function flip() {
        toggle()
        toggled()
    }

    indicator: Rectangle {
        x: control.mirrored ? 0 : control.width - width
        y: (control.height - height) / 2
        implicitWidth: Theme.base * 3.4
        implicitHeight: Theme.base * 1.9
        radius: height / 2
        color: control.checked ? Theme.accent : Theme.raised
        border.width: control.visualFocus ? 2 : 1
        border.color: control.visualFocus ? Theme.text : Theme.line

        Rectangle {
            readonly property bool atEnd: control.checked !== control.mirrored

            x: atEnd ? parent.width - width - 3 : 3
            anchors.verticalCenter: parent.verticalCenter
            width: height
            height: parent.height - 6
            radius: height / 2
            color: control.checked ? Theme.onTone : Theme.soft

            Behavior on x { NumberAnimation { duration: Theme.quick } }
        }
    }
    contentItem: PhoneText {
        rightPadding: control.mirrored ? 0 : control.indicator.width + Theme.gap
        leftPadding: control.mirrored ? control.indicator.width + Theme.gap : 0
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        text: control.text
        opacity: control.enabled ? 1 : 0.5
        Accessible.ignored: true
    }
}
