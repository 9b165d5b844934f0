// The favourites with what is unread of each, and a field for another one.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    Repeater {
        model: FavouritesModel {
            id: favourites
            onFailed: reason => problem.text = reason
        }
        delegate: Button {
            required property int index
            required property string dialNumber
            required property bool taken
            required property int missedCalls
            text: taken ? "Remove " + dialNumber + (missedCalls > 0 ? ", " + missedCalls + " missed" : "") : "Free"
            enabled: taken && !favourites.busy
            onClicked: favourites.remove(index)
        }
    }
    TextField {
        placeholderText: "New favourite"
        onAccepted: favourites.add(text)
    }
    Text {
        id: problem
    }
}
