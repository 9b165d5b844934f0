// Places calls for all screens, and tells which numbers may be called now.
pragma Singleton
import QtQuick
import ZynPhone

QtObject {
    id: dialing

    /// Whether only emergency numbers may be called, as no SIM card is ready. One that waits for its PIN is told of by
    /// the phone server, which refuses what the network would.
    readonly property bool restricted: DeskNetwork.simCardState >= 0
        && DeskNetwork.simCardState !== PhoneStatus.SimReady && DeskNetwork.simCardState !== PhoneStatus.SimLocked
    readonly property EmergencyNumber emergency: EmergencyNumber {}

    /// Calls @p number, and says why if that is not done. Whether it was asked for.
    function call(number, name) {
        emergency.text = number
        emergency.refresh()
        if (!restricted || emergency.emergency)
            return PhoneCalls.dial(number, name ?? "")
        Navigation.say(qsTr("Without a SIM card, only emergency numbers can be called."))
        return false
    }
}
