// What is played to a phone server: events, states, scripts; and the state of the desk's platform.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

PhoneCase {
    id: tests
    name: "DeskNetwork"
    spies: [refusals]

    SignalSpy { id: refusals; target: DeskNetwork; signalName: "refused" }
    SignalSpy { id: hints; target: PhoneStatus; signalName: "ttyChanged" }

    function calls() {
        return TestHandset.tool("phone calls").replace(/ +/g, " ")
    }

    function test_course() {
        DeskNetwork.incoming("0301234567", "Anna")
        tryVerify(() => calls().includes(" 0301234567 Anna voice incoming ringing "))
        DeskNetwork.answer()
        tryVerify(() => calls().includes(" connected "))
        DeskNetwork.hangUp()
        tryVerify(() => calls() === "exit 0")
        DeskNetwork.incoming("0302")
        DeskNetwork.missed()
        verify(PhoneCalls.dial("0303"))
        tryVerify(() => calls().includes(" 0303 "))
        DeskNetwork.fail()
        tryVerify(() => calls() === "exit 0")
        compare(refusals.count, 0)
    }

    function test_states() {
        DeskNetwork.status("signal-quality", [4])
        DeskNetwork.status("network", ["5", "26201"])
        tryCompare(PhoneStatus, "networkId", "26201")
        compare(PhoneStatus.signalQuality, 4)
        DeskNetwork.status("tty-feature-changed")
        tryCompare(hints, "count", 1)
        compare(TestHandset.tools(["status signal-quality 1"]), "")
        tryCompare(PhoneStatus, "signalQuality", 1)
        DeskNetwork.snapshot()
        tryCompare(PhoneStatus, "signalQuality", 4)
        compare(refusals.count, 0)
    }

    function test_refusals_data() {
        return [
            { tag: "nothing to answer", ask: () => DeskNetwork.answer(), reason: "there is no call" },
            { tag: "no number", ask: () => DeskNetwork.incoming("Anna"), reason: "not a number" },
            { tag: "unknown status", ask: () => DeskNetwork.status("signal-qualty", [1]), reason: "signal-quality" },
            { tag: "a value too few", ask: () => DeskNetwork.status("network", [5]), reason: "network status id" },
            { tag: "nothing", ask: () => DeskNetwork.status(""), reason: "nothing" },
            { tag: "a NUL", ask: () => DeskNetwork.incoming("0301", "A\u0000B"), reason: "cannot be sent" },
            { tag: "too long", ask: () => DeskNetwork.status("service-name", ["x".repeat(20000)]),
              reason: "more than" }
        ]
    }

    function test_refusals(row) {
        row.ask()
        tryCompare(refusals, "count", 1)
        verify(refusals.signalArguments[0][0].includes(row.reason), refusals.signalArguments[0][0])
    }

    function test_nobodyIsThere() {
        TestHandset.stop("zyn-phoned")
        tryCompare(DeskNetwork, "available", false)
        DeskNetwork.incoming("0301")
        tryCompare(refusals, "count", 1)
        verify(refusals.signalArguments[0][0] !== "")
    }

    function script(text) {
        return TestHandset.write("desk.script", text)
    }

    function test_script() {
        DeskNetwork.runScript(script("# A day\n\nservice-name \"Desk Network\"\n+10 signal-quality 3\n+10 hangup\n"
                                     + "+10 incoming 0301 \"Anna Grün\"\n+20 answer\n"))
        compare(DeskNetwork.scriptRunning, true)
        tryVerify(() => !DeskNetwork.scriptRunning)
        verify(calls().includes(" 0301 Anna Grün voice incoming connected "), calls())
        tryCompare(PhoneStatus, "serviceName", "Desk Network")
        compare(PhoneStatus.signalQuality, 3)
        // What did not apply is told with its line, and the rest was played.
        compare(refusals.count, 1)
        verify(refusals.signalArguments[0][0].startsWith("desk.script:5: 'hangup' does not apply"),
               refusals.signalArguments[0][0])
    }

    function test_invalidScripts_data() {
        return [
            { tag: "unclosed quote", text: "signal-quality 2\nincoming \"0301\n",
              reason: "desk.script:2: unclosed quote" },
            { tag: "no file", text: null, reason: "not a readable file" }
        ]
    }

    // Nothing of such a script is played.
    function test_invalidScripts(row) {
        const before = PhoneStatus.signalQuality
        DeskNetwork.runScript(row.text === null ? "file:///nowhere/desk.script" : script(row.text))
        tryCompare(refusals, "count", 1)
        verify(refusals.signalArguments[0][0].includes(row.reason), refusals.signalArguments[0][0])
        compare(DeskNetwork.scriptRunning, false)
        compare(PhoneStatus.signalQuality, before)
    }

    function test_scriptsEnd_data() {
        return [
            { tag: "stopped", end: () => DeskNetwork.stopScript(), name: "First" },
            { tag: "another", end: () => DeskNetwork.runScript(script("service-name Other\n")), name: "Other" },
            { tag: "no server", end: () => TestHandset.stop("zyn-phoned"), name: "First" }
        ]
    }

    function test_scriptsEnd(row) {
        DeskNetwork.runScript(script("service-name First\n+3600000 service-name Late\n"))
        tryCompare(PhoneStatus, "serviceName", "First")
        compare(DeskNetwork.scriptRunning, true)
        row.end()
        tryCompare(DeskNetwork, "scriptRunning", false)
        tryCompare(PhoneStatus, "serviceName", row.name)
    }

    function test_platform() {
        tryVerify(() => DeskNetwork.simCardState >= 0)
        DeskNetwork.keypadLocked = true
        DeskNetwork.simCardState = 3
        tryCompare(DeskNetwork, "keypadLocked", true)
        tryCompare(DeskNetwork, "simCardState", 3)
        verify(/keypad-lock +1\b/.test(TestHandset.tool("handset show")), TestHandset.tool("handset show"))
        // Others write it, too.
        compare(TestHandset.tools(["handset set keypad-lock 0 sim-card 1"]), "")
        tryCompare(DeskNetwork, "keypadLocked", false)
        tryCompare(DeskNetwork, "simCardState", 1)
        TestHandset.write("setup/zyn_handset.cfg", "[Handset]\nSimCardStatus=7\nKeypadLockStatus=2\n")
        tryCompare(DeskNetwork, "simCardState", 7)
        tryCompare(DeskNetwork, "keypadLocked", true)
        compare(refusals.count, 0)
    }
}
