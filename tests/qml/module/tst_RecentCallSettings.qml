// The settings, as this process and others change them, and while they cannot be read or written.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "RecentCallSettings"

    readonly property string settings: "setup/zyn_app4.cfg"

    SignalSpy { id: failed; target: RecentCallSettings; signalName: "failed" }
    SignalSpy { id: switched; target: RecentCallSettings; signalName: "prependChanged" }

    function values() {
        const s = RecentCallSettings
        return [s.maxAnswered, s.maxMissed, s.maxDialed, s.maxTotal, s.maxFrequent, s.idleSendView, s.maxActivities,
            s.fixedDialing, s.twoLineView, s.prepend]
    }

    readonly property var defaults: [50, 50, 50, 150, 5, 3, 15, 0, false, false]

    function init() {
        TestHandset.remove("setup")
        RecentCallSettings.reload()
        tryVerify(() => values().join() === defaults.join())
        tryCompare(RecentCallSettings, "error", "")
        failed.clear()
        switched.clear()
    }

    function test_0_first() {
        compare(RecentCallSettings.loaded, true)
    }

    function test_follows_data() {
        const names = "[RECENTCALL_SET]\nmaxAnsweredCall=%\nmaxMissedCall=20\nmaxDialedCall=200\nmaxFrequentCall=7\n"
        return [
            { tag: "limits", file: settings, text: names.replace("%", "10"), expected: { 0: 10, 1: 20, 3: 80, 4: 7 } },
            { tag: "no number", file: settings, text: names.replace("%", "many"), expected: { 1: 20, 3: 120, 4: 7 } },
            { tag: "view", file: settings, text: "[RECENTCALL_SET]\nviewFromIdleSend=2\n", expected: { 5: 2 } },
            { tag: "frequent", file: settings, text: "[RECENTCALL_SET]\nviewFromIdleSend=3\n", expected: { 5: 5 } },
            { tag: "two lines", file: settings, text: "[RECENTCALL_SET]\ntwoLineView=true\n", expected: { 8: true } },
            { tag: "prefix", file: settings, text: "[Setup]\nprepend=1\n", expected: { 9: true } },
            { tag: "activities", file: "setup/zyn_toppals.cfg", text: "[TopPals-UI]\nMaxItemsToLog=4294967295\n",
              expected: { 6: 2147483647 } },
            { tag: "fixed dialing", file: "setup/zyn_handset.cfg", text: "[Handset]\nFixedDialingStatus=1\n",
              expected: { 7: 1 } }
        ]
    }

    function test_follows(row) {
        verify(TestHandset.writeBytes(row.file, row.text))
        const expected = defaults.map((value, index) => index in row.expected ? row.expected[index] : value)
        tryVerify(() => values().join() === expected.join(), 5000, values() + " instead of " + expected)
        TestHandset.remove(row.file)
        tryVerify(() => values().join() === defaults.join())
    }

    function test_tool() {
        compare(TestHandset.tools(["prepend on"]), "")
        tryCompare(RecentCallSettings, "prepend", true)
        compare(TestHandset.tools(["prepend off"]), "")
        tryCompare(RecentCallSettings, "prepend", false)
    }

    function test_stores() {
        RecentCallSettings.prepend = true
        tryCompare(RecentCallSettings, "prepend", true)
        compare(TestHandset.tool("prepend show"), "on\nexit 0")
        RecentCallSettings.twoLineView = true
        tryCompare(RecentCallSettings, "twoLineView", true)
        verify(TestHandset.tool("settings show --json").includes('"twoLineView":true'))
        RecentCallSettings.prepend = false
        tryCompare(RecentCallSettings, "prepend", false)
        compare(failed.count, 0)
    }

    function test_cannotBeStored() {
        verify(TestHandset.block(settings + ".lock"))
        RecentCallSettings.prepend = true
        tryCompare(failed, "count", 1)
        verify(failed.signalArguments[0][0].includes(settings))
        compare(RecentCallSettings.prepend, false)
        compare(switched.count, 1)
    }

    function test_cannotBeRead() {
        RecentCallSettings.prepend = true
        tryCompare(RecentCallSettings, "prepend", true)
        verify(TestHandset.block(settings))
        tryVerify(() => RecentCallSettings.error.includes(settings))
        compare(RecentCallSettings.prepend, true)
    }
}
