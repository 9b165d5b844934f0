// The calls on the line as a list that can be asked, the most urgent first.
pragma ComponentBehavior: Bound

import QtQml
import QtQuick
import ZynPhone

QtObject {
    id: line

    /// The calls that are not over. Of each: callId, number, name, direction, state and since.
    property var calls: []
    readonly property var first: calls[0] ?? null
    readonly property var others: calls.slice(1)
    readonly property bool rings: first !== null && urgencyOf(first.state) === 0
    readonly property bool busy: first !== null

    // Whoever rings is to be decided on; whoever is talked to comes before those who wait.
    readonly property var urgency: [PhoneCalls.Ringing, PhoneCalls.Waiting, PhoneCalls.Connected, PhoneCalls.Alerting,
        PhoneCalls.Dialing, PhoneCalls.Held]

    function urgencyOf(state) {
        return Math.max(0, urgency.indexOf(state) - 1)
    }

    function refresh() {
        const all = []
        for (let index = 0; index < source.count; ++index) {
            const call = source.objectAt(index) as LineCall
            if (call && urgency.includes(call.state))
                all.push(call)
        }
        all.sort((one, other) => urgencyOf(one.state) - urgencyOf(other.state) || one.callId - other.callId)
        calls = all
    }

    readonly property Instantiator source: Instantiator {
        model: PhoneCalls.calls
        onObjectAdded: line.refresh()
        onObjectRemoved: (index, object) => line.calls = line.calls.filter(call => call !== object)

        LineCall {
            onStateChanged: line.refresh()
        }
    }
}
