// Push-to-talk calls, as the phone server of a desk makes them.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

PhoneCase {
    name: "PushToTalk"
    spies: [failures]

    SignalSpy { id: failures; target: PushToTalk; signalName: "failed" }
    Repeater {
        id: view
        model: PhoneCalls.calls
        delegate: Item {
            required property string number
            required property string type
        }
    }

    function test_calls_data() {
        return [
            { tag: "one", numbers: ["0301"], isMade: true },
            { tag: "most", numbers: Array(25).fill("0302"), isMade: true },
            { tag: "none", numbers: [], isMade: false },
            { tag: "too many", numbers: Array(26).fill("0303"), isMade: false },
            { tag: "an empty one", numbers: ["0304", ""], isMade: false }
        ]
    }

    function test_calls(row) {
        compare(PushToTalk.call(row.numbers), row.isMade)
        compare(failures.count, row.isMade ? 0 : 1)
        if (!row.isMade)
            return
        tryCompare(view, "count", 1)
        compare([view.itemAt(0).number, view.itemAt(0).type], [row.numbers[0], "ptt"])
        PushToTalk.drop()
        tryCompare(view, "count", 0)
    }
}
