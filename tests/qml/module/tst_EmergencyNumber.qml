// The verdict on what is typed, and that it follows the list and the SIM card.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "EmergencyNumber"

    EmergencyNumber {
        id: number
        property int verdictWithText
        onTextChanged: verdictWithText = verdict
    }
    SignalSpy { id: verdicts; target: number; signalName: "verdictChanged" }

    function initTestCase() {
        compare(TestHandset.tools(["emergency write 112 999"]), "")
    }

    function test_typing_data() {
        return [
            { tag: "begins", text: "11", verdict: EmergencyNumber.Possible },
            { tag: "whole", text: "112", verdict: EmergencyNumber.Emergency },
            { tag: "too long", text: "1123", verdict: EmergencyNumber.Refused },
            { tag: "another", text: "0301", verdict: EmergencyNumber.Refused },
            { tag: "a NUL behind one", text: "112\u00005", verdict: EmergencyNumber.Refused },
            { tag: "no Latin-1", text: "\u0661\u0661\u0662", verdict: EmergencyNumber.Refused },
            { tag: "nothing", text: "", verdict: EmergencyNumber.Empty }
        ]
    }

    function test_typing(row) {
        number.text = row.text
        compare(number.verdict, row.verdict)
        compare(number.verdictWithText, row.verdict)
        compare(number.emergency, row.verdict === EmergencyNumber.Emergency)
        compare(number.reason === "", row.verdict === EmergencyNumber.Empty)
    }

    function test_refreshes() {
        number.text = "4711"
        verdicts.clear()
        compare(TestHandset.tools(["emergency write 112 999 4711"]), "")
        compare(number.verdict, EmergencyNumber.Refused)
        number.refresh()
        compare(number.verdict, EmergencyNumber.Emergency)
        compare(verdicts.count, 1)
    }
}
