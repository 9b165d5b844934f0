// Who is behind the end of a number, which is all that the handset keeps of a favourite: the recent calls tell.
pragma Singleton
import QtQml
import QtQuick
import ZynPhone

QtObject {
    id: parties

    /// Grows with each change, so that bindings that ask here are asked again.
    property int revision: 0
    /// What was typed since the window is open, as a number without a call is in no list.
    readonly property var typed: []

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
        typed.unshift({"number": number, "name": name ?? ""})
        revision += 1
    }

    /// The newest party whose number ends in @p ending; of nobody the number is the ending.
    function find(ending) {
        const found = {"number": ending, "name": ""}
        if (revision < 0 || ending === "")
            return found
        const all = typed.slice()
        for (let index = 0; index < calls.count; ++index)
            all.push(calls.objectAt(index))
        const known = all.filter(party => party && party.number.endsWith(ending))
        found.number = known[0]?.number ?? ending
        found.name = known.find(party => party.name !== "")?.name ?? ""
        return found
    }
}
