// A test of the window: it looks for items by their names, and presses and reads what a person would.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Handset
import ZynPhone.Testing

TestCase {
    id: test

    /// What is tested.
    required property Item phone
    /// What other processes may take, in milliseconds.
    readonly property int patience: 20000

    when: windowShown

    function initTestCase() {
        startServices()
    }

    function init() {
        failOnWarning(/.?/)
    }

    function startServices() {
        compare(TestHandset.tools(["emergency write 112"]), "")
        for (const [service, options] of [["zyn-recentcalld", ""], ["zyn-favourites", ""],
            ["zyn-phoned", "--step 200 --talk 600000"]])
            verify(TestHandset.start(service, options), service)
        tryVerify(() => PhoneCalls.available, patience)
    }

    /// No calls on the line, no lock, and the idle screen.
    function cleanup() {
        DeskNetwork.keypadLocked = false
        tryVerify(() => !DeskNetwork.keypadLocked, patience)
        if (PhoneCalls.calls.count > 0)
            TestHandset.tool("phone hangup all")
        tryVerify(() => PhoneCalls.calls.count === 0, patience)
        Navigation.go("idle")
    }

    /// All items below @p item, and itself, which @p accepts.
    function itemsOf(item, accepts) {
        let found = accepts(item) ? [item] : []
        for (let index = 0; index < item.children.length; ++index)
            found = found.concat(itemsOf(item.children[index], accepts))
        return found
    }

    /// The visible item that is called @p name; null without one.
    function find(name) {
        return itemsOf(phone, item => item.objectName === name && item.visible)[0] ?? null
    }

    /// Waits for it.
    function shown(name) {
        tryVerify(() => find(name) !== null, patience, name)
        return find(name)
    }

    function isHidden(name) {
        tryVerify(() => find(name) === null, patience, name)
    }

    /// Waits until it is enabled and has its place.
    function settled(name) {
        let place = null
        tryVerify(() => {
            const item = find(name)
            const before = place
            place = item?.enabled && !find("screens")?.busy ? item.mapToItem(phone, item.width, item.height) : null
            wait(30)
            return place !== null && before !== null && place.x === before.x && place.y === before.y
        }, patience, name)
        return find(name)
    }

    function tap(name) {
        mouseClick(settled(name))
    }

    function hold(name) {
        const item = settled(name)
        mousePress(item)
        wait(Qt.styleHints.mousePressAndHoldInterval + 200)
        mouseRelease(item)
    }

    /// The item @p name comes to have @p text.
    function reads(name, text) {
        tryVerify(() => find(name) !== null && find(name).text === text, patience,
            `${name}: ${find(name)?.text} is not ${text}`)
    }

    function type(text) {
        for (const character of text)
            keyClick(character)
    }
}
