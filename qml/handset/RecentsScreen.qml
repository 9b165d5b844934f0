// The recent calls: all, answered, missed or dialed ones. Missed calls count as read once they were shown for a while.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    property int category: RecentCallsModel.All
    /// The row that is open, as when its details were asked for; -1 for none.
    property int openRow: -1
    /// An application has asked for a number from these lists.
    property bool picking: false
    property bool clearing: false

    readonly property bool tellsMissed: category === RecentCallsModel.Missed || category === RecentCallsModel.All

    objectName: "recentsScreen"
    title: picking ? qsTr("Choose a number") : qsTr("Recent calls")
    Component.onDestruction: pick("")

    function choose(list) {
        category = list
        openRow = -1
        clearing = false
    }

    // Whoever asked is told once, at the latest when the screen goes.
    function pick(number) {
        if (!picking)
            return
        picking = false
        if (number !== "")
            RecentScreens.reportPicked(number)
        else
            RecentScreens.reportDismissed()
    }

    actions: PhoneButton {
        objectName: "clearButton"
        bare: true
        symbol: "delete"
        text: qsTr("Delete all calls of this list")
        visible: !screen.picking
        enabled: calls.count > 0
        onClicked: screen.clearing = true
    }

    RecentCallsModel {
        id: calls

        category: screen.category
        onFailed: reason => Navigation.say(reason)
    }
    // The open row stays with its call; one that was asked for stays the row that it is until the calls are there.
    Connections {
        target: calls

        function onRowsInserted(parent, first, last) {
            if (calls.loaded && screen.openRow >= first)
                screen.openRow += last - first + 1
        }
        function onRowsRemoved(parent, first, last) {
            if (screen.openRow > last)
                screen.openRow -= last - first + 1
            else if (screen.openRow >= first)
                screen.openRow = -1
        }
    }
    Timer {
        // Long enough to see which are new.
        interval: 1200
        running: screen.visible && screen.tellsMissed && calls.loaded && MissedCalls.unread > 0
        onTriggered: calls.markAllRead()
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: Theme.gap

        CategoryTabs {
            Layout.fillWidth: true
            Layout.leftMargin: Theme.margin
            Layout.rightMargin: Theme.margin
            category: screen.category
            onChosen: list => screen.choose(list)
        }
        ConfirmBar {
            objectName: "clearQuestion"
            Layout.fillWidth: true
            Layout.leftMargin: Theme.margin
            Layout.rightMargin: Theme.margin
            visible: screen.clearing
            question: qsTr("Delete all %n call(s) of this list?", "", calls.count)
            action: qsTr("Delete")
            onConfirmed: {
                calls.clear()
                screen.clearing = false
            }
            onDeclined: screen.clearing = false
        }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ListView {
                id: list

                objectName: "recentsList"
                anchors.fill: parent
                anchors.leftMargin: Theme.gap
                anchors.rightMargin: Theme.gap
                clip: true
                focus: true
                keyNavigationEnabled: true
                model: calls
                ScrollBar.vertical: ScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: screen.title

                delegate: RecentRow {
                    width: ListView.view.width
                    opened: index === screen.openRow
                    twoLines: RecentCallSettings.twoLineView
                    picking: screen.picking
                    onClicked: {
                        if (screen.picking) {
                            screen.pick(number)
                            Navigation.go("idle")
                            return
                        }
                        list.currentIndex = index
                        screen.openRow = opened ? -1 : index
                    }
                    onCalledBack: Dialing.call(number, name)
                    onDeleted: {
                        screen.openRow = -1
                        calls.remove(index)
                    }
                }
            }
            ListPlaceholder {
                objectName: "recentsPlaceholder"
                anchors.centerIn: parent
                width: parent.width - 4 * Theme.margin
                visible: calls.count === 0 && !calls.busy && (calls.loaded || calls.error !== "")
                symbol: calls.error === "" ? "clock" : "warning"
                title: calls.error === "" ? qsTr("No calls here") : qsTr("The calls cannot be shown")
                text: calls.error === "" ? qsTr("Calls appear here once they are over.") : calls.error
                action: calls.error === "" ? qsTr("Type a number") : qsTr("Try again")
                onActed: {
                    if (calls.error === "")
                        Navigation.go("dialer")
                    else
                        calls.reload()
                }
            }
        }
    }
}
