// The five favourites: each is called, looked into, replaced or removed here, and an empty place gets a number.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

PhoneScreen {
    id: screen

    /// A number that is to become a favourite: the first empty place asks whether it gets it.
    property string number

    objectName: "favouritesScreen"
    title: qsTr("Favourites")

    readonly property int places: 5
    readonly property FavouritesModel favourites: Parties.favourites

    Connections {
        target: screen.favourites

        function onLoadedChanged() {
            screen.propose()
        }
    }
    Component.onCompleted: propose()

    function propose() {
        for (let index = 0; number !== "" && favourites.loaded && index < rows.count; ++index) {
            const row = rows.itemAt(index) as FavouriteRow
            if (row.taken)
                continue
            row.proposal = number
            row.asking = "edit"
            number = ""
        }
        if (number !== "" && favourites.loaded && rows.count === places) {
            Navigation.say(qsTr("All five places are taken. Replace one of them by %1.").arg(number))
            number = ""
        }
    }

    Flickable {
        anchors.fill: parent
        contentHeight: column.implicitHeight + Theme.margin
        clip: true
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: column

            x: Theme.margin
            width: parent.width - 2 * Theme.margin
            spacing: Theme.gap

            Repeater {
                id: rows

                model: screen.favourites

                FavouriteRow {
                    Layout.fillWidth: true
                    onStored: (number, name) => {
                        Parties.remember(number, name)
                        if (taken)
                            screen.favourites.replace(index, number, name)
                        else
                            screen.favourites.add(number, name)
                    }
                    onRemoved: screen.favourites.remove(index)
                }
            }
            ListPlaceholder {
                Layout.fillWidth: true
                Layout.topMargin: Theme.margin * 2
                visible: screen.favourites.error !== ""
                symbol: "warning"
                title: qsTr("The favourites cannot be shown")
                text: screen.favourites.error
                action: qsTr("Try again")
                onActed: screen.favourites.reload()
            }
        }
    }
}
