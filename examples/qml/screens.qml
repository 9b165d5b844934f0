// Has the user pick a number in the recent-call screens, which may be another application's.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    Button {
        text: "Pick a number"
        onClicked: RecentScreens.pickNumber()
    }
    Text {
        id: picked
    }
    Connections {
        target: RecentScreens
        function onFinished(selected, number) { picked.text = selected ? number : "None" }
    }
}
