// The window itself: where the panel of the network is in it, and what begins with it.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone.Handset
import ZynPhone.Testing

Item {
    id: root

    property ApplicationWindow main: null

    width: 100
    height: 100

    Component {
        id: component

        Main {}
    }

    WindowCase {
        name: "WindowMain"
        phone: root.main ? root.main.contentItem.parent : root

        readonly property real narrow: Theme.base * 30
        readonly property real wide: Theme.base * 80

        function initTestCase() {}

        function cleanup() {
            Theme.choice = ""
            Navigation.go("idle")
        }

        function make(properties) {
            root.main = createTemporaryObject(component, root, properties)
            verify(root.main !== null)
            tryVerify(() => root.main.active, patience)
        }

        function test_begins() {
            make({ page: "dialer", theme: "dark" })
            shown("numberField")
            compare(root.main.color, Theme.background)
            verify(Theme.dark)
        }

        function test_drawer() {
            make({ width: narrow })
            compare(find("networkPanel"), null)
            keyClick(Qt.Key_N, Qt.AltModifier)
            shown("networkPanel")
            tap("panelClose")
            isHidden("networkPanel")
            keyClick(Qt.Key_N, Qt.AltModifier)
            shown("networkPanel")
            keyClick(Qt.Key_N, Qt.AltModifier)
            isHidden("networkPanel")
        }

        function test_panelBeside() {
            make({ width: narrow })
            keyClick(Qt.Key_N, Qt.AltModifier)
            shown("networkPanel")
            root.main.width = wide
            tryVerify(() => find("networkPanel")?.mapToItem(phone, 0, 0).x === find("phone").width, patience)
            compare(find("panelClose"), null)
            keyClick(Qt.Key_N, Qt.AltModifier)
            wait(300)
            compare(itemsOf(phone, item => item.objectName === "networkPanel" && item.visible).length, 1)
            root.main.width = narrow
            isHidden("networkPanel")
            compare(find("phone").width, narrow)
        }
    }
}
