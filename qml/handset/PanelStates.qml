// Plays what the handset is told of its network, its card and its battery.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import ZynPhone

ColumnLayout {
    id: panel

    spacing: Theme.margin

    // What a network tells when it takes the phone, and when it lets it go.
    function register(state) {
        const taken = state === PhoneStatus.Registered
        DeskNetwork.status("network", [state, "26201"])
        DeskNetwork.status("service-availability", [taken ? 1 : 0])
        DeskNetwork.status("service-name", [taken ? operator.text : ""])
    }

    component Level: Slider {
        id: slider

        property string title

        Layout.fillWidth: true
        topPadding: Theme.base * 2.2
        Accessible.role: Accessible.Slider
        Accessible.name: title
        palette.dark: Theme.accent
        palette.midlight: Theme.raised

        PhoneText {
            anchors.left: parent.left
            anchors.top: parent.top
            text: slider.title
            Accessible.ignored: true
        }
        handle: Rectangle {
            x: slider.leftPadding + slider.visualPosition * (slider.availableWidth - width)
            y: slider.topPadding + (slider.availableHeight - height) / 2
            implicitWidth: Theme.base * 1.7
            implicitHeight: implicitWidth
            radius: width / 2
            color: Theme.accent
            border.width: slider.visualFocus ? 2 : 0
            border.color: Theme.text
        }
    }

    PanelSection {
        title: qsTr("Network")

        Level {
            objectName: "panelSignal"
            title: qsTr("Signal: %1 of 5").arg(value)
            from: 0
            to: 5
            stepSize: 1
            snapMode: Slider.SnapAlways
            value: PhoneStatus.signalQuality
            onMoved: DeskNetwork.status("signal-quality", [value])
        }
        PhoneField {
            id: operator

            objectName: "panelOperator"
            Layout.fillWidth: true
            placeholderText: qsTr("Name of the operator")
            text: "Nordfunk"
            onAccepted: DeskNetwork.status("service-name", [text])
        }
        PanelChoices {
            title: qsTr("Network")
            value: PhoneStatus.networkStatus
            options: [
                {"value": PhoneStatus.Registered, "text": qsTr("Registered")},
                {"value": PhoneStatus.Searching, "text": qsTr("Searching")},
                {"value": PhoneStatus.Denied, "text": qsTr("Denied")},
                {"value": PhoneStatus.NotRegistered, "text": qsTr("None")}
            ]
            onChosen: value => panel.register(value)
        }
        PanelChoices {
            title: qsTr("Roaming")
            value: PhoneStatus.roaming
            options: [
                {"value": PhoneStatus.No, "text": qsTr("At home")},
                {"value": PhoneStatus.Yes, "text": qsTr("Abroad")}
            ]
            onChosen: value => DeskNetwork.status("roaming", [value])
        }
    }
    PanelSection {
        title: qsTr("Battery")

        Level {
            objectName: "panelBattery"
            title: qsTr("Charge: %1 %").arg(Math.round(value))
            from: 0
            to: 100
            stepSize: 1
            value: Math.max(0, PhoneStatus.batteryCapacity)
            onMoved: DeskNetwork.status("battery-capacity", [Math.round(value)])
        }
        PanelChoices {
            title: qsTr("Warning")
            value: PhoneStatus.batteryStatus
            options: [
                {"value": PhoneStatus.BatteryNormal, "text": qsTr("None")},
                {"value": PhoneStatus.BatteryLow, "text": qsTr("Low")},
                {"value": PhoneStatus.BatteryCritical, "text": qsTr("Critical")}
            ]
            onChosen: value => DeskNetwork.status("battery-status", [value])
        }
        PanelChoices {
            title: qsTr("Charger")
            value: PhoneStatus.charger
            options: [
                {"value": PhoneStatus.NotCharging, "text": qsTr("None")},
                {"value": PhoneStatus.Charging, "text": qsTr("Charging")},
                {"value": PhoneStatus.ChargedFull, "text": qsTr("Full")}
            ]
            onChosen: value => DeskNetwork.status("charger", [value])
        }
    }
    PanelSection {
        title: qsTr("SIM card")

        PanelChoices {
            title: qsTr("Card")
            value: PhoneStatus.simCard
            options: [
                {"value": PhoneStatus.SimReady, "text": qsTr("Ready")},
                {"value": PhoneStatus.SimAbsent, "text": qsTr("None")},
                {"value": PhoneStatus.SimLocked, "text": qsTr("Locked")}
            ]
            // What is told, and what the library asks of the handset for emergency calls.
            onChosen: value => {
                DeskNetwork.status("sim-card", [value])
                DeskNetwork.simCardState = value
            }
        }
        PanelChoices {
            title: qsTr("Asks for")
            value: PhoneStatus.pin
            options: [
                {"value": PhoneStatus.PinNotRequired, "text": qsTr("Nothing")},
                {"value": PhoneStatus.Pin1Required, "text": qsTr("PIN")},
                {"value": PhoneStatus.Puk1Required, "text": qsTr("PUK")}
            ]
            onChosen: value => DeskNetwork.status("pin", [value])
        }
    }
}
