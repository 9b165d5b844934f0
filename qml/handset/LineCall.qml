// One call on the line, as the phone server tells it.
import QtQml

QtObject {
    required property int callId
    required property string number
    required property string name
    required property string type
    required property int direction
    required property int state
    required property date since
}
