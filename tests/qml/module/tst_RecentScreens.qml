// The recent-call screens, asked for here and by others, and the picker of zyn-recents, which answers once.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "RecentScreens"

    readonly property int patience: 20000

    SignalSpy { id: finished; target: RecentScreens; signalName: "finished" }
    SignalSpy { id: pages; target: RecentScreens; signalName: "pageRequested" }
    SignalSpy { id: details; target: RecentScreens; signalName: "detailsRequested" }
    SignalSpy { id: hidings; target: RecentScreens; signalName: "hideRequested" }

    readonly property var spies: [finished, pages, details, hidings]

    /// The index of a call that no test asks for, and no other row has.
    property int marker: 1000

    /// The arguments of what was told, list by list, once all that was sent before has come.
    function told() {
        RecentScreens.showDetails(++marker, RecentCallsModel.All)
        tryVerify(() => details.signalArguments.some(list => list[0] === marker), patience)
        return spies.map(spy => spy.signalArguments.map(list => Array.from(list)).filter(list => !(list[0] > 1000)))
    }

    function init() {
        for (const spy of spies)
            spy.clear()
    }

    function test_requests_data() {
        return [
            { tag: "a page", ask: () => RecentScreens.open(RecentScreens.MissedPage), pages: [[2]] },
            { tag: "two pages", ask: () => {
                RecentScreens.open(RecentScreens.AnsweredPage)
                RecentScreens.open(RecentScreens.PickerPage)
            }, pages: [[1], [5]] },
            { tag: "no page", ask: () => { RecentScreens.open(0); RecentScreens.open(6); RecentScreens.open(-1) } },
            { tag: "details", ask: () => RecentScreens.showDetails(3, 2), details: [[3, 2]] },
            { tag: "no details", ask: () => {
                RecentScreens.showDetails(-1, 2)
                RecentScreens.showDetails(0, 0)
                RecentScreens.showDetails(0, 5)
            } },
            { tag: "a list, for others", ask: "recents show missed", pages: [[2]] },
            { tag: "a page, for others", ask: "recents page dialed", pages: [[3]] },
            { tag: "details, for others", ask: "recents detail all 7", details: [[7, 4]] },
            { tag: "hide", ask: () => verify(RecentScreens.hide()), hidings: [[]] },
            { tag: "hide, for others", ask: "recents hide", hidings: [[]] }
        ]
    }

    function test_requests(row) {
        if (typeof row.ask === "string")
            compare(TestHandset.tools([row.ask]), "")
        else
            row.ask()
        compare(told(), [[], row.pages ?? [], row.details ?? [], row.hidings ?? []])
    }

    function test_finishes_data() {
        const pick = () => RecentScreens.pickNumber()
        const report = () => verify(RecentScreens.reportPicked("030"))
        return [
            { tag: "picked", steps: [pick, report], finished: [[true, "030"]] },
            { tag: "dismissed", steps: [pick, () => verify(RecentScreens.reportDismissed())], finished: [[false, ""]] },
            { tag: "no number", steps: [pick, () => verify(RecentScreens.reportPicked(""))], finished: [[false, ""]] },
            { tag: "any text", steps: [pick, () => RecentScreens.reportPicked("\u0661\ud83d\ude00 +*#\n")],
              finished: [[true, "\u0661\ud83d\ude00 +*#\n"]] },
            { tag: "once, however often it was opened", steps: [pick, report, pick, report, pick, report],
              finished: [[true, "030"], [true, "030"], [true, "030"]] },
            { tag: "for both that wait", steps: [pick, pick, report, report],
              finished: [[true, "030"], [true, "030"]] },
            { tag: "not for others", steps: [report], finished: [] },
            { tag: "not for a page", steps: [() => RecentScreens.open(RecentScreens.PickerPage), report],
              finished: [] }
        ]
    }

    function test_finishes(row) {
        for (const step of row.steps) {
            step()
            told()
        }
        compare(told()[0], row.finished)
    }

    /// Who is told of one picker may open the next.
    function test_picksOn() {
        const goOn = selected => {
            if (finished.count < 3)
                RecentScreens.pickNumber()
        }
        RecentScreens.finished.connect(goOn)
        RecentScreens.pickNumber()
        for (let report = 0; report < 5; ++report) {
            RecentScreens.reportPicked(`${report}`)
            told()
        }
        RecentScreens.finished.disconnect(goOn)
        compare(told()[0], [[true, "0"], [true, "1"], [true, "2"]])
    }

    function test_screens_data() {
        return [
            { tag: "a row", options: "--pick 1", finished: [true, "1"] },
            { tag: "none", options: "--pick none", finished: [false, ""] }
        ]
    }

    /// The screens in a terminal.
    function test_screens(row) {
        verify(TestHandset.start("zyn-recentcalld"))
        compare(TestHandset.tools(["calls clear all", "calls add missed 1", "calls add dialed 2"]), "")
        verify(TestHandset.start("zyn-recents", row.options))
        for (let round = 1; round <= 3; ++round) {
            RecentScreens.pickNumber()
            tryCompare(finished, "count", round, patience)
            compare(Array.from(finished.signalArguments[round - 1]), row.finished)
        }
        // Another application picks.
        compare(TestHandset.tool("recents pick").startsWith("1\n"), row.finished[0])
        told()
        compare(finished.count, 3)
        TestHandset.stopAll()
    }
}
