// The favourites: what the owner makes of announcements, what others write, and that nothing happens without an owner.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    id: test
    name: "FavouritesModel"
    when: windowShown

    readonly property string details: "phone/topPalsDetails"
    readonly property string header: "\u00d0\u00c0\u00b0\u00a0\u0005\0\0\0"

    Component { id: models; FavouritesModel {} }
    Component { id: fences; SpeedDialModel {} }
    Component { id: spies; SignalSpy { signalName: "failed" } }
    Component {
        id: lists
        Repeater {
            delegate: Item {
                required property int place
                required property string number
                required property string dialNumber
                required property bool taken
                required property int missedCalls
                required property int unreadMessages
            }
        }
    }

    property var model
    property var list
    property var failed

    function init() {
        // Readers work one behind another: when this one has read, none of those before is at the files any more.
        const fence = createTemporaryObject(fences, test)
        tryCompare(fence, "loaded", true, 20000)
        fence.destroy() // it watches, too
        TestHandset.stopAll()
        TestHandset.remove("phone")
    }

    function cleanup() {
        model.destroy()
        TestHandset.stopAll()
    }

    function load() {
        model = createTemporaryObject(models, test)
        list = createTemporaryObject(lists, test, { model: model })
        failed = createTemporaryObject(spies, test, { target: model })
        tryCompare(model, "loaded", true)
    }

    function numbers() {
        const result = []
        for (let row = 0; row < list.count; ++row)
            result.push(list.itemAt(row).number)
        return result
    }

    function tryNumbers(expected) {
        tryVerify(() => numbers().join() === expected.join(), 20000, "has " + expected)
    }

    /// Waits until what was asked has become true, or failed.
    function tryDone() {
        tryCompare(model, "busy", false, 20000)
    }

    function test_readsWithoutWriting() {
        load()
        compare(numbers(), ["", "", "", "", ""])
        for (let row = 0; row < 5; ++row)
            compare([list.itemAt(row).place, list.itemAt(row).taken, list.itemAt(row).missedCalls], [row, false, 0])
        verify(!TestHandset.exists("phone"))
        compare(model.error, "")
    }

    function test_owner() {
        verify(TestHandset.start("zyn-recentcalld"))
        verify(TestHandset.start("zyn-favourites"))
        load()
        model.add("0301234567", "Ann")
        tryDone()
        compare(numbers(), ["1234567", "", "", "", ""])
        model.add("112", "")
        model.add("+49 30 7654321")
        tryDone()
        compare(numbers(), ["1234567", "112", "7654321", "", ""])
        model.replace(0, "0302223333", "Bob")
        tryDone()
        compare(numbers(), ["2223333", "112", "7654321", "", ""])
        model.remove(1)
        tryDone()
        compare(numbers(), ["2223333", "", "7654321", "", ""])
        compare(failed.count, 0)

        compare(TestHandset.tools(["calls add missed 0302223333", "calls add missed 0302223333"]), "")
        tryVerify(() => list.itemAt(0).missedCalls === 2, 20000)
        compare(list.itemAt(0).dialNumber, "0302223333")
        compare(list.itemAt(2).dialNumber, "+49 30 7654321")
        compare(TestHandset.tools(["favourites announce 2223333 ''"]), "")
        tryNumbers(["", "", "7654321", "", ""])
        compare(TestHandset.tool("favourites list --json").includes("7654321"), true)
        // Who comes under the same key later is somebody else.
        compare(TestHandset.tools(["favourites announce 7654321 ''"]), "")
        tryNumbers(["", "", "", "", ""])
        compare(TestHandset.tools(["favourites announce '' 0407654321"]), "")
        tryNumbers(["7654321", "", "", "", ""])
        compare(list.itemAt(0).dialNumber, "7654321")
    }

    function test_dialNumber() {
        verify(TestHandset.start("zyn-recentcalld"))
        compare(TestHandset.tools(["calls add dialed 0301234567", "calls add missed +49301234567",
            "calls add missed 112", "favourites replace '' 0301234567", "favourites replace '' 0307654321",
            "favourites replace '' 112"]), "")
        load()
        const dialed = () => [0, 1, 2, 3].map(row => list.itemAt(row).dialNumber).join()
        tryVerify(() => dialed() === "+49301234567,7654321,112,", 20000, dialed())
        compare(TestHandset.tools(["calls add missed 0401234567", "calls add missed 0307654321"]), "")
        tryVerify(() => dialed() === "0401234567,0307654321,112,", 20000, dialed())
        TestHandset.kill("zyn-recentcalld")
        compare(TestHandset.tools(["favourites remove 112"]), "")
        tryVerify(() => dialed() === "0401234567,0307654321,,", 20000, dialed())
    }

    function test_followsTheTool() {
        load()
        compare(TestHandset.tools(["favourites replace '' 0301234567"]), "")
        tryNumbers(["1234567", "", "", "", ""])
        compare(list.itemAt(0).missedCalls, 0)
        compare(TestHandset.tools(["favourites log 1234567", "favourites log 1234567 --message Hello"]), "")
        tryVerify(() => list.itemAt(0).missedCalls === 1 && list.itemAt(0).unreadMessages === 1)
        compare(TestHandset.tools(["favourites remove 1234567"]), "")
        tryNumbers(["", "", "", "", ""])
        compare(list.itemAt(0).missedCalls, 0)
    }

    /// The folder is moved away, and another comes in its place, in which the list is followed.
    function test_anotherFolder() {
        compare(TestHandset.tools(["favourites replace '' 0301234567"]), "")
        load()
        verify(TestHandset.move("phone", "phone.old"))
        tryNumbers(["", "", "", "", ""])
        compare(TestHandset.tools(["favourites replace '' 0302"]), "")
        tryNumbers(["0302", "", "", "", ""])
        verify(TestHandset.move("phone", "phone.new") && TestHandset.move("phone.old", "phone"))
        tryNumbers(["1234567", "", "", "", ""])
        verify(TestHandset.writeBytes(details, ""))
        tryVerify(() => model.error !== "", 20000)
        verify(TestHandset.remove("phone.new"))
    }

    function test_ownerIsBusy() {
        verify(TestHandset.start("zyn-favourites"))
        load()
        TestHandset.pause("zyn-favourites")
        for (const number of ["1", "2", "3"])
            model.add(number)
        wait(200)
        compare(numbers(), ["", "", "", "", ""])
        compare(model.busy, true)
        TestHandset.resume("zyn-favourites")
        tryNumbers(["1", "2", "3", "", ""])
        tryDone()
        compare(failed.count, 0)
    }

    function test_refuses_data() {
        return [
            { tag: "nothing", ask: () => model.add("") },
            { tag: "too long", ask: () => model.add("0".repeat(42)) },
            { tag: "no number of a call", ask: () => model.add("\u0661\u0662") },
            { tag: "control character", ask: () => model.add("030\n1") },
            { tag: "is one", ask: () => model.add("+49301234567") },
            { tag: "replaced by one", ask: () => model.replace(0, "5") },
            { tag: "replaced by nobody", ask: () => model.replace(0, "") },
            { tag: "full", ask: () => model.add("6"), full: true },
            { tag: "free place", ask: () => model.remove(4) },
            { tag: "no place", ask: () => model.remove(5) },
            { tag: "negative place", ask: () => model.replace(-1, "0302") }
        ]
    }

    function test_refuses(row) {
        const lines = ["favourites replace '' 0301234567", "favourites replace '' 5"]
        if (row.full)
            lines.push("favourites replace '' 2", "favourites replace '' 3", "favourites replace '' 4")
        compare(TestHandset.tools(lines), "")
        load()
        const before = numbers()
        row.ask()
        compare(failed.count, 1)
        verify(model.error !== "")
        compare(numbers(), before)
    }

    function test_damaged_data() {
        return [
            { tag: "empty", damage: () => TestHandset.writeBytes(details, "") },
            { tag: "another header", damage: () => TestHandset.writeBytes(details, "x".repeat(128)) },
            { tag: "longer", damage: () => TestHandset.writeBytes(details, header.repeat(17)) },
            { tag: "folder", damage: () => TestHandset.block(details) }
        ]
    }

    function test_damaged(row) {
        compare(TestHandset.tools(["favourites replace '' 0301234567"]), "")
        load()
        verify(row.damage())
        const size = TestHandset.size(details)
        tryVerify(() => model.error.includes(details), 20000)
        compare(numbers(), ["1234567", "", "", "", ""])
        compare(TestHandset.size(details), size)
        verify(TestHandset.remove("phone"))
        tryCompare(model, "error", "", 20000)
        tryNumbers(["", "", "", "", ""])
    }

    function test_damagedLog_data() {
        return [
            { tag: "gone", damage: () => TestHandset.remove("phone/1234567") },
            { tag: "another header", damage: () => TestHandset.writeBytes("phone/1234567", "x".repeat(4508)) }
        ]
    }

    function test_damagedLog(row) {
        compare(TestHandset.tools(["favourites replace '' 0301234567", "favourites log 1234567"]), "")
        load()
        compare(list.itemAt(0).missedCalls, 1)
        verify(row.damage())
        tryVerify(() => list.itemAt(0).missedCalls === -1, 20000)
        compare(list.itemAt(0).unreadMessages, -1)
        compare(model.error, "")
    }
}
