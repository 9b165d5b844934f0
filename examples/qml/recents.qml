// The log of recent calls; a tap deletes a call.
pragma ComponentBehavior: Bound

import QtQuick
import ZynPhone

Column {
    Text {
        text: calls.error
    }
    ListView {
        width: 320
        height: 480
        model: RecentCallsModel { id: calls }
        delegate: Text {
            id: call
            required property int index
            required property string number
            required property date start
            required property int category
            text: start.toLocaleString() + "  " + number
            color: category === RecentCallsModel.Missed ? "red" : "black"
            TapHandler { onTapped: calls.remove(call.index) }
        }
    }
}
