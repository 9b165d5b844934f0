// A sheet on the background, for what belongs together.
import QtQuick
import QtQuick.Controls.Basic

Pane {
    padding: Theme.margin
    background: Rectangle {
        radius: Theme.radius
        color: Theme.surface
        border.width: Theme.dark ? 0 : 1
        border.color: Theme.line
    }
}
