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
        listen()
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

    // Each property, a message and the value that it brings, and another one.
    readonly property var properties: [
        ["powerOnMode", "power-on-mode 3", 3, "power-on-mode -2", -2],
        ["simCard", "sim-card 0", PhoneStatus.SimReady, "sim-card 3", PhoneStatus.SimLocked],
        ["pin", "pin 1", PhoneStatus.Pin1Required, "pin 2", PhoneStatus.Puk1Required],
        ["subsidyLock", "subsidy-lock 0", 0, "subsidy-lock 1", 1],
        ["charger", "charger 1", PhoneStatus.Charging, "charger 2", PhoneStatus.ChargedFull],
        ["batteryStatus", "battery-status 1", PhoneStatus.BatteryLow, "battery-status 2147483647", 2147483647],
        ["batteryCapacity", "battery-capacity 0", 0, "battery-capacity 255", 255],
        ["signalQuality", "signal-quality 4", 4, "signal-quality 0", 0],
        ["service", "service-availability 1", PhoneStatus.Yes, "service-availability 0", PhoneStatus.No],
        ["roaming", "roaming 1", 1, "roaming 0", 0],
        ["networkStatus", "network 1 ''", PhoneStatus.Searching, "network 5 26201", PhoneStatus.Registered],
        ["networkId", "network 5 26202", "26202", "network 0 26202", ""],
        ["serviceName", "service-name Desk%20Network", "Desk Network", "network 2 ''", ""],
        ["providerName", "provider-name Grün 1", "Grün", "network 3 ''", ""],
        ["providerFlag", "provider-name '' 200", 200, "network 3 ''", 0],
        ["homeZone", "home-zone-name ''", "", "home-zone-name Home", "Home"],
        ["wifiProfile", "wifi-profile-name ''", "", "wifi-profile-name Café", "Café"],
        ["imsi", "imsi 262011234567890", "262011234567890",
         "imsi hex:00010203040506070809101112131415", "hex:00010203040506070809101112131415"],
        ["gprsAttached", "gprs-attached 0", 0, "gprs-attached 7", 1],
        ["gprsActivated", "gprs-activated 1", 1, "gprs-activated 0", 0],
        ["gprsService", "gprs-service 1", 1, "gprs-service 0", 0],
        ["egprsService", "egprs-service 0", 0, "egprs-service 1", 1],
        ["egprsTransmitting", "egprs-transmission 1", 1, "egprs-transmission 0", 0],
        ["openGprsResult", "open-gprs-result 0", 0, "open-gprs-result -5", -5],
        ["closeGprsResult", "close-gprs-result 2", 2, "close-gprs-result 0", 0],
        ["umaIcon", "uma-icon 2", 2, "uma-icon 0", 0],
        ["operatorLogoHidden", "operator-logo 9", PhoneStatus.Yes, "operator-logo 0", PhoneStatus.No],
        ["currentDuration", "current-duration 1 7", 7, "current-duration 0 -1", 2147483647],
        ["totalDuration", "total-duration 0 0", 0, "total-duration 1 90", 90],
        ["totalBytes", "total-bytes 0 -1 2 3", 4294967295, "total-bytes 1 0 2 3", 0],
        ["sentBytes", "total-bytes 0 1 20 3", 20, "total-bytes 0 1 30 3", 30],
        ["receivedBytes", "total-bytes 0 1 2 4", 4, "total-bytes 0 1 2 5", 5],
        ["dataConnected", "total-bytes 1 0 0 0", PhoneStatus.Yes, "total-bytes 2 0 0 0", PhoneStatus.No]
    ]

    function test_properties_data() {
        return properties.map(([name, first, value, second, other]) => ({ tag: name, first, value, second, other }))
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
        compare(properties.map(row => row[0]).sort(), numbers.concat(texts).sort())
    }

    // Each event is noted with its arguments.
    function listen() {
        const all = new Set(test_events_data().map(row => row.event.split(" ")[0]))
        for (const name of all)
            PhoneStatus[name].connect((...values) => events.push([name, ...values.map(shown)].join(" ").trim()))
    }

    function shown(value) {
        return value.map ? value.map(network => network.id + network.name).join("+") : value
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
            { tag: "reset-total-duration-result 0 0", event: "durationReset true true" },
            { tag: "reset-total-duration-result 1 5", event: "durationReset false false" },
            { tag: "session-bytes 1 200 -1 1 2", event: "sessionDataReceived 200 true 4294967295 1 2" },
            { tag: "service-id-and-name a b c", event: "serviceDescribed c a b" },
            { tag: "network-list-0 26201 Desk 26202 Gr%C3%BCn", event: "networksReceived 0 26201Desk+26202Grün" },
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
