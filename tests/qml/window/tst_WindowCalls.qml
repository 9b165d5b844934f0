// Calls as a person meets them: they ring, are answered, missed and called back, wait, and fail.
import QtQuick
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing

PhoneWindow {
    id: window

    WindowCase {
        name: "WindowCalls"
        phone: window.phone

        function test_missed() {
            const before = MissedCalls.unread
            DeskNetwork.incoming("0301112222", "Dora")
            reads("callParty", "Dora")
            reads("callNumber", "0301112222")
            tryVerify(() => find("answerButton").activeFocus, patience)
            DeskNetwork.missed()
            isHidden("callScreen")
            tryCompare(MissedCalls, "unread", Math.max(0, before) + 1, patience)
            tap("missedCard")
            shown("recentsScreen")
            tap("recent0")
            shown("recentDetails")
            // Who has been shown for a while was seen.
            tryCompare(MissedCalls, "unread", 0, patience)
            tap("callBackButton")
            shown("callScreen")
            reads("callParty", "Dora")
            tap("endButton")
            isHidden("callScreen")
        }

        function test_answered_data() {
            return [
                { tag: "by hand", answer: () => tap("answerButton"), end: () => tap("endButton") },
                { tag: "by keyboard", answer: () => keyClick(Qt.Key_Return), end: () => keyClick(Qt.Key_Return) },
                { tag: "by shortcut", answer: () => keyClick(Qt.Key_A, Qt.AltModifier),
                    end: () => keyClick(Qt.Key_H, Qt.AltModifier) },
                { tag: "ended there", answer: () => tap("answerButton"), end: () => DeskNetwork.hangUp() }
            ]
        }

        function test_answered(row) {
            DeskNetwork.incoming("0302223333")
            reads("callParty", "0302223333")
            tryVerify(() => find("answerButton").activeFocus, patience)
            row.answer()
            isHidden("answerButton")
            tryVerify(() => /^\d+:\d\d$/.test(find("callState").text), patience)
            tryVerify(() => find("endButton").activeFocus, patience)
            row.end()
            isHidden("callScreen")
        }

        function test_held_data() {
            return [{ tag: "Return", key: Qt.Key_Return }, { tag: "Space", key: Qt.Key_Space }]
        }

        // The key with which a call is answered does not end it.
        function test_held(row) {
            DeskNetwork.incoming("0302223334")
            shown("callScreen")
            tryVerify(() => find("answerButton").activeFocus, patience)
            keyPress(row.key)
            for (let time = 0; time < 3; ++time) {
                TestWindow.repeatKey(row.key)
                wait(300)
            }
            keyRelease(row.key)
            isHidden("answerButton")
            wait(300)
            compare(PhoneCalls.calls.count, 1)
        }

        function test_doubleTap() {
            DeskNetwork.incoming("0302223335")
            const end = settled("endButton")
            const answer = find("answerButton")
            const tapAgain = () => Qt.callLater(() => mouseClick(end))
            answer.visibleChanged.connect(tapAgain)
            tap("answerButton")
            isHidden("answerButton")
            answer.visibleChanged.disconnect(tapAgain)
            wait(300)
            compare(PhoneCalls.calls.count, 1)
        }

        function test_rejected() {
            DeskNetwork.incoming("0303334444")
            tap("endButton")
            isHidden("callScreen")
        }

        function test_aside() {
            DeskNetwork.incoming("0301110003")
            keyClick(Qt.Key_Escape)
            verify(find("callScreen"), "what rings cannot be left aside")
            tap("answerButton")
            isHidden("answerButton")
            keyClick(Qt.Key_Escape)
            isHidden("callScreen")
            shown("idleScreen")
            tap("returnButton")
            shown("callScreen")
        }

        function test_notPutThrough() {
            PhoneCalls.dial("0301110004", "Nobody")
            shown("callScreen")
            DeskNetwork.fail()
            reads("messageBar", "The call to Nobody was not put through.")
            tap("messageBar")
            isHidden("messageBar")
        }
    }
}
