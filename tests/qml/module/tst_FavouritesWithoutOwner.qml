// The favourites while nobody owns them: a change that is announced in vain is told as such, and made later.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    id: test
    name: "FavouritesWithoutOwner"

    Component { id: fences; SpeedDialModel {} }
    Component {
        id: models
        FavouritesModel {
            property var told: []
            onFailed: reason => told.push([reason, error, busy])
        }
    }

    property var inVain: ({})

    /// Has a model announce @p number, and waits until that has happened.
    function announce(tag, number) {
        const model = models.createObject(test)
        tryCompare(model, "loaded", true, 20000)
        model.add(number, "Bob")
        const fence = createTemporaryObject(fences, test)
        tryCompare(fence, "loaded", true, 20000)
        inVain[tag] = { model: model, number: number }
    }

    // It takes seconds until a change counts as failed: all wait together.
    function initTestCase() {
        compare(TestHandset.tools(["favourites replace '' 0301234567"]), "")
        announce("never", "0302223333")
        verify(TestHandset.start("zyn-favourites"))
        TestHandset.kill("zyn-favourites")
        announce("killed", "0304445555")
    }

    function cleanupTestCase() {
        TestHandset.stopAll()
        for (const tag in inVain)
            inVain[tag].model.destroy()
    }

    function test_fails_data() {
        return [{ tag: "killed" }, { tag: "never" }]
    }

    function test_fails(row) {
        const model = inVain[row.tag].model
        tryVerify(() => model.told.length > 0, 20000)
        compare(model.told.length, 1)
        const [reason, error, busy] = model.told[0]
        verify(reason.includes("zyn-favourites"))
        compare([error, busy, model.error, model.busy], [reason, false, reason, false])
        const list = TestHandset.tool("favourites list")
        verify(list.includes("1234567") && !list.includes("2223333") && !list.includes("4445555"), list)
    }

    function test_isMadeLater() {
        verify(TestHandset.start("zyn-favourites"))
        for (const tag in inVain) {
            const { model, number } = inVain[tag]
            model.add(number, "Bob")
            tryCompare(model, "busy", false, 20000)
            compare([model.error, model.told.length], ["", 1])
            verify(TestHandset.tool("favourites list").includes(number.slice(-7)))
        }
    }
}
