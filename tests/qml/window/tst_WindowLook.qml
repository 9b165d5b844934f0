// What holds for every screen: names for screen readers, languages, the direction of reading, and both schemes.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing

Item {
    id: root

    width: 900
    height: 720
    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Phone {
        id: phone

        anchors.left: parent.left
        width: 360
        height: parent.height
        focus: true
    }
    NetworkPanel {
        id: panel

        anchors.left: phone.right
        anchors.right: parent.right
        height: parent.height
    }

    WindowCase {
        name: "WindowLook"
        phone: root

        readonly property var screens: [
            { tag: "idle", open: () => Navigation.go("idle") },
            { tag: "dialer", open: () => Navigation.go("dialer", { number: "112" }) },
            { tag: "recents", open: () => Navigation.go("recents", { openRow: 0 }) },
            { tag: "favourites", open: () => Navigation.go("favourites", { number: "0301112233" }) },
            { tag: "push-to-talk", open: () => Navigation.go("pushToTalk") },
            { tag: "settings", open: () => Navigation.open("settings") },
            { tag: "activity", open: () => Navigation.open("activity", { number: "1112222" }) },
            { tag: "locked", open: () => { DeskNetwork.keypadLocked = true; tap("emergencyButton") } },
            { tag: "call", open: () => { DeskNetwork.incoming("0301"); shown("callScreen") } }
        ]

        function initTestCase() {
            startServices()
            compare(TestHandset.tools(["calls add missed 0301112222", "favourites announce '' 0301112222"]), "")
        }

        function cleanupTestCase() {
            Theme.choice = ""
            TestWindow.speak("en")
        }

        function test_names_data() { return screens }

        function test_names(row) {
            row.open()
            wait(300)
            const pressable = itemsOf(root, item => item.visible && (item instanceof AbstractButton
                || item instanceof TextField || item instanceof Slider))
            verify(pressable.length > 5)
            for (const item of pressable) {
                const what = `${item} ${item.objectName} ${item.text}`
                verify(item.Accessible.name !== "", what)
                verify(item.Accessible.role !== Accessible.NoRole, what)
                verify(item.width > 0 && item.height > 0, what)
            }
        }

        function test_narrow_data() { return screens }

        // In the least width that the window has, nothing is cut off.
        function test_narrow(row) {
            phone.width = Theme.base * 24
            TestWindow.speak("de")
            row.open()
            wait(300)
            const buttons = itemsOf(phone, item => item.visible && item instanceof AbstractButton)
            verify(buttons.length > 0)
            for (const item of buttons) {
                const left = item.mapToItem(phone, 0, 0).x
                verify(left >= 0 && left + item.width <= phone.width + 1, `${item.objectName} ${item.text} ${left}`)
            }
            TestWindow.speak("en")
            phone.width = 360
        }

        function test_german_data() { return screens }

        // A text that is the same in both languages is a name, a number, or was forgotten.
        function test_german(row) {
            const texts = () => {
                row.open()
                wait(300)
                const all = itemsOf(root, item => item.visible && item instanceof Text
                    && /^\D*[A-Za-z]{4,}\D*$/.test(item.text)).map(item => item.text)
                cleanup()
                return all
            }
            TestWindow.speak("en")
            const english = texts()
            verify(TestWindow.speak("de"))
            const german = texts()
            TestWindow.speak("en")
            verify(english.length > 0 && german.length > 0)
            const same = german.filter(text => english.includes(text))
            const international = ["WXYZ", "PQRS", "Nordfunk", "System", "Name", "Roaming"]
            compare(same.filter(text => !international.includes(text)), [])
        }

        function test_plurals() {
            TestWindow.speak("en")
            tryVerify(() => find("missedCard") !== null, patience)
            compare(find("missedCard").summary, "1 missed call")
        }

        function test_rightToLeft() {
            const left = find("tab_idle").mapToItem(root, 0, 0).x
            TestWindow.speak("ar")
            tryVerify(() => find("tab_idle").mapToItem(root, 0, 0).x > left, patience)
            verify(phone.x > panel.x)
            Navigation.go("dialer")
            // The keys of a telephone stay where they are.
            verify(shown("key1").mapToItem(root, 0, 0).x < shown("key3").mapToItem(root, 0, 0).x)
            TestWindow.speak("en")
            tryVerify(() => panel.x > phone.x, patience)
        }

        function test_schemes_data() { return screens }

        function test_schemes(row) {
            row.open()
            const brightness = {}
            for (const choice of ["light", "dark"]) {
                Theme.choice = choice
                wait(300)
                const image = grabImage(root)
                let sum = 0
                for (let x = 4; x < root.width; x += 30) {
                    for (let y = 4; y < root.height; y += 30)
                        sum += image.red(x, y) + image.green(x, y) + image.blue(x, y)
                }
                brightness[choice] = sum / (3 * Math.ceil(root.width / 30) * Math.ceil(root.height / 30))
            }
            verify(brightness.light > 160, brightness.light)
            verify(brightness.dark < 90, brightness.dark)
        }
    }
}
