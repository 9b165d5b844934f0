// Several calls at once, which the network of a desk does not have: a phone server is played that tells of them.
import QtQuick
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing

PhoneWindow {
    id: window

    WindowCase {
        name: "WindowWaitingCalls"
        phone: window.phone

        readonly property int calls: 3 // what a phone server answers with a list

        function initTestCase() {} // what is played is in the services' place

        function cleanup() {
            TestHandset.stopPlaying()
            tryVerify(() => !PhoneCalls.available, patience)
        }

        function call(id, number, state) {
            return { id: id, number: number, name: "", type: "voice", direction: "incoming", state: state,
                since: "2024-05-31T18:30:00Z" }
        }

        function test_order_data() {
            return [
                { tag: "ringing", states: ["held", "ringing"], first: "2", others: ["1"], rings: true },
                { tag: "waiting", states: ["held", "connected", "waiting"], first: "3",
                    others: ["2", "1"], rings: true },
                { tag: "talked on", states: ["held", "connected"], first: "2", others: ["1"], rings: false },
                { tag: "placed", states: ["held", "dialing"], first: "2", others: ["1"], rings: false },
                { tag: "alone", states: ["held"], first: "1", others: [], rings: false }
            ]
        }

        function test_order(row) {
            const list = row.states.map((state, index) => call(index + 1, String(index + 1), state))
            verify(TestHandset.playPhone([{ code: calls, data: JSON.stringify(list) }], false))
            reads("callParty", row.first)
            compare(find("answerButton") !== null, row.rings)
            tryVerify(() => find("otherCalls").count === row.others.length, patience)
            compare(itemsOf(phone, item => item instanceof CallRow && item.visible).map(item => item.party).sort(),
                row.others.slice().sort())
        }
    }
}
