// What other applications ask of the recent-call screens, which are here.
import QtQuick
import ZynPhone

Connections {
    id: requests

    /// Null while another screen is shown.
    property RecentsScreen shown: null
    readonly property bool picking: shown?.picking ?? false

    target: RecentScreens

    function onPageRequested(page) {
        const picks = page === RecentScreens.PickerPage
        // Whoever asks for the picker while it is open waits for the same one.
        if (!picks || !picking)
            Navigation.go("recents", {"picking": picks, "category": picks ? RecentCallsModel.All : page})
    }
    function onDetailsRequested(index, category) {
        Navigation.go("recents", {"category": category, "openRow": index})
    }
    function onHideRequested() {
        if (Navigation.tab !== "recents")
            return
        // The picker tells by itself that it goes.
        if (!picking)
            RecentScreens.reportDismissed()
        Navigation.go("idle")
    }
}
