// The calls of a phone server that is played, ended, started again and stopped, and requests to it.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

PhoneCase {
    id: tests
    name: "PhoneCalls"
    spies: [failures, overs, rings]

    property var states: []
    property int turns: 0

    SignalSpy { id: failures; target: PhoneCalls; signalName: "failed" }
    SignalSpy { id: overs; target: PhoneCalls; signalName: "callOver" }
    SignalSpy { id: rings; target: PhoneCalls; signalName: "ringingChanged" }
    SignalSpy { id: requests; target: PhoneCalls.calls; signalName: "busyChanged" }
    Timer { interval: 5; repeat: true; running: true; onTriggered: ++tests.turns }

    // A view, whose delegates see the last state of a call.
    Repeater {
        id: view
        model: PhoneCalls.calls
        delegate: Item {
            required property int callId
            required property string number
            required property string name
            required property string type
            required property int direction
            required property int state
            required property date since
            onStateChanged: tests.states.push(state)
        }
    }

    function cleanup() {
        TestHandset.stop("zyn-phoned")
        tryCompare(PhoneCalls, "available", false)
        states = []
        compare(PhoneCalls.calls.count, 0)
        compare(PhoneCalls.ringing, false)
        verify(PhoneCalls.calls.error !== "")
    }

    /// A client that has nothing to do would wake itself, if it changed what it watches.
    function test_waitsInPeace() {
        TestHandset.kill("zyn-phoned")
        tryCompare(PhoneCalls, "available", false)
        PhoneCalls.calls.reload()
        wait(100)
        tryVerify(() => TestHandset.changesOf("/tmp/zynphonecom", 200) === 0)
    }

    function say(...lines) {
        compare(TestHandset.tools(lines.map(line => "phone " + line)), "")
    }

    function test_incoming() {
        say("incoming 0301234567 Anna%20Grün")
        tryCompare(view, "count", 1)
        const call = view.itemAt(0)
        compare([call.number, call.name, call.type], ["0301234567", "Anna Grün", "voice"])
        compare([call.direction, call.state], [PhoneCalls.Incoming, PhoneCalls.Ringing])
        verify(Math.abs(Date.now() - call.since.getTime()) < 60000)
        compare(PhoneCalls.ringing, true)
        const id = call.callId
        PhoneCalls.answer()
        tryCompare(call, "state", PhoneCalls.Connected)
        compare(PhoneCalls.ringing, false)
        compare(rings.count, 2)
        PhoneCalls.end(id)
        tryCompare(view, "count", 0)
        compare(states, [PhoneCalls.Ringing, PhoneCalls.Connected, PhoneCalls.Ended])
        compare(Array.from(overs.signalArguments[0]), [id, "0301234567", "Anna Grün", PhoneCalls.Ended])
        compare(failures.count, 0)
    }

    function test_ends_data() {
        return [
            { tag: "missed", begin: () => say("incoming 0301"), end: "missed", state: PhoneCalls.Missed },
            { tag: "rejected", begin: () => say("incoming 0302"), end: "hangup", state: PhoneCalls.Ended },
            { tag: "failed", begin: () => PhoneCalls.dial("0303", "Bert"), end: "fail", state: PhoneCalls.Failed }
        ]
    }

    function test_ends(row) {
        row.begin()
        tryCompare(view, "count", 1)
        say(row.end)
        tryCompare(overs, "count", 1)
        compare(overs.signalArguments[0][3], row.state)
        compare(view.count, 0)
    }

    function test_dials_data() {
        return [
            { tag: "ordinary", dial: () => PhoneCalls.dial("0301112222", "Dora"), number: "0301112222", name: "Dora" },
            { tag: "directly", dial: () => PhoneCalls.dialDirectly("*100#"), number: "*100#", name: "" },
            { tag: "prepended", dial: () => PhoneCalls.dialPrepended("4711"), number: "04711", name: "" },
            { tag: "longest", dial: () => PhoneCalls.dial("1".repeat(41)), number: "1".repeat(41), name: "" }
        ]
    }

    function test_dials(row) {
        compare(row.dial(), true)
        tryCompare(view, "count", 1)
        const call = view.itemAt(0)
        compare([call.number, call.name], [row.number, row.name])
        compare([call.direction, call.state], [PhoneCalls.Outgoing, PhoneCalls.Dialing])
        PhoneCalls.hangUp()
        tryCompare(view, "count", 0)
    }

    function test_numbers_data() {
        return [
            { tag: "none", number: "" },
            { tag: "too long", number: "1".repeat(42) },
            { tag: "no Latin-1", number: "\u0661\u0662" },
            { tag: "a NUL", number: "11\u00002" }
        ]
    }

    function test_numbers(row) {
        for (const dial of ["dial", "dialDirectly", "dialPrepended"])
            compare(PhoneCalls[dial](row.number), false)
        compare(failures.count, 3)
        verify(failures.signalArguments[0][0] !== "")
    }

    function test_refusals_data() {
        return [
            { tag: "nobody rings", ask: () => PhoneCalls.answer(), reason: "there is no call" },
            { tag: "no such call", ask: () => PhoneCalls.end(4711), reason: "there is no call" },
            { tag: "no number", ask: () => PhoneCalls.answer(-1), reason: "-1" }
        ]
    }

    function test_refusals(row) {
        row.ask()
        tryCompare(failures, "count", 1)
        verify(failures.signalArguments[0][0].includes(row.reason), failures.signalArguments[0][0])
    }

    // A second call of the desk is missed at once; the list keeps its one call, as it is.
    function test_busy() {
        say("incoming 0301")
        tryCompare(view, "count", 1)
        const call = view.itemAt(0)
        say("incoming 0302", "answer")
        tryCompare(call, "state", PhoneCalls.Connected)
        compare([view.count, call.number], [1, "0301"])
    }

    function test_killedAndBack() {
        say("incoming 0301")
        tryCompare(PhoneCalls, "ringing", true)
        TestHandset.kill("zyn-phoned")
        tryCompare(PhoneCalls, "available", false)
        compare(PhoneCalls.ringing, false)
        compare(view.count, 0)
        PhoneCalls.answer()
        tryCompare(failures, "count", 1)
        verify(TestHandset.start("zyn-phoned", "--step 60000"))
        tryCompare(PhoneCalls, "available", true)
        compare(PhoneCalls.calls.error, "")
        compare(view.count, 0)
        say("incoming 0302")
        tryCompare(view, "count", 1)
        compare(view.itemAt(0).number, "0302")
    }

    // Nobody waits for a server that does not answer: not who dials, and not who asks it something.
    function test_stopped() {
        TestHandset.pause("zyn-phoned")
        const before = turns
        for (let call = 0; call < 20; ++call) {
            verify(PhoneCalls.dial("0301"))
            PhoneCalls.answer()
        }
        tryVerify(() => turns > before + 20)
        compare(failures.count, 0)
        TestHandset.resume("zyn-phoned")
        tryCompare(failures, "count", 20)
        tryVerify(() => view.count === 1)
    }

    function test_gaveUp() {
        TestHandset.pause("zyn-phoned")
        PhoneCalls.answer()
        tryCompare(failures, "count", 1, 20000)
        compare(PhoneCalls.available, false)
        TestHandset.resume("zyn-phoned")
        tryCompare(PhoneCalls, "available", true, 30000)
    }

    function test_reload() {
        say("incoming 0301")
        tryCompare(view, "count", 1)
        const call = view.itemAt(0)
        requests.clear()
        PhoneCalls.calls.reload()
        tryCompare(requests, "count", 2)
        compare(PhoneCalls.calls.busy, false)
        compare(view.itemAt(0), call)
    }
}
