// The missed calls in numbers, and what is told of them while the service is away.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "MissedCalls"

    readonly property int patience: 20000

    RecentCallsModel { id: calls; category: RecentCallsModel.Missed }

    function numbersAre(count, unread, last) {
        tryVerify(() => MissedCalls.count === count && MissedCalls.unread === unread, patience,
                  `${MissedCalls.count} calls, ${MissedCalls.unread} unread`)
        compare(MissedCalls.last ? MissedCalls.last.number : undefined, last)
    }

    /// Runs first: functions are called in the order of their names.
    function test_1_unknownWithoutService() {
        compare([MissedCalls.count, MissedCalls.unread, MissedCalls.last], [-1, -1, undefined])
        verify(!MissedCalls.loaded)
        tryVerify(() => MissedCalls.error.includes("zyn-recentcalld"), patience)
        compare([MissedCalls.count, MissedCalls.unread, MissedCalls.loaded], [-1, -1, false])
        verify(TestHandset.start("zyn-recentcalld"))
        numbersAre(0, 0, undefined)
        compare([MissedCalls.loaded, MissedCalls.error], [true, ""])
    }

    function test_2_counts_data() {
        return [
            { tag: "one", lines: ["calls add missed 1 --name Anna --at 2024-05-31T18:30:00"], count: 1, unread: 1,
              last: "1" },
            { tag: "others are not missed", lines: ["calls add answered 2", "calls add dialed 3"], count: 1, unread: 1,
              last: "1" },
            { tag: "one that is read", lines: ["calls add missed 4 --read"], count: 2, unread: 1, last: "4" },
            { tag: "any type", lines: ["calls add missed 5 --type ptt2"], count: 3, unread: 2, last: "5" },
            { tag: "read here", change: () => calls.markRead(0), count: 3, unread: 1, last: "5" },
            { tag: "all read here", change: () => calls.markAllRead(), count: 3, unread: 0, last: "5" },
            { tag: "removed here", change: () => calls.remove(0), count: 2, unread: 0, last: "4" },
            { tag: "cleared by others", lines: ["calls clear all"], count: 0, unread: 0, last: undefined }
        ]
    }

    function test_2_counts(row) {
        if (row.lines)
            compare(TestHandset.tools(row.lines), "")
        else
            row.change()
        numbersAre(row.count, row.unread, row.last)
        tryCompare(calls, "count", row.count, patience)
        if (row.tag === "one")
            compare(MissedCalls.last, { number: "1", name: "Anna", start: new Date("2024-05-31T18:30:00+02:00") })
    }

    function test_3_keepsWhatIsKnown() {
        compare(TestHandset.tools(["calls add missed 1"]), "")
        numbersAre(1, 1, "1")
        TestHandset.kill("zyn-recentcalld")
        MissedCalls.reload()
        tryVerify(() => MissedCalls.error !== "", patience)
        numbersAre(1, 1, "1")
        compare(MissedCalls.loaded, true)
        verify(TestHandset.start("zyn-recentcalld"))
        tryCompare(MissedCalls, "error", "", patience)
        numbersAre(1, 1, "1")
        TestHandset.stopAll()
    }
}
