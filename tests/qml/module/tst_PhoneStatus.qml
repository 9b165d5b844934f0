// Each property by its message, its change signal, and what a server that runs already tells.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    id: tests
    name: "PhoneStatus"

    property var events: []

    SignalSpy { id: changes; target: PhoneStatus }
    SignalSpy { id: refreshed; target: PhoneStatus; signalName: "powerKeyPressed" }

    readonly property var numbers: [
        "powerOnMode", "simCard", "pin", "subsidyLock", "charger", "batteryStatus", "batteryCapacity", "signalQuality",
        "service", "roaming", "networkStatus", "gprsAttached", "gprsActivated", "gprsService", "egprsService",
        "egprsTransmitting", "openGprsResult", "closeGprsResult", "umaIcon", "operatorLogoHidden", "providerFlag",
        "currentDuration", "totalDuration", "totalBytes", "sentBytes", "receivedBytes", "dataConnected"
    ]
    readonly property var texts: ["networkId", "serviceName", "providerName", "homeZone", "wifiProfile", "imsi"]

    function initTestCase() {
        compare(PhoneStatus.heard, false)
        for (const name of numbers)
            compare(PhoneStatus[name], PhoneStatus.Unknown, name)
        for (const name of texts)
            compare(PhoneStatus[name], undefined, name)
    }

    /// Whoever is told of one value of a message finds the others.
    function test_wholeMessages_data() {
        return [
            { tag: "provider", first: "provider-name '' 0", second: "provider-name Grün 7", told: "providerName",
              others: { providerFlag: 7 } },
            { tag: "bytes", first: "total-bytes 0 1 1 1", second: "total-bytes 1 9 5 4", told: "dataConnected",
              others: { totalBytes: 9, sentBytes: 5, receivedBytes: 4 } }
        ]
    }

    function test_wholeMessages(row) {
        tell([row.first])
        const found = {}
        const look = () => {
            for (const name in row.others)
                found[name] = PhoneStatus[name]
        }
        const changed = PhoneStatus[row.told + "Changed"]
        changed.connect(look)
        tell([row.second])
        changed.disconnect(look)
        compare(found, row.others)
    }

    // Sends the messages, and one more, so that all before it have been read.
    function tell(messages) {
        const before = refreshed.count
        compare(TestHandset.tools(messages.concat("power-key").map(message => "status " + message)), "")
        tryCompare(refreshed, "count", before + 1)
    }

    function test_properties_data() {
        return [
            { tag: "powerOnMode", first: "power-on-mode 3", value: 3, second: "power-on-mode -2", other: -2 },
            { tag: "simCard", first: "sim-card 0", value: PhoneStatus.SimReady, second: "sim-card 3",
              other: PhoneStatus.SimLocked },
            { tag: "pin", first: "pin 1", value: PhoneStatus.Pin1Required, second: "pin 2",
              other: PhoneStatus.Puk1Required },
            { tag: "subsidyLock", first: "subsidy-lock 0", value: 0, second: "subsidy-lock 1", other: 1 },
            { tag: "charger", first: "charger 1", value: PhoneStatus.Charging, second: "charger 2",
              other: PhoneStatus.ChargedFull },
            { tag: "batteryStatus", first: "battery-status 1", value: PhoneStatus.BatteryLow,
              second: "battery-status 2147483647", other: 2147483647 },
            { tag: "batteryCapacity", first: "battery-capacity 0", value: 0, second: "battery-capacity 255",
              other: 255 },
            { tag: "signalQuality", first: "signal-quality 4", value: 4, second: "signal-quality 0", other: 0 },
            { tag: "service", first: "service-availability 1", value: PhoneStatus.Yes,
              second: "service-availability 0", other: PhoneStatus.No },
            { tag: "roaming", first: "roaming 1", value: 1, second: "roaming 0", other: 0 },
            { tag: "networkStatus", first: "network 1 ''", value: PhoneStatus.Searching, second: "network 5 26201",
              other: PhoneStatus.Registered },
            { tag: "networkId", first: "network 5 26202", value: "26202", second: "network 0 26202", other: "" },
            { tag: "serviceName", first: "service-name Desk%20Network", value: "Desk Network",
              second: "network 2 ''", other: "" },
            { tag: "providerName", first: "provider-name Grün 1", value: "Grün", second: "network 3 ''", other: "" },
            { tag: "providerFlag", first: "provider-name '' 200", value: 200, second: "network 3 ''", other: 0 },
            { tag: "homeZone", first: "home-zone-name ''", value: "", second: "home-zone-name Home", other: "Home" },
            { tag: "wifiProfile", first: "wifi-profile-name ''", value: "", second: "wifi-profile-name Café",
              other: "Café" },
            { tag: "imsi", first: "imsi 262011234567890", value: "262011234567890",
              second: "imsi hex:00010203040506070809101112131415",
              other: "hex:00010203040506070809101112131415" },
            { tag: "gprsAttached", first: "gprs-attached 0", value: 0, second: "gprs-attached 7", other: 1 },
            { tag: "gprsActivated", first: "gprs-activated 1", value: 1, second: "gprs-activated 0", other: 0 },
            { tag: "gprsService", first: "gprs-service 1", value: 1, second: "gprs-service 0", other: 0 },
            { tag: "egprsService", first: "egprs-service 0", value: 0, second: "egprs-service 1", other: 1 },
            { tag: "egprsTransmitting", first: "egprs-transmission 1", value: 1, second: "egprs-transmission 0",
              other: 0 },
            { tag: "openGprsResult", first: "open-gprs-result 0", value: 0, second: "open-gprs-result -5", other: -5 },
            { tag: "closeGprsResult", first: "close-gprs-result 2", value: 2, second: "close-gprs-result 0",
              other: 0 },
            { tag: "umaIcon", first: "uma-icon 2", value: 2, second: "uma-icon 0", other: 0 },
            { tag: "operatorLogoHidden", first: "operator-logo 9", value: PhoneStatus.Yes, second: "operator-logo 0",
              other: PhoneStatus.No },
            { tag: "currentDuration", first: "current-duration 1 7", value: 7, second: "current-duration 0 -1",
              other: 2147483647 },
            { tag: "totalDuration", first: "total-duration 0 0", value: 0, second: "total-duration 1 90", other: 90 },
            { tag: "totalBytes", first: "total-bytes 0 -1 2 3", value: 4294967295, second: "total-bytes 1 0 2 3",
              other: 0 },
            { tag: "sentBytes", first: "total-bytes 0 1 20 3", value: 20, second: "total-bytes 0 1 30 3", other: 30 },
            { tag: "receivedBytes", first: "total-bytes 0 1 2 4", value: 4, second: "total-bytes 0 1 2 5", other: 5 },
            { tag: "dataConnected", first: "total-bytes 1 0 0 0", value: PhoneStatus.Yes,
              second: "total-bytes 2 0 0 0", other: PhoneStatus.No }
        ]
    }

    function test_properties(row) {
        tell([row.first])
        compare(PhoneStatus[row.tag], row.value)
        verify(PhoneStatus.heard)
        changes.signalName = row.tag + "Changed"
        changes.clear()
        tell([row.first, row.first])
        compare(changes.count, 0)
        tell([row.second, row.second])
        compare(changes.count, 1)
        compare(PhoneStatus[row.tag], row.other)
    }

    function test_everyPropertyHasARow() {
        compare(test_properties_data().map(row => row.tag).sort(), numbers.concat(texts).sort())
    }

    Connections {
        target: PhoneStatus
        function onBatteryLow() { tests.events.push("batteryLow") }
        function onBatteryLowStateChanged() { tests.events.push("batteryLowStateChanged") }
        function onChargeCompleted() { tests.events.push("chargeCompleted") }
        function onVoiceCallChanged() { tests.events.push("voiceCallChanged") }
        function onCsdCallChanged() { tests.events.push("csdCallChanged") }
        function onCallForwardingChanged() { tests.events.push("callForwardingChanged") }
        function onLineChanged() { tests.events.push("lineChanged") }
        function onCallBarringChanged() { tests.events.push("callBarringChanged") }
        function onWifiCampStatusChanged() { tests.events.push("wifiCampStatusChanged") }
        function onWifiSignalBarChanged() { tests.events.push("wifiSignalBarChanged") }
        function onWifiConnecting() { tests.events.push("wifiConnecting") }
        function onTtyChanged() { tests.events.push("ttyChanged") }
        function onSimCardReplaced() { tests.events.push("simCardReplaced") }
        function onRadioSwitched(success) { tests.events.push("radioSwitched " + success) }
        function onDurationReset(first, success) { tests.events.push("durationReset " + [first, success]) }
        function onSessionDataReceived(session, connected, total, sent, received) {
            tests.events.push("sessionDataReceived " + [session, connected, total, sent, received])
        }
        function onServiceDescribed(third, first, second) {
            tests.events.push("serviceDescribed " + [third, first, second])
        }
        function onNetworksReceived(kind, networks) {
            tests.events.push("networksReceived " + kind + networks.map(network => " " + network.id + network.name))
        }
    }

    function test_events_data() {
        return [
            { tag: "low-battery", event: "batteryLow" },
            { tag: "low-battery-changed", event: "batteryLowStateChanged" },
            { tag: "charge-completed", event: "chargeCompleted" },
            { tag: "voice-call-changed", event: "voiceCallChanged" },
            { tag: "csd-call-changed", event: "csdCallChanged" },
            { tag: "call-forward-changed", event: "callForwardingChanged" },
            { tag: "line-number-changed", event: "lineChanged" },
            { tag: "call-barring-changed", event: "callBarringChanged" },
            { tag: "wifi-camp", event: "wifiCampStatusChanged" },
            { tag: "wifi-signal-bar", event: "wifiSignalBarChanged" },
            { tag: "wifi-connecting", event: "wifiConnecting" },
            { tag: "tty-feature-changed", event: "ttyChanged" },
            { tag: "sim-card-changed", event: "simCardReplaced" },
            { tag: "radio-mode-result 0", event: "radioSwitched false" },
            { tag: "radio-mode-result 2", event: "radioSwitched true" },
            { tag: "reset-total-duration-result 0 0", event: "durationReset true,true" },
            { tag: "reset-total-duration-result 1 5", event: "durationReset false,false" },
            { tag: "session-bytes 1 200 -1 1 2", event: "sessionDataReceived 200,true,4294967295,1,2" },
            { tag: "service-id-and-name a b c", event: "serviceDescribed c,a,b" },
            { tag: "network-list-0 26201 Desk 26202 Gr%C3%BCn", event: "networksReceived 0 26201Desk, 26202Grün" },
            { tag: "network-list-1", event: "networksReceived 1" }
        ]
    }

    function test_events(row) {
        events = []
        tell([row.tag])
        compare(events, [row.event])
    }

    // Whatever the count of a list says, it has no more than 64 networks, and no less than none.
    function test_networkCounts_data() {
        return [
            { tag: "too many", count: "ffffff7f", networks: 64 },
            { tag: "less than none", count: "ffffffff", networks: 0 }
        ]
    }

    function test_networkCounts(row) {
        changes.signalName = "networksReceived"
        changes.clear()
        compare(TestHandset.tools(["send /ZYN/phone PHONE_MSG_38 hex:" + row.count]), "")
        tryCompare(changes, "count", 1)
        compare(changes.signalArguments[0][1].length, row.networks)
    }

    function test_requests() {
        verify(TestHandset.start("zyn-phoned"))
        changes.signalName = "radioSwitched"
        changes.clear()
        PhoneStatus.setRadio(false)
        tryCompare(changes, "count", 1)
        compare(changes.signalArguments[0][0], true)
        changes.signalName = "durationReset"
        changes.clear()
        PhoneStatus.resetTotalDuration(true)
        tryCompare(changes, "count", 1)
        tell(["total-bytes 1 5 5 5", "total-duration 0 77"])
        verify(PhoneStatus.requestTotals())
        tryCompare(PhoneStatus, "totalBytes", 0)
        tryCompare(PhoneStatus, "totalDuration", 0)
        PhoneStatus.setLanguage(3)
        TestHandset.stop("zyn-phoned")
    }
}
