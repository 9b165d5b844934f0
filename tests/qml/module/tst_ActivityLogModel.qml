// The log of a favourite, as its owner and the tool write it, and from damaged files.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    id: test
    name: "ActivityLogModel"
    when: windowShown

    Component { id: models; ActivityLogModel {} }
    Component { id: fences; SpeedDialModel {} }
    Component {
        id: lists
        Repeater {
            delegate: Item {
                required property int callId
                required property string number
                required property string name
                required property date start
                required property int duration
                required property int category
                required property int callType
                required property bool completed
                required property bool isRead
                required property bool isMessage
                required property string message
            }
        }
    }

    property var model
    property var list

    function init() {
        // Readers work one behind another: when this one has read, none of those before is at the files any more.
        const fence = createTemporaryObject(fences, test)
        tryCompare(fence, "loaded", true, 20000)
        TestHandset.remove("phone")
    }

    function cleanup() {
        model.destroy()
        TestHandset.stopAll()
        TestHandset.remove("setup")
    }

    function load(number) {
        model = createTemporaryObject(models, test, { number: number })
        list = createTemporaryObject(lists, test, { model: model })
        tryCompare(model, "loaded", true)
    }

    function test_isRead() {
        compare(TestHandset.tools([
            "favourites replace '' 0301234567",
            "favourites log 1234567 --at 2026-03-01T10:00:00Z --name Anna --duration 65 --list answered --read",
            "favourites log 1234567 --at 2026-03-01T12:00:00Z --message Hello%20there",
            "favourites log 1234567 --at 2026-03-01T11:00:00Z --type ptt1 --list missed"
        ]), "")
        load("+49 30 1234567")
        const rows = []
        for (let row = 0; row < list.count; ++row) {
            const entry = list.itemAt(row)
            rows.push([entry.number, entry.name, entry.start.toISOString(), entry.duration, entry.category,
                entry.callType, entry.completed, entry.isRead, entry.isMessage, entry.message])
        }
        compare(rows, [
            ["1234567", "", "2026-03-01T12:00:00.000Z", 0, 0, 1, true, false, true, "Hello there"],
            ["1234567", "", "2026-03-01T11:00:00.000Z", 0, 2, 3, false, false, false, ""],
            ["1234567", "Anna", "2026-03-01T10:00:00.000Z", 65, 1, 1, true, true, false, ""]
        ])
        compare(model.error, "")
    }

    function test_nobody_data() {
        return [
            { tag: "no number", number: "" },
            { tag: "no favourite", number: "7654321" },
            { tag: "path", number: "../a" }
        ]
    }

    function test_nobody(row) {
        load(row.number)
        compare([model.count, model.error], [0, ""])
        verify(!TestHandset.exists("phone"))
        compare(TestHandset.tools(["favourites replace '' 1234567"]), "")
        model.reload()
        tryCompare(model, "busy", false)
        compare([model.count, model.error], [0, ""])
    }

    function test_follows() {
        verify(TestHandset.start("zyn-recentcalld"))
        verify(TestHandset.start("zyn-favourites"))
        load("1234567")
        compare(model.count, 0)
        compare(TestHandset.tools(["favourites announce '' 0301234567"]), "")
        tryVerify(() => TestHandset.exists("phone/1234567"))
        for (let call = 1; call <= 3; ++call) {
            compare(TestHandset.tools(["calls add missed 0301234567"]), "")
            tryCompare(model, "count", call, 20000)
        }
        const oldest = list.itemAt(2)
        compare(TestHandset.tools(["calls read " + oldest.callId]), "")
        tryCompare(oldest, "isRead", true, 20000)
        TestHandset.kill("zyn-favourites")
        compare(TestHandset.tools(["favourites remove 1234567"]), "")
        tryCompare(model, "count", 0)
        compare(model.error, "")
    }

    function test_anotherNumber() {
        compare(TestHandset.tools(["favourites replace '' 1", "favourites replace '' 2", "favourites log 1",
            "favourites log 2", "favourites log 2"]), "")
        load("1")
        compare(model.count, 1)
        model.number = "2"
        compare([model.count, model.loaded], [0, false])
        tryCompare(model, "count", 2)
        model.number = "1"
        model.number = "2"
        model.number = "3"
        tryCompare(model, "loaded", true)
        compare(model.count, 0)
    }

    function test_damaged_data() {
        return [
            { tag: "favourites", file: "phone/topPalsDetails", contents: "x", count: 2 },
            { tag: "header", file: "phone/1234567", contents: "x".repeat(4508), count: 0 },
            { tag: "short", file: "phone/1234567", contents: "", count: 0 },
            { tag: "fewer slots", settings: "[TopPals-UI]\nMaxItemsToLog=20\n", count: 2 }
        ]
    }

    function test_damaged(row) {
        compare(TestHandset.tools(["favourites replace '' 1234567", "favourites log 1234567",
            "favourites log 1234567"]), "")
        load("1234567")
        compare(model.count, 2)
        if (row.settings)
            verify(TestHandset.writeBytes("setup/zyn_toppals.cfg", row.settings))
        else
            verify(TestHandset.writeBytes(row.file, row.contents))
        model.reload()
        tryVerify(() => model.error !== "")
        compare(model.count, row.count)
    }
}
