// The nine keys of speed dial: what is entered in one is stored.
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import ZynPhone

Column {
    Text {
        text: speedDial.error
    }
    Repeater {
        model: SpeedDialModel { id: speedDial }
        delegate: TextField {
            required property int key
            required property string number
            text: number
            placeholderText: "Key " + key + " is free"
            onEditingFinished: speedDial.set(key, text)
        }
    }
}
