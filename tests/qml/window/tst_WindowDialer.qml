// Numbers as a person dials them: by keys, by keyboard, by speed dial, and under the lock.
import QtQuick
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing

PhoneWindow {
    id: window

    WindowCase {
        name: "WindowDialer"
        phone: window.phone

        function endCall() {
            tap("endButton")
            isHidden("callScreen")
        }

        function test_keypad() {
            tap("tab_dialer")
            for (const digit of ["0", "3", "0", "1"])
                tap("key" + digit)
            reads("numberField", "0301")
            tap("backspaceButton")
            reads("numberField", "030")
            hold("key0")
            reads("numberField", "030+")
            tap("backspaceButton")
            type("45")
            reads("numberField", "03045")
            hold("backspaceButton")
            reads("numberField", "")
        }

        function test_callKey() {
            TestWindow.clickKey(Qt.Key_Call)
            shown("recentsScreen")
        }

        function test_keyboard_data() {
            return [{ tag: "Return", key: Qt.Key_Return }, { tag: "Call", key: Qt.Key_Call }]
        }

        function test_keyboard(row) {
            shown("idleScreen")
            type("0304445555")
            reads("numberField", "0304445555")
            TestWindow.clickKey(row.key)
            reads("callParty", "0304445555")
            endCall()
            keyClick(Qt.Key_Escape)
            shown("idleScreen")
        }

        function test_firstSign_data() {
            return [
                { tag: "digits' row", sign: "5", modifiers: Qt.NoModifier },
                { tag: "number pad", sign: "5", modifiers: Qt.KeypadModifier },
                { tag: "with Shift", sign: "#", modifiers: Qt.ShiftModifier },
                { tag: "shortcut", sign: "5", modifiers: Qt.ControlModifier, isLost: true }
            ]
        }

        function test_firstSign(row) {
            shown("idleScreen")
            keyClick(row.sign, row.modifiers)
            if (row.isLost)
                verify(find("idleScreen"))
            else
                reads("numberField", row.sign)
        }

        function test_lastDialed() {
            type("0304440000")
            keyClick(Qt.Key_Return)
            shown("callScreen")
            endCall()
            reads("numberField", "")
            tryVerify(() => find("callButton").enabled, patience)
            tap("callButton")
            reads("numberField", "0304440000")
            tap("callButton")
            reads("callParty", "0304440000")
            endCall()
        }

        function test_held_data() {
            return [
                { tag: "Return", key: Qt.Key_Return },
                { tag: "Enter", key: Qt.Key_Enter },
                { tag: "Call", key: Qt.Key_Call }
            ]
        }

        // A key that is held fetches the number, and does not call it; calls it, and does not end the call.
        function test_held(row) {
            compare(TestHandset.tools(["calls add dialed 0304440001"]), "")
            tap("tab_dialer")
            tryVerify(() => find("callButton").enabled, patience)
            TestWindow.clickKey(row.key)
            reads("numberField", "0304440001")
            TestWindow.repeatKey(row.key)
            wait(300)
            compare(PhoneCalls.calls.count, 0)
            TestWindow.clickKey(row.key)
            shown("callScreen")
            tryVerify(() => find("endButton").activeFocus, patience)
            TestWindow.repeatKey(row.key)
            wait(300)
            compare(PhoneCalls.calls.count, 1)
        }

        function test_verdict_data() {
            return [
                { tag: "begins", text: "11", says: true },
                { tag: "whole", text: "112", says: true },
                { tag: "ordinary", text: "0301", says: false }
            ]
        }

        function test_verdict(row) {
            type(row.text)
            tryVerify(() => (find("verdict").text.trim() !== "") === row.says, patience)
        }

        function test_withoutSim() {
            DeskNetwork.simCardState = PhoneStatus.SimAbsent
            tryCompare(DeskNetwork, "simCardState", PhoneStatus.SimAbsent, patience)
            type("0301")
            reads("numberField", "0301")
            verify(find("verdict").text.trim() !== "")
            verify(!find("callButton").enabled)
            keyClick(Qt.Key_Return)
            shown("messageBar")
            // Lists and speed dial ask there, too.
            verify(!Dialing.call("0301", "Anna"))
            compare(PhoneCalls.calls.count, 0)
            hold("backspaceButton")
            type("112")
            keyClick(Qt.Key_Return)
            reads("callParty", "112")
            endCall()
            DeskNetwork.simCardState = PhoneStatus.SimReady
            tryCompare(DeskNetwork, "simCardState", PhoneStatus.SimReady, patience)
        }

        function test_speedDial() {
            tap("tab_dialer")
            hold("key4")
            shown("messageBar")
            reads("numberField", "")
            type("0305556666")
            hold("key4")
            shown("storeOffer")
            reads("numberField", "0305556666")
            tap("confirmButton")
            isHidden("storeOffer")
            tryVerify(() => TestHandset.tool("speed-dial list").includes("0305556666"), patience)
            hold("backspaceButton")
            reads("numberField", "")
            // The number is known once it was stored.
            tryVerify(() => {
                if (find("key4") !== null)
                    hold("key4")
                wait(300)
                return find("callScreen") !== null
            }, patience)
            reads("callParty", "0305556666")
            endCall()
        }

        function test_pushToTalk() {
            compare(TestHandset.tools(["calls add dialed 0301111142"]), "")
            tap("tab_pushToTalk")
            find("talkNumber").forceActiveFocus()
            type("42")
            keyClick(Qt.Key_Return)
            reads("chip42", "42")
            tap("talkButton")
            reads("callParty", "42")
            endCall()
            reads("talkButton", "Talk")
        }

        function test_lockedKeyboard_data() {
            return [
                { tag: "unlocked by hand before", before: () => {
                    tap("unlockButton")
                    tap("lockButton")
                } },
                { tag: "call key", before: () => {}, key: Qt.Key_Call },
                { tag: "dialer asked for", before: () => tap("emergencyButton") },
                { tag: "digits cleared", before: () => {
                    tap("emergencyButton")
                    tap("key1")
                    tap("emergencyBack")
                } },
                { tag: "a list asked for by others", before: () => {
                    RecentScreens.open(RecentScreens.MissedPage)
                    tryCompare(Navigation, "tab", "recents", patience)
                } }
            ]
        }

        // A number that is typed is called, whatever was tapped before.
        function test_lockedKeyboard(row) {
            tap("lockButton")
            shown("lockScreen")
            row.before()
            shown("lockScreen")
            type("112")
            reads("emergencyText", "112")
            TestWindow.clickKey(row.key ?? Qt.Key_Return)
            reads("callParty", "112")
            endCall()
        }

        function test_lock() {
            tap("lockButton")
            shown("lockScreen")
            isHidden("tabs")
            tap("emergencyButton")
            for (const digit of ["0", "1", "1", "7"])
                tap("key" + digit)
            // Of these only what may become an emergency number was taken, and told why.
            reads("emergencyText", "11")
            verify(find("emergencyReason").text !== "")
            verify(!find("emergencyCall").enabled)
            tap("key2")
            tap("emergencyCall")
            reads("callParty", "112")
            endCall()
            shown("lockScreen")
            type("03")
            reads("emergencyText", " ")
            DeskNetwork.incoming("0306667777")
            tap("answerButton")
            isHidden("answerButton")
            endCall()
            tap("unlockButton")
            isHidden("lockScreen")
            shown("idleScreen")
        }
    }
}
