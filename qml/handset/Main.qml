// The window: the phone, and the panel that plays its network beside it where there is room, else in a drawer.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone.Handset

ApplicationWindow {
    id: window

    property string theme
    property Services services: null
    /// The screen to begin with.
    property string page: "idle"
    readonly property bool wide: width >= Theme.base * 56
    readonly property bool mirrored: Application.layoutDirection === Qt.RightToLeft

    width: Math.round(Theme.base * 30)
    height: Math.round(Theme.base * 60)
    minimumWidth: Math.round(Theme.base * 24)
    minimumHeight: Math.round(Theme.base * 40)
    visible: true
    title: qsTr("Phone")
    color: Theme.background
    font.pixelSize: Theme.body
    palette {
        window: Theme.background
        windowText: Theme.text
        base: Theme.surface
        text: Theme.text
        button: Theme.raised
        buttonText: Theme.text
        highlight: Theme.accent
        highlightedText: Theme.onTone
        toolTipBase: Theme.surface
        toolTipText: Theme.text
    }
    Component.onCompleted: {
        Theme.choice = theme
        Navigation.go(page)
    }

    Shortcut {
        sequences: [StandardKey.Quit] // qmllint disable unqualified
        onActivated: Qt.quit()
    }
    Shortcut {
        sequences: ["Alt+N"]
        enabled: !drawer.visible
        onActivated: window.openPanel()
    }

    function openPanel() {
        if (!wide)
            drawer.open()
    }

    Item {
        anchors.fill: parent
        LayoutMirroring.enabled: window.mirrored
        LayoutMirroring.childrenInherit: true

        Phone {
            id: phone

            objectName: "phone"
            anchors.left: parent.left
            anchors.top: parent.top
            anchors.bottom: parent.bottom
            width: window.wide ? Math.min(Math.round(parent.height * 0.62), parent.width - Theme.base * 28)
                : parent.width
            focus: true
            services: window.services
            hasFoldedPanel: !window.wide
            onPanelRequested: window.openPanel()
        }
        Loader {
            anchors.left: phone.right
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.bottom: parent.bottom
            active: window.wide
            sourceComponent: NetworkPanel {}
        }
    }
    Drawer {
        id: drawer

        edge: window.mirrored ? Qt.LeftEdge : Qt.RightEdge
        width: Math.min(window.width, Theme.base * 30)
        height: window.height
        interactive: !window.wide
        padding: 0
        onAboutToShow: panel.active = true

        // While the drawer is open, the window's own shortcuts are not heard.
        Shortcut {
            sequences: ["Alt+N"]
            enabled: drawer.visible
            onActivated: drawer.close()
        }
        Loader {
            id: panel

            anchors.fill: parent
            active: false
            LayoutMirroring.enabled: window.mirrored
            LayoutMirroring.childrenInherit: true
            sourceComponent: NetworkPanel {
                closable: true
                onClosed: drawer.close() // qmllint disable unqualified
            }
        }
    }
    onWideChanged: if (wide) drawer.close()
}
