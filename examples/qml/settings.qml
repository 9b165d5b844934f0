// The settings of recent calls.
import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    Switch {
        text: "Calls on two lines"
        checked: RecentCallSettings.twoLineView
        onToggled: RecentCallSettings.twoLineView = checked
    }
    Switch {
        text: "Prefix in front of dialed numbers"
        checked: RecentCallSettings.prepend
        onToggled: RecentCallSettings.prepend = checked
    }
    Text {
        text: RecentCallSettings.loaded ? "Keeps " + RecentCallSettings.maxTotal + " calls" : ""
    }
    Text {
        text: RecentCallSettings.error
    }
}
