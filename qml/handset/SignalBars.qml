// Five bars of reception; struck through while there is none.
pragma ComponentBehavior: Bound

import QtQuick

Row {
    id: bars

    /// 1 to 5; less is none.
    property int level
    property color color: Theme.text

    readonly property int count: 5

    spacing: 1
    Accessible.role: Accessible.Indicator
    Accessible.name: level > 0 ? qsTr("Signal: %1 of %2 bars").arg(level).arg(count) : qsTr("No signal")

    Repeater {
        model: bars.count

        Rectangle {
            required property int index

            anchors.bottom: parent.bottom
            width: Math.round(Theme.base * 0.28)
            height: Math.round(Theme.base * (0.35 + 0.18 * index))
            radius: 1
            color: bars.color
            opacity: index < bars.level ? 1 : 0.28
        }
    }
}
