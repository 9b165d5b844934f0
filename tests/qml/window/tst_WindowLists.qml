// The lists: recent calls are deleted and cleared, favourites come and go, settings are stored.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing

PhoneWindow {
    id: window

    services: Services {
        id: services
    }

    WindowCase {
        name: "WindowLists"
        phone: window.phone

        SignalSpy { id: finished; target: RecentScreens; signalName: "finished" }
        SignalSpy { id: pages; target: RecentScreens; signalName: "pageRequested" }

        function add(list, number) {
            compare(TestHandset.tools([`calls add ${list} ${number}`]), "")
        }

        function test_recents() {
            compare(TestHandset.tools(["calls clear all"]), "")
            for (const [list, number] of [["answered", "0301"], ["missed", "0302"], ["dialed", "0303"],
                ["dialed", "0304"]])
                add(list, number)
            tap("tab_recents")
            tryVerify(() => find("recentsList").count === 4, patience)
            for (const [tab, count] of [["answeredTab", 1], ["missedTab", 1], ["dialedTab", 2]]) {
                tap(tab)
                tryVerify(() => find("recentsList").count === count, patience, tab)
            }
            tap("recent0")
            tap("deleteButton")
            tryVerify(() => find("recentsList").count === 1, patience)
            tap("clearButton")
            tap("declineButton")
            isHidden("clearQuestion")
            compare(find("recentsList").count, 1)
            tap("clearButton")
            tap("confirmButton")
            tryVerify(() => find("recentsList").count === 0, patience)
            shown("recentsPlaceholder")
            // The answer was for that question.
            add("dialed", "0305")
            tryVerify(() => find("recentsList").count === 1, patience)
            keyClick(Qt.Key_Return)
            keyClick(Qt.Key_Space)
            tap("allTab")
            tryVerify(() => find("recentsList").count === 3, patience)
        }

        // What is open, or asked about, is not what comes to its place.
        function test_openRow() {
            compare(TestHandset.tools(["calls clear all"]), "")
            add("dialed", "0305")
            tap("tab_recents")
            tap("recent0")
            shown("recentDetails")
            add("dialed", "0306")
            tryVerify(() => find("recentsList").count === 2, patience)
            tap("deleteButton")
            tryVerify(() => find("recentsList").count === 1, patience)
            compare(find("recent0").number, "0306")
        }

        function test_askedOf_data() {
            return [
                { tag: "another in the place to remove", before: "0301234567", asks: "favouriteRemove",
                    change: "1234567 0307654321" },
                { tag: "somebody in the empty place", before: "", asks: "addButton", change: "'' 0307654321" }
            ]
        }

        function test_askedOf(row) {
            if (row.before)
                compare(TestHandset.tools([`favourites announce '' ${row.before}`]), "")
            tap("tab_favourites")
            tryVerify(() => find("favouriteRow0")?.taken === Boolean(row.before), patience)
            tap(row.asks)
            verify(find("favouriteRow0").asking !== "")
            compare(TestHandset.tools([`favourites announce ${row.change}`]), "")
            tryVerify(() => find("favouriteRow0").number === "7654321", patience)
            compare(find("favouriteRow0").asking, "")
            compare(TestHandset.tools(["favourites announce 7654321 ''"]), "")
            tryVerify(() => !find("favouriteRow0").taken, patience)
        }

        function test_picker() {
            add("answered", "0307")
            finished.clear()
            RecentScreens.pickNumber()
            tap("answeredTab")
            settled("recent0").forceActiveFocus()
            keyClick(Qt.Key_Delete)
            tap("recent0")
            tryCompare(finished, "count", 1, patience)
            compare(Array.from(finished.signalArguments[0]), [true, "0307"])
            RecentScreens.pickNumber()
            shown("recent0")
            tap("tab_idle")
            tryCompare(finished, "count", 2, patience)
            compare(finished.signalArguments[1][0], false)
        }

        // Two who ask for it share one picker, which tells once that it has closed.
        function test_pickers() {
            add("answered", "0307")
            finished.clear()
            const ask = () => {
                pages.clear()
                RecentScreens.pickNumber()
                tryCompare(pages, "count", 1, patience)
            }
            ask()
            ask()
            tap("recent0")
            tryCompare(finished, "count", 2, patience)
            ask()
            RecentScreens.hide()
            tryCompare(finished, "count", 3, patience)
            ask()
            tap("recent0")
            tryCompare(finished, "count", 4, patience)
            compare(finished.signalArguments.map(list => list[0]), [true, true, false, true])
        }

        function addFavourite(number, name) {
            tap("tab_favourites")
            tap("addButton")
            find("editorNumber").forceActiveFocus()
            type(number)
            find("editorName").forceActiveFocus()
            type(name)
            keyClick(Qt.Key_Return)
            shown("favouriteLog")
        }

        function test_favourites() {
            type("0305")
            tap("favouriteButton")
            reads("editorNumber", "0305")
            tap("editorCancel")
            addFavourite("0309998877", "Eve")
            type("5")
            reads("numberField", "5")
            tap("tab_idle")
            // The handset keeps the end of the number; who was typed is known nevertheless.
            tryVerify(() => find("favourite0")?.text === "Eve", patience)
            hold("favourite0")
            shown("activityScreen")
            keyClick(Qt.Key_Escape)
            tap("favourite0")
            reads("callNumber", "0309998877")
            tap("endButton")
            isHidden("callScreen")
            tap("tab_favourites")
            tap("favouriteRemove")
            tap("confirmButton")
            isHidden("favouriteLog")
        }

        // Another number that ends alike is another party, whether it was called or refused as a favourite.
        function test_favouritesAlike() {
            compare(TestHandset.tools(["calls clear all", "calls add dialed 0301234112", "favourites announce '' 112"]),
                "")
            tryVerify(() => Parties.calls.count === 1, patience)
            addFavourite("0301234567", "")
            tryVerify(() => find("favouriteRow1").taken, patience)
            addFavourite("0401234567", "Bob")
            tap("messageBar")
            tap("tab_idle")
            for (const [place, number] of [[0, "112"], [1, "0301234567"]]) {
                tap(`favourite${place}`)
                reads("callParty", number)
                tap("endButton")
                isHidden("callScreen")
            }
            compare(TestHandset.tools(["favourites announce 112 ''", "favourites announce 1234567 ''"]), "")
            tryVerify(() => !find("favourite1").taken && !find("favourite0").taken, patience)
        }

        function test_settings() {
            tap("settingsButton")
            tryVerify(() => find("twoLineSwitch").enabled, patience)
            const before = RecentCallSettings.twoLineView
            tap("twoLineSwitch")
            tryCompare(RecentCallSettings, "twoLineView", !before, patience)
            find("prependSwitch").forceActiveFocus()
            keyClick(Qt.Key_Space)
            tryCompare(RecentCallSettings, "prepend", true, patience)
            keyClick(Qt.Key_Space)
            tryCompare(RecentCallSettings, "prepend", false, patience)
            keyClick(Qt.Key_Escape)
            shown("idleScreen")
        }

        function test_withoutService() {
            compare(TestHandset.tools(["calls clear all"]), "")
            tap("tab_recents")
            shown("recentsPlaceholder")
            TestHandset.kill("zyn-recentcalld")
            tryVerify(() => find("recentsPlaceholder")?.title === "The calls cannot be shown", patience)
            services.check()
            verify(services.fault.includes("recent-call"), services.fault)
            shown("serviceBar")
            verify(TestHandset.start("zyn-recentcalld"))
            isHidden("serviceBar")
            TestHandset.kill("zyn-favourites")
            services.check()
            shown("serviceBar")
            verify(TestHandset.start("zyn-favourites"))
            isHidden("serviceBar")
        }
    }
}
