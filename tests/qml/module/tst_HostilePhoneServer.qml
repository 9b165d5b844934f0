// A phone server that answers what no phone server answers is left, and does no harm; a true one is found again.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "HostilePhoneServer"

    SignalSpy { id: failures; target: PhoneCalls.calls; signalName: "failed" }
    SignalSpy { id: arrivals; target: PhoneCalls.calls; signalName: "loadedChanged" }

    readonly property int done: 1
    readonly property int refused: 2
    readonly property int calls: 3
    readonly property int changed: 4

    function call(change) {
        return Object.assign({ id: 1, number: "0301", name: "", type: "voice", direction: "incoming",
                               state: "ringing", since: "2026-01-02T03:04:05.678" }, change)
    }

    function frame(code, value) {
        return { code: code, data: JSON.stringify(value) }
    }

    function cleanup() {
        TestHandset.stopPlaying()
        TestHandset.stopAll()
        tryVerify(() => PhoneCalls.calls.error.includes("does not run"))
        compare(PhoneCalls.available, false)
    }

    function test_understood() {
        verify(TestHandset.playPhone([frame(calls, [call()]), frame(changed, call({ id: 2, state: "waiting" }))],
                                     false))
        tryCompare(PhoneCalls.calls, "count", 2)
        compare(PhoneCalls.available, true)
        compare(PhoneCalls.ringing, true)
    }

    function test_answers_data() {
        const many = []
        for (let id = 1; id <= 65; ++id)
            many.push(call({ id: id }))
        const oneByOne = [frame(calls, [])].concat(many.map(call => frame(changed, call)))
        return [
            { tag: "no JSON", frames: [{ code: calls, data: "[" }] },
            { tag: "no data", frames: [{ code: calls, data: "" }] },
            { tag: "no list", frames: [frame(calls, call())] },
            { tag: "no object", frames: [frame(calls, [[1]])] },
            { tag: "no id", frames: [frame(calls, [call({ id: "1" })])] },
            { tag: "a broken id", frames: [frame(calls, [call({ id: 1e300 })])] },
            { tag: "no text", frames: [frame(calls, [call({ name: null })])] },
            { tag: "no state", frames: [frame(calls, [call({ state: "sleeping" })])] },
            { tag: "no time", frames: [frame(calls, [call({ since: "yesterday" })])] },
            { tag: "twice", frames: [frame(calls, [call(), call()])] },
            { tag: "too many", frames: [frame(calls, many)] },
            { tag: "too many one by one", frames: oneByOne, arrives: true },
            { tag: "deep", frames: [{ code: calls, data: "[".repeat(100000) }] },
            { tag: "negative length", frames: [{ code: calls, data: "", length: -1 }] },
            { tag: "giant length", frames: [{ code: calls, data: "", length: 1024 * 1024 + 1 }] },
            { tag: "another answer", frames: [{ code: done, data: "" }] },
            { tag: "a refusal of nothing", frames: [{ code: refused, data: "no" }] },
            { tag: "an unknown answer", frames: [{ code: 77, data: "" }] },
            { tag: "a change of nothing", frames: [frame(changed, call())] },
            { tag: "a wrong change", frames: [frame(calls, []), frame(changed, [call()])], arrives: true },
            { tag: "calls unasked", frames: [frame(calls, []), frame(calls, [])], arrives: true },
            { tag: "half a frame", frames: [{ code: calls, data: "[", length: 2 }], hangsUp: true,
              reason: "has ended" },
            { tag: "nothing", frames: [], hangsUp: true, reason: "has ended" }
        ]
    }

    function test_answers(row) {
        failures.clear()
        arrivals.clear()
        verify(TestHandset.playPhone(row.frames, row.hangsUp === true))
        const reason = row.reason || "no phone server gives"
        tryVerify(() => failures.signalArguments.some(told => told[0].includes(reason)))
        verify(row.arrives || arrivals.count === 0)
        TestHandset.stopPlaying()
        tryCompare(PhoneCalls, "available", false)
        compare(PhoneCalls.calls.count, 0)
        verify(TestHandset.start("zyn-phoned"))
        tryCompare(PhoneCalls, "available", true)
    }
}
