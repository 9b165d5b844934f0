// One icon in one colour; it says nothing to a screen reader, as what it stands on has the name.
import QtQuick

Canvas {
    id: icon

    property string name
    property color color: Theme.text
    property real size: Theme.icon

    readonly property var turn: Icons.turned[name] ?? null
    readonly property string drawing: turn ? turn.name : name
    readonly property bool mirrored: LayoutMirroring.enabled && Icons.directed.includes(name)

    implicitWidth: Math.round(size)
    implicitHeight: Math.round(size)
    rotation: turn ? turn.angle : 0
    transform: Scale { origin.x: icon.width / 2; xScale: icon.mirrored ? -1 : 1 }
    Accessible.ignored: true

    onNameChanged: requestPaint()
    onColorChanged: requestPaint()
    onSizeChanged: requestPaint()

    onPaint: {
        const context = getContext("2d")
        context.reset()
        context.scale(width / 24, height / 24)
        context.lineWidth = 2
        context.lineCap = "round"
        context.lineJoin = "round"
        context.strokeStyle = color
        context.fillStyle = color
        const fill = Icons.fills[drawing]
        const line = Icons.lines[drawing]
        if (fill) {
            context.path = fill
            context.fill()
        }
        if (line) {
            context.path = line
            context.stroke()
        }
    }
}
