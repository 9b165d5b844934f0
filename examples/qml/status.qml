// A status bar: the network, its signal, and the battery.
import QtQuick
import ZynPhone

Row {
    spacing: 16

    Text {
        text: PhoneStatus.networkStatus === PhoneStatus.Registered && PhoneStatus.serviceName
            ? PhoneStatus.serviceName : "No network"
    }
    Text {
        text: "Signal " + (PhoneStatus.signalQuality < 0 ? "?" : PhoneStatus.signalQuality)
    }
    Text {
        text: "Battery " + (PhoneStatus.batteryCapacity < 0 ? "?" : PhoneStatus.batteryCapacity + " %")
        color: PhoneStatus.batteryStatus === PhoneStatus.BatteryCritical ? "red" : "black"
    }
}
