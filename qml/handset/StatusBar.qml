// The line at the top: reception, operator, SIM card, missed calls, battery and time.
import QtQuick
import QtQuick.Layouts
import ZynPhone

RowLayout {
    id: bar

    readonly property string operator: PhoneStatus.serviceName || PhoneStatus.providerName || ""
    readonly property string network: Phrases.network(PhoneStatus.networkStatus)

    spacing: Theme.gap

    SignalBars {
        objectName: "signalBars"
        Layout.leftMargin: Theme.margin
        level: PhoneStatus.signalQuality
    }
    PhoneText {
        objectName: "operatorText"
        Layout.fillWidth: true
        font.pixelSize: Theme.small
        text: bar.network || bar.operator || (PhoneStatus.heard ? qsTr("No service") : "")
    }
    Rectangle {
        objectName: "roamingMark"
        visible: PhoneStatus.roaming === PhoneStatus.Yes
        implicitWidth: roaming.implicitWidth + Theme.gap
        implicitHeight: roaming.implicitHeight
        radius: 3
        color: Theme.warning

        PhoneText {
            id: roaming

            anchors.centerIn: parent
            font.pixelSize: Theme.small
            font.bold: true
            color: Theme.onTone
            text: qsTr("R", "roaming, on the status bar")
            Accessible.name: qsTr("Roaming")
        }
    }
    Row {
        objectName: "simMark"
        visible: Phrases.simFault(PhoneStatus.simCard, PhoneStatus.pin) !== ""
        Accessible.role: Accessible.Indicator
        Accessible.name: Phrases.simFault(PhoneStatus.simCard, PhoneStatus.pin)

        Icon { name: "sim"; size: Theme.base * 1.3; color: Theme.warning }
        Icon { name: "warning"; size: Theme.base * 1.1; color: Theme.warning }
    }
    Icon {
        visible: DeskNetwork.keypadLocked
        name: "lock"
        size: Theme.base * 1.3
    }
    Row {
        objectName: "missedMark"
        visible: MissedCalls.unread > 0
        spacing: 2
        Accessible.role: Accessible.Indicator
        Accessible.name: qsTr("%n unread missed call(s)", "", MissedCalls.unread)

        Icon { name: "missed"; size: Theme.base * 1.3; color: Theme.bad }
        PhoneText {
            anchors.verticalCenter: parent.verticalCenter
            font.pixelSize: Theme.small
            font.bold: true
            color: Theme.bad
            text: MissedCalls.unread
            Accessible.ignored: true
        }
    }
    BatterySymbol {
        objectName: "battery"
        compact: bar.width < Theme.base * 24
        capacity: PhoneStatus.batteryCapacity
        charging: PhoneStatus.charger === PhoneStatus.Charging
        low: PhoneStatus.batteryStatus === PhoneStatus.BatteryLow
            || PhoneStatus.batteryStatus === PhoneStatus.BatteryCritical
    }
    PhoneText {
        Layout.rightMargin: Theme.margin
        font.pixelSize: Theme.small
        font.weight: Font.DemiBold
        text: Clock.time
    }
}
