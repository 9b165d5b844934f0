// What other applications ask of the recent-call screens, which are here.
import QtQuick
import ZynPhone

Connections {
    target: RecentScreens

    function onPageRequested(page) {
        const picking = page === RecentScreens.PickerPage
        Navigation.go("recents", {"picking": picking, "category": picking ? RecentCallsModel.All : page})
    }
    function onDetailsRequested(index, category) {
        Navigation.go("recents", {"category": category, "openRow": index})
    }
    function onHideRequested() {
        if (Navigation.tab !== "recents")
            return
        Navigation.go("idle")
        RecentScreens.reportDismissed()
    }
}
