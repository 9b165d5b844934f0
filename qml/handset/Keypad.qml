// The twelve keys. They keep their places where people read from right to left, as on every telephone.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts

GridLayout {
    id: keypad

    signal pressed(string digit)
    signal held(string digit)

    readonly property var keys: [
        ["1", ""], ["2", "ABC"], ["3", "DEF"],
        ["4", "GHI"], ["5", "JKL"], ["6", "MNO"],
        ["7", "PQRS"], ["8", "TUV"], ["9", "WXYZ"],
        ["*", ""], ["0", "+"], ["#", ""]
    ]

    LayoutMirroring.enabled: false
    layoutDirection: Qt.LeftToRight
    columns: 3
    rowSpacing: Theme.gap
    columnSpacing: Theme.gap

    Repeater {
        model: keypad.keys

        KeypadKey {
            required property var modelData

            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: Theme.base * 2.4
            Layout.preferredHeight: Theme.base * 4.6
            digit: modelData[0]
            letters: modelData[1]
            onClicked: keypad.pressed(digit)
            onPressAndHold: keypad.held(digit)
        }
    }
}
