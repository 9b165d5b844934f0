// The log of recent calls as a list while its service is away, or hangs, for longer than anybody waits.
import QtQml.Models
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "RecentCallsOutages"

    readonly property int patience: 20000

    RecentCallsModel { id: calls; category: RecentCallsModel.Answered }
    RecentCallsModel { id: others; category: RecentCallsModel.Dialed }
    Instantiator { id: rows; model: calls; QtObject { required property string number } }
    Instantiator { id: otherRows; model: others; QtObject { required property string number } }
    SignalSpy { id: failures; target: calls; signalName: "failed" }

    function numbers(view) {
        let texts = []
        for (let row = 0; row < view.count; ++row)
            texts.push(view.objectAt(row).number)
        return texts.join(" ")
    }

    function numbersAre(view, expected) {
        tryVerify(() => numbers(view) === expected, patience)
    }

    function init() {
        TestHandset.stopAll()
        verify(TestHandset.start("zyn-recentcalld"))
        verify(TestHandset.clearCalls())
        for (const model of [calls, others]) {
            model.reload()
            tryVerify(() => !model.busy && model.error === "" && model.count === 0, patience)
        }
        failures.clear()
    }

    function cleanupTestCase() {
        TestHandset.stopAll()
    }

    /// The phone hands a call that is over to the log, or to a service that comes later: without an announcement, then.
    function test_followsThePhone_data() {
        return [
            { tag: "while the service runs", isServed: true },
            { tag: "while the service is away", isServed: false }
        ]
    }

    function test_followsThePhone(row) {
        verify(TestHandset.start("zyn-phoned"))
        if (!row.isServed)
            TestHandset.kill("zyn-recentcalld")
        compare(TestHandset.tools(["phone incoming 030 Anna", "phone answer", "phone hangup", "dial 031"]), "")
        let isOver = false
        tryVerify(() => isOver = isOver || TestHandset.tools(["phone hangup"]) === "", patience) // once there is a call
        if (!row.isServed) {
            tryVerify(() => calls.error !== "" && others.error !== "", patience)
            verify(TestHandset.start("zyn-recentcalld"))
        }
        numbersAre(rows, "030")
        numbersAre(otherRows, "031")
        tryCompare(others, "lastDialed", "031", patience)
        compare([calls.error, others.error], ["", ""])
    }

    /// A service that hangs for longer than a request waits announces nothing when it goes on.
    function test_hangsForLong() {
        verify(TestHandset.addCalls([[RecentCallsModel.Answered, 1]]))
        calls.reload()
        numbersAre(rows, "1")
        TestHandset.pause("zyn-recentcalld")
        calls.remove(0)
        tryVerify(() => failures.count > 0, patience)
        TestHandset.resume("zyn-recentcalld")
        tryVerify(() => calls.error === "" && !calls.busy, patience)
        numbersAre(rows, "")
    }
}
