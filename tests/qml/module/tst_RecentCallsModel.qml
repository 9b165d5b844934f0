// The log of recent calls as a list: what is in it, that it follows the log, and that a service that is away or hangs
// costs neither rows nor the user's time.
import QtQml.Models
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    id: test
    name: "RecentCallsModel"

    readonly property int patience: 20000
    property bool isServed: false

    function killService() {
        TestHandset.kill("zyn-recentcalld")
        isServed = false
    }

    RecentCallsModel { id: calls }
    RecentCallsModel { id: others; category: RecentCallsModel.Dialed }
    Instantiator { id: rows; model: calls; QtObject { required property var model } }
    Instantiator { id: otherRows; model: others; QtObject { required property var model } }

    SignalSpy { id: inserted; target: calls; signalName: "rowsInserted" }
    SignalSpy { id: removed; target: calls; signalName: "rowsRemoved" }
    SignalSpy { id: changed; target: calls; signalName: "dataChanged" }
    SignalSpy { id: reset; target: calls; signalName: "modelReset" }
    SignalSpy { id: failures; target: calls; signalName: "failed" }

    Timer { id: ticks; property int count: 0; interval: 10; repeat: true; onTriggered: ++count }

    Component {
        id: list
        RecentCallsModel {}
    }

    function numbers(view) {
        let texts = []
        for (let row = 0; row < view.count; ++row)
            texts.push(view.objectAt(row).model.number)
        return texts.join(" ")
    }

    /// As tryVerify(), which looks more seldom. What @p found gives tells why it was in vain.
    function until(condition, found = () => "") {
        for (let waited = 0; waited < patience && !condition(); waited += 5)
            wait(5)
        verify(condition(), found())
    }

    function numbersAre(view, expected) {
        until(() => numbers(view) === expected, () => `has ${numbers(view)}, not ${expected}`)
    }

    /// Reads @p models again, and waits until that, and all that was asked for before it, has ended.
    function settle(...models) {
        const ended = new Set()
        const notes = models.map(model => () => { if (!model.busy) ended.add(model) })
        models.forEach((model, index) => model.busyChanged.connect(notes[index]))
        for (const model of models)
            model.reload()
        until(() => models.every(model => ended.has(model) && !model.busy))
        models.forEach((model, index) => model.busyChanged.disconnect(notes[index]))
    }

    function init() {
        if (!isServed)
            verify(TestHandset.start("zyn-recentcalld"))
        isServed = true
        verify(TestHandset.clearCalls())
        calls.category = RecentCallsModel.All
        calls.callType = RecentCallsModel.AnyType
        others.category = RecentCallsModel.Dialed
        settle(calls, others)
        for (const model of [calls, others])
            compare([model.error, model.count], ["", 0])
        for (const spy of [inserted, removed, changed, reset, failures])
            spy.clear()
    }

    function cleanupTestCase() {
        TestHandset.stopAll()
    }

    function test_roles_data() {
        const start = new Date("2024-05-31T18:30:00+02:00")
        const voice = { strictRead: false, pttPartyType: -1, pttIdType: 0, pttSession: "", isRead: false, duration: 0,
                        name: "", number: "030123", start: start, callType: RecentCallsModel.Voice }
        const as = differences => Object.assign({}, voice, differences)
        return [
            { tag: "missed", line: "missed 030123 --name Anna", call: as({
                category: RecentCallsModel.Missed, name: "Anna", completed: false }) },
            { tag: "answered", line: "answered 030123 --duration 75 --read", call: as({
                category: RecentCallsModel.Answered, duration: 75, isRead: true, completed: true }) },
            { tag: "dialed, in Latin-1", line: "dialed 030123 --name Jürgen --not-completed", call: as({
                category: RecentCallsModel.Dialed, name: "Jürgen", completed: false }) },
            { tag: "push-to-talk", line: "answered 77 --type ptt1 --session kanal-ä", call: as({
                category: RecentCallsModel.Answered, number: "77", completed: true, pttPartyType: 0,
                callType: RecentCallsModel.PushToTalk, pttSession: "kanal-ä" }) },
            { tag: "push-to-talk group", call: as({
                category: RecentCallsModel.Dialed, number: "78", completed: true, strictRead: true, pttPartyType: 5,
                pttIdType: -2, callType: RecentCallsModel.PushToTalkGroup }) }
        ]
    }

    function test_roles(row) {
        const call = row.call
        if (row.line)
            compare(TestHandset.tools([`calls add ${row.line} --at 2024-05-31T18:30:00`]), "")
        else
            verify(TestHandset.addPttCall(call.category, call.number, call.start, call.pttPartyType, call.pttIdType))
        calls.reload()
        tryCompare(calls, "count", 1, patience)
        const shown = rows.objectAt(0).model
        for (const role in call)
            compare(shown[role], call[role], role)
        verify(shown.callId >= 0)
    }

    function test_selects_data() {
        const category = RecentCallsModel
        return [
            { tag: "all", category: category.All, type: category.AnyType, numbers: "6 5 4 3 2 1" },
            { tag: "a list", category: category.Missed, type: category.AnyType, numbers: "4 2" },
            { tag: "a type of a list", category: category.Missed, type: category.PushToTalk, numbers: "4" },
            { tag: "a type", category: category.All, type: category.Voice, numbers: "6 3 2 1" },
            { tag: "an empty one", category: category.Answered, type: category.PushToTalk, numbers: "" },
            { tag: "no type of ours", category: category.All, type: 9, numbers: "" }
        ]
    }

    function test_selects(row) {
        const log = RecentCallsModel
        verify(TestHandset.addCalls([[log.Answered, 1], [log.Missed, 2], [log.Dialed, 3],
                                     [log.Missed, 4, log.PushToTalk], [log.Dialed, 5, log.PushToTalkGroup],
                                     [log.Answered, 6]]))
        calls.callType = 77
        calls.category = row.category
        calls.callType = row.type
        compare(calls.count, 0)
        until(() => calls.loaded && !calls.busy)
        numbersAre(rows, row.numbers)
        calls.clear()
        numbersAre(rows, "")
        calls.category = RecentCallsModel.All
        calls.callType = RecentCallsModel.AnyType
        const left = "6 5 4 3 2 1".split(" ").filter(number => !row.numbers.split(" ").includes(number)).join(" ")
        numbersAre(rows, left)
    }

    function test_refusesCategories() {
        for (const category of [0, 5, -1]) {
            ignoreWarning(new RegExp("there is no category " + category))
            calls.category = category
            compare(calls.category, RecentCallsModel.All)
        }
    }

    /// What others do, and what is told of it.
    function test_follows_data() {
        return [
            { tag: "a missed call", lines: ["calls add missed 2"], numbers: "2 1" },
            { tag: "a dialed call that is over", lines: ["calls add dialed 2", "status voice-call-changed"],
              numbers: "2 1" },
            { tag: "a burst", lines: [2, 3, 4, 5, 6, 7].map(number => `calls add missed ${number}`),
              numbers: "7 6 5 4 3 2 1" },
            { tag: "all are gone", lines: ["calls clear missed"], numbers: "" }
        ]
    }

    function test_follows(row) {
        verify(TestHandset.addCalls([[RecentCallsModel.Missed, 1]]))
        numbersAre(rows, "1")
        compare(TestHandset.tools(row.lines), "")
        numbersAre(rows, row.numbers)
        compare(reset.count, 0)
    }

    /// One model changes dialed calls, of which the service tells nobody, and the other shows them as well.
    function test_changes_data() {
        return [
            { tag: "removes", change: model => model.remove(1), numbers: "3 1", read: "false false" },
            { tag: "removes twice", change: model => { model.remove(1); model.remove(1) }, numbers: "3 1",
              read: "false false" },
            { tag: "removes no row", change: model => { model.remove(-1); model.remove(3) }, numbers: "3 2 1",
              read: "false false false" },
            { tag: "clears", change: model => model.clear(), numbers: "", read: "" },
            { tag: "clears, and is gone", change: () => {
                const model = list.createObject(test, { category: RecentCallsModel.Dialed })
                model.clear()
                model.destroy()
            }, numbers: "", read: "" },
            { tag: "marks one", change: model => model.markRead(0), numbers: "3 2 1", read: "true false false" },
            { tag: "marks no row", change: model => model.markRead(7), numbers: "3 2 1", read: "false false false" },
            { tag: "marks all", change: model => model.markAllRead(), numbers: "3 2 1", read: "true true true" }
        ]
    }

    function test_changes(row) {
        verify(TestHandset.addCalls([1, 2, 3].map(number => [RecentCallsModel.Dialed, number])))
        for (const model of [calls, others])
            model.reload()
        numbersAre(rows, "3 2 1")
        numbersAre(otherRows, "3 2 1")
        row.change(others)
        for (const view of [rows, otherRows]) {
            numbersAre(view, row.numbers)
            tryVerify(() => {
                let read = []
                for (let index = 0; index < view.count; ++index)
                    read.push(view.objectAt(index).model.isRead)
                return read.join(" ") === row.read
            }, patience)
        }
        compare(reset.count, 0)
        compare(failures.count, 0)
        compare(others.error, "")
    }

    function test_keepsRows() {
        verify(TestHandset.addCalls([1, 2, 3].map(number => [RecentCallsModel.Missed, number])))
        numbersAre(rows, "3 2 1")
        const kept = [rows.objectAt(0), rows.objectAt(2)]
        for (const spy of [inserted, removed, changed])
            spy.clear()
        calls.remove(1)
        numbersAre(rows, "3 1")
        verify(TestHandset.addCalls([[RecentCallsModel.Missed, 4]]))
        numbersAre(rows, "4 3 1")
        calls.markRead(2)
        until(() => rows.objectAt(2).model.isRead)
        compare([rows.objectAt(1), rows.objectAt(2)], kept)
        compare([inserted.count, removed.count, changed.count, reset.count], [1, 1, 1, 0])
    }

    /// A view that is told of a row may ask for another list at once.
    function test_changesItsMind_data() {
        return [{ tag: "rowsInserted" }, { tag: "countChanged" }, { tag: "rowsRemoved" }, { tag: "loadedChanged" }]
    }

    function test_changesItsMind(row) {
        verify(TestHandset.addCalls([[RecentCallsModel.Missed, 1], [RecentCallsModel.Missed, 2],
                                     [RecentCallsModel.Answered, 3]]))
        const model = list.createObject(test, { category: RecentCallsModel.Answered })
        tryCompare(model, "count", 1, patience)
        model[row.tag].connect(() => { model.category = RecentCallsModel.Missed })
        model.category = RecentCallsModel.All
        until(() => model.category === RecentCallsModel.Missed && model.loaded && model.count === 2)
        model.destroy()
    }

    function test_withoutService_data() {
        return [
            { tag: "remove", change: () => calls.remove(0) },
            { tag: "clear", change: () => calls.clear() },
            { tag: "markRead", change: () => calls.markRead(0) },
            { tag: "markAllRead", change: () => calls.markAllRead() },
            { tag: "reload", change: () => calls.reload() }
        ]
    }

    function test_withoutService(row) {
        verify(TestHandset.addCalls([[RecentCallsModel.Missed, 1]]))
        numbersAre(rows, "1")
        killService()
        row.change()
        until(() => failures.count > 0)
        verify(failures.signalArguments[0][0].includes("zyn-recentcalld"))
        tryCompare(calls, "error", failures.signalArguments[0][0], patience)
        numbersAre(rows, "1")
        // What fails again, as the service is still away, is told no more.
        settle(calls)
        const told = failures.count
        settle(calls)
        compare(failures.count, told)
        const late = list.createObject(test)
        until(() => late.error !== "" && !late.loaded)
        verify(isServed = TestHandset.start("zyn-recentcalld"))
        for (const model of [calls, late])
            until(() => model.loaded && model.error === "" && model.count === 1)
        late.destroy()
    }

    function test_lastDialed() {
        tryCompare(calls, "lastDialed", "", patience)
        compare(TestHandset.tools(["calls add dialed 1", "calls add dialed 2 --type ptt1"]), "")
        calls.refreshLastDialed()
        tryCompare(calls, "lastDialed", "2", patience)
        killService()
        const late = list.createObject(test)
        tryCompare(late, "lastDialed", "2", patience)
        late.destroy()
    }

    /// What happens while the service hangs, and what the list is when it goes on.
    function test_hangs_data() {
        return [
            { tag: "nothing", meanwhile: () => {}, numbers: "2 1" },
            { tag: "another list", meanwhile: () => { calls.category = RecentCallsModel.Missed }, numbers: "2" },
            { tag: "there and back", meanwhile: () => {
                calls.category = RecentCallsModel.Missed
                calls.category = RecentCallsModel.All
            }, numbers: "2 1" },
            { tag: "another list, then another type", meanwhile: () => {
                calls.category = RecentCallsModel.Missed
                calls.callType = RecentCallsModel.PushToTalk
            }, numbers: "" },
            { tag: "another model comes and goes", meanwhile: () => {
                const model = list.createObject(test)
                tryCompare(model, "busy", true)
                model.destroy()
                wait(50)
            }, numbers: "2 1" }
        ]
    }

    function test_hangs(row) {
        verify(TestHandset.addCalls([[RecentCallsModel.Answered, 1], [RecentCallsModel.Missed, 2]]))
        calls.reload()
        numbersAre(rows, "2 1")
        TestHandset.pause("zyn-recentcalld")
        calls.reload()
        tryCompare(calls, "busy", true)
        row.meanwhile()
        if (row.numbers !== "2 1")
            compare(calls.count, 0)
        const seen = []
        const see = () => seen.push(numbers(rows))
        rows.objectAdded.connect(see)
        ticks.count = 0
        ticks.start()
        until(() => ticks.count >= 20)
        verify(calls.busy)
        TestHandset.resume("zyn-recentcalld")
        until(() => calls.loaded && !calls.busy)
        numbersAre(rows, row.numbers)
        ticks.stop()
        rows.objectAdded.disconnect(see)
        verify(row.numbers.includes("1") || !seen.join().includes("1"), seen.join())
    }

    /// What an engine that is gone has asked for comes to nobody, and what it has changed is told to the others.
    function test_outlivesEngines() {
        verify(TestHandset.addCalls([[RecentCallsModel.Dialed, 1], [RecentCallsModel.Dialed, 2]]))
        calls.reload()
        numbersAre(rows, "2 1")
        TestHandset.pause("zyn-recentcalld")
        verify(TestHandset.runElsewhere(`
            import QtQml
            import ZynPhone
            QtObject {
                property list<QtObject> models: [
                    RecentCallsModel { category: RecentCallsModel.Dialed },
                    RecentCallsModel {}
                ]
                property bool done: models[0].busy && models[1].busy && MissedCalls.error === ""
                Component.onCompleted: { models[0].clear(); RecentScreens.pickNumber() }
            }`))
        TestHandset.resume("zyn-recentcalld")
        numbersAre(rows, "")
    }
}
