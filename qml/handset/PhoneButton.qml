// A button with an icon, a text or both. Its text is its accessible name, even where only the icon is shown.
import QtQuick
import QtQuick.Controls.Basic

AbstractButton {
    id: button

    enum Tone { Plain, Soft, Accent, Good, Bad }

    property string symbol
    property int tone: PhoneButton.Plain
    property real symbolSize: Theme.icon
    property real radius: height / 2
    /// Shows the icon alone.
    property bool bare: false

    readonly property color ground: [Qt.alpha(Theme.text, 0), Theme.raised, Theme.accent, Theme.good,
        Theme.bad][button.tone]
    readonly property color ink: tone === PhoneButton.Plain ? Theme.accent
        : tone === PhoneButton.Soft ? Theme.text : Theme.onTone

    padding: Theme.gap
    leftPadding: bare ? padding : Theme.margin
    rightPadding: leftPadding
    implicitHeight: Math.max(Theme.touch, implicitContentHeight + topPadding + bottomPadding)
    implicitWidth: Math.max(Theme.touch, implicitContentWidth + leftPadding + rightPadding)
    font.pixelSize: Theme.body
    opacity: enabled ? 1 : 0.4
    focusPolicy: Qt.StrongFocus
    // Keys are not for what nobody sees.
    onVisibleChanged: if (!visible) focus = false
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: button.clicked()
    Keys.onReturnPressed: event => press(event)
    Keys.onEnterPressed: event => press(event)
    Keys.onSpacePressed: event => event.accepted = event.isAutoRepeat
    Keys.onReleased: event => event.accepted = event.isAutoRepeat

    // A key that is held presses once: the next button may have come to its place.
    function press(event) {
        if (!event.isAutoRepeat)
            clicked()
    }

    contentItem: ButtonContent {
        symbol: button.symbol
        symbolSize: button.symbolSize
        text: button.bare ? "" : button.text
        ink: button.ink
        font: button.font
    }
    background: Rectangle {
        radius: button.radius
        color: button.down || (button.hovered && button.tone === PhoneButton.Plain)
            ? Qt.tint(button.ground, Qt.alpha(Theme.text, 0.14)) : button.ground
        border.width: button.visualFocus ? 2 : 0
        border.color: button.tone < PhoneButton.Accent ? Theme.accent : Theme.text
    }

    ToolTip.visible: bare && hovered && text !== ""
    ToolTip.delay: 800
    ToolTip.text: text
}
