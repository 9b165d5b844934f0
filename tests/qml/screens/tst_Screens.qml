// Takes the pictures of the window that the README shows: each screen, light and dark. scripts/screenshots runs it.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing
import "../window"

Item {
    id: root

    width: 360
    height: 720

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Phone {
        anchors.fill: parent
        focus: true
    }

    WindowCase {
        name: "Screens"
        phone: root

        readonly property string pictures: TestHandset.variable("ZYN_SCREENS")

        function initTestCase() {
            verify(pictures !== "", "ZYN_SCREENS names the folder of the pictures")
            TestWindow.speak("en")
            startServices()
            compare(TestHandset.tools([
                "favourites announce '' 0301112222", "favourites announce '' 0405553311",
                "favourites announce '' +4989777001", "calls add answered 0301113333 --duration 125",
                "calls add dialed 0405553311 --name Boris --duration 44", "calls add missed 0301112222 --name Dora",
                "calls add answered +4989777001 --name Kadri --duration 605",
                "calls add missed 0405553311 --name Boris", "calls add missed 0301112222 --name Dora",
                "status battery-capacity 68", "status battery-status 0", "status charger 1", "status network 5 26201",
                "status service-name Nordfunk", "status signal-quality 4", "status service-availability 1",
                "status roaming 0"]), "")
            tryVerify(() => MissedCalls.unread === 3, patience)
        }

        function cleanupTestCase() {
            Theme.choice = ""
        }

        function test_screens_data() {
            const rows = []
            const screens = [
                { name: "idle", open: () => Navigation.go("idle") },
                { name: "dialer", open: () => Navigation.go("dialer", { number: "11" }) },
                { name: "favourites", open: () => Navigation.go("favourites") },
                { name: "recents", open: () => Navigation.go("recents", { openRow: 1 }) },
                { name: "ringing", open: () => DeskNetwork.incoming("0301112222", "Dora") },
                { name: "in-call", open: () => {
                    DeskNetwork.incoming("0301112222", "Dora")
                    shown("callScreen")
                    DeskNetwork.answer()
                } }
            ]
            for (const screen of screens)
                for (const scheme of ["light", "dark"])
                    rows.push({ tag: `${screen.name}-${scheme}`, scheme: scheme, open: screen.open })
            return rows
        }

        function test_screens(row) {
            Theme.choice = row.scheme
            row.open()
            wait(1200) // until all that moves has come to rest
            grabImage(root).save(`${pictures}/${row.tag}.png`)
        }
    }
}
