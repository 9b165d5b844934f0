// The nine keys, as this process and others set them, and while the settings cannot be read or written.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    id: test
    name: "SpeedDialModel"

    readonly property string settings: "setup/zyn_app4.cfg"

    Component { id: models; SpeedDialModel {} }
    Component { id: spies; SignalSpy {} }

    function cleanup() {
        TestHandset.remove("setup")
    }

    function newModel() {
        const model = createTemporaryObject(models, test)
        tryCompare(model, "loaded", true)
        return model
    }

    function test_isRead() {
        compare(TestHandset.tools(["speed-dial set 1 0301", "speed-dial set 3 +49%20%20303"]), "")
        const model = createTemporaryObject(models, test)
        compare(model.count, 0)
        compare(model.firstFree, -1)
        compare(model.numberFor(1), "")
        tryCompare(model, "count", 9)
        compare(model.firstFree, 2)
        const numbers = []
        for (let key = 0; key <= 10; ++key)
            numbers.push(model.numberFor(key))
        compare(numbers, ["", "0301", "", "+49  303", "", "", "", "", "", "", ""])
        for (let row = 0; row < 9; ++row)
            compare(model.data(model.index(row, 0), Qt.UserRole), row + 1)
        compare(model.data(model.index(2, 0), Qt.UserRole + 1), "+49  303")
    }

    function test_sets() {
        const model = newModel()
        for (let key = 1; key <= 9; ++key)
            model.set(key, "030" + key)
        tryCompare(model, "busy", false)
        tryCompare(model, "firstFree", -1)
        compare(model.numberFor(9), "0309")
        compare(TestHandset.tool("speed-dial get 5"), "0305\nexit 0")
        model.clear(5)
        tryCompare(model, "firstFree", 5)
        compare(TestHandset.tool("speed-dial first-free"), "5\nexit 0")
        compare(model.error, "")
    }

    function test_followsOthers_data() {
        return [
            { tag: "no folder", before: [] },
            { tag: "no file", before: ["handset set sim-card 0"] },
            { tag: "a file", before: ["speed-dial set 1 0301", "speed-dial set 2 0302"] }
        ]
    }

    function test_followsOthers(row) {
        compare(TestHandset.tools(row.before), "")
        const model = newModel()
        for (const number of ["0303", "0304", ""]) {
            compare(TestHandset.tools(["speed-dial set 2 " + (number || "''")]), "")
            tryVerify(() => model.numberFor(2) === number)
        }
        verify(TestHandset.writeBytes(settings, "[Turbo Dialing]\n2=0305\n"))
        tryVerify(() => model.numberFor(2) === "0305")
        TestHandset.remove("setup")
        tryVerify(() => model.numberFor(2) === "")
        compare(TestHandset.tools(["speed-dial set 2 0306"]), "")
        tryVerify(() => model.numberFor(2) === "0306")
    }

    function test_refuses_data() {
        return [
            { tag: "key 0", key: 0 },
            { tag: "key 10", key: 10 },
            { tag: "cannot be written", key: 1, lock: true }
        ]
    }

    function test_refuses(row) {
        compare(TestHandset.tools(["speed-dial set 1 0301"]), "")
        const model = newModel()
        const failed = createTemporaryObject(spies, test, { target: model, signalName: "failed" })
        if (row.lock)
            verify(TestHandset.block(settings + ".lock"))
        model.set(row.key, "0302")
        tryCompare(failed, "count", 1)
        compare(failed.signalArguments[0][0], model.error)
        verify(model.error.includes(row.key))
        compare(model.numberFor(1), "0301")
        TestHandset.remove(settings + ".lock")
        model.set(1, "0302")
        tryVerify(() => model.numberFor(1) === "0302")
        tryCompare(model, "error", "")
    }

    function test_unreadableSettings_data() {
        return [
            { tag: "folder", damage: () => TestHandset.block(settings) },
            { tag: "too large", damage: () => TestHandset.writeBytes(settings, "#".repeat(1024 * 1024 + 1)) }
        ]
    }

    function test_unreadableSettings(row) {
        compare(TestHandset.tools(["speed-dial set 1 0301"]), "")
        const model = newModel()
        verify(row.damage())
        tryVerify(() => model.error.includes(settings))
        compare(model.numberFor(1), "0301")
        TestHandset.remove(settings)
        tryCompare(model, "error", "")
        tryVerify(() => model.numberFor(1) === "")
    }
}
