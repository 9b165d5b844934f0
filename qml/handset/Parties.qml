// The favourites of all screens, and who is behind a number: what was typed and the recent calls tell.
pragma Singleton
import QtQml
import QtQuick
import ZynPhone

QtObject {
    id: parties

    /// One for all, as it knows the whole numbers that it has announced.
    readonly property FavouritesModel favourites: FavouritesModel {
        onFailed: reason => Navigation.say(reason)
    }
    /// Grows with each change, so that bindings that ask here are asked again.
    property int revision: 0
    /// The names that were typed since the window is open, as those of numbers without a call are in no list.
    readonly property var typed: ({})

    readonly property Instantiator calls: Instantiator {
        model: RecentCallsModel {}
        onObjectAdded: parties.revision += 1
        onObjectRemoved: parties.revision += 1

        QtObject {
            required property string number
            required property string name
        }
    }

    function remember(number, name) {
        typed[number] = name
        revision += 1
    }

    /// The name of whom @p number reaches, as far as it is known. A prefix, which a call may have or not, makes nobody
    /// else of him.
    function nameOf(number) {
        if (revision < 0 || number === "")
            return ""
        if (typed[number])
            return typed[number]
        const named = []
        for (let index = 0; index < calls.count; ++index) {
            const call = calls.objectAt(index)
            if (call?.name)
                named.push(call)
        }
        const known = named.find(call => call.number === number)
            ?? named.find(call => call.number.slice(-7) === number.slice(-7))
        return known?.name ?? ""
    }
}
