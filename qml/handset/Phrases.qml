// How parties, times and states are told to people.
pragma Singleton
import QtQuick
import ZynPhone

QtObject {
    id: phrases

    readonly property string unknownParty: qsTr("Unknown number")

    /// Those of @p parts that say something, as one text.
    function listing(parts) {
        return parts.filter(part => part !== "").join(", ")
    }

    /// What is unread of a favourite; less than 0 is unknown.
    function unread(calls, messages) {
        return listing([calls > 0 ? qsTr("%n missed call(s)", "", calls) : "",
            messages > 0 ? qsTr("%n unread message(s)", "", messages) : ""])
    }

    function party(name, number) {
        return name || number || unknownParty
    }

    /// How long, in seconds: "0:42", "1:02:03".
    function duration(seconds) {
        const whole = Math.max(0, Math.floor(seconds))
        const two = number => String(number).padStart(2, "0")
        const hours = Math.floor(whole / 3600)
        const minutes = Math.floor(whole / 60) % 60
        return hours > 0 ? `${hours}:${two(minutes)}:${two(whole % 60)}` : `${minutes}:${two(whole % 60)}`
    }

    /// When, as short as it can be told today.
    function moment(when, now) {
        if (!when || isNaN(when.getTime()))
            return ""
        const time = Clock.timeOf(when)
        const days = Math.round((new Date(now).setHours(0, 0, 0, 0) - new Date(when).setHours(0, 0, 0, 0)) / 86400000)
        if (days === 0)
            return time
        if (days === 1)
            return qsTr("Yesterday, %1").arg(time)
        return qsTr("%1, %2").arg(when.toLocaleDateString(Qt.locale(), Locale.ShortFormat)).arg(time)
    }

    function callState(state) {
        switch (state) {
        case PhoneCalls.Dialing:
            return qsTr("Dialing")
        case PhoneCalls.Alerting:
            return qsTr("Rings there")
        case PhoneCalls.Ringing:
            return qsTr("Incoming call")
        case PhoneCalls.Waiting:
            return qsTr("Call waiting")
        case PhoneCalls.Connected:
            return qsTr("Connected")
        case PhoneCalls.Held:
            return qsTr("On hold")
        default:
            return qsTr("Ended")
        }
    }

    function category(category) {
        switch (category) {
        case RecentCallsModel.Answered:
            return qsTr("Answered")
        case RecentCallsModel.Missed:
            return qsTr("Missed")
        default:
            return qsTr("Dialed")
        }
    }

    function categorySymbol(category) {
        switch (category) {
        case RecentCallsModel.Answered:
            return "incoming"
        case RecentCallsModel.Missed:
            return "missed"
        default:
            return "outgoing"
        }
    }

    /// What keeps the SIM card from being used; empty if nothing does, or nothing was told.
    function simFault(card, pin) {
        if (card === PhoneStatus.SimAbsent)
            return qsTr("No SIM card")
        if (pin === PhoneStatus.Pin1Required || pin === PhoneStatus.Pin2Required)
            return qsTr("SIM card: PIN needed")
        if (pin === PhoneStatus.Puk1Required || pin === PhoneStatus.Puk2Required)
            return qsTr("SIM card: PUK needed")
        return card === PhoneStatus.SimLocked ? qsTr("SIM card locked") : ""
    }

    function network(status) {
        switch (status) {
        case PhoneStatus.NotRegistered:
            return qsTr("No network")
        case PhoneStatus.Searching:
            return qsTr("Searching")
        case PhoneStatus.Denied:
            return qsTr("Network denied")
        default:
            return ""
        }
    }
}
