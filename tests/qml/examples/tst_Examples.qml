// Every example is shown as it is, without services and beside them, and gives no warning; every type has one.
import QtQuick
import QtTest
import ZynPhone.Testing

TestCase {
    id: test
    name: "Examples"
    when: windowShown
    visible: true
    width: 400
    height: 500

    readonly property string folder: TestHandset.source + "/examples/qml/"

    function cleanupTestCase() {
        TestHandset.stopAll()
    }

    function test_1_isShown_data() {
        return TestHandset.filesIn(folder).map(name => ({ tag: name }))
    }

    function test_1_isShown(row) {
        failOnWarning(/.?/)
        const component = Qt.createComponent("file://" + folder + row.tag)
        tryVerify(() => component.status !== Component.Loading, 20000)
        compare(component.errorString(), "")
        const example = createTemporaryObject(component, test)
        verify(example instanceof Item)
        verify(example.width > 0 && example.height > 0)
        wait(100) // for what is fetched, where somebody answers
    }

    function test_2_isShownBesideServices_data() {
        for (const service of ["zyn-recentcalld", "zyn-phoned", "zyn-favourites"])
            verify(TestHandset.start(service))
        compare(TestHandset.tools(["calls add missed 0301234567", "favourites announce '' 0301234567",
            "phone incoming 0302", "speed-dial set 1 0303", "status snapshot --signal-quality 4"]), "")
        return test_1_isShown_data()
    }

    function test_2_isShownBesideServices(row) {
        test_1_isShown(row)
    }

    function test_3_typesAreTold() {
        const types = TestHandset.text(TestHandset.module + "/zynphoneqml.qmltypes").match(/ZynPhone\/\w+(?= 1.0")/g)
        const examples = TestHandset.filesIn(folder).map(name => TestHandset.text(folder + name)).join("\n")
        const guide = TestHandset.text(TestHandset.source + "/docs/qml.md")
        verify(types.length > 10)
        for (const type of types) {
            const name = type.slice("ZynPhone/".length)
            verify(new RegExp("\\b" + name + "\\b").test(examples), "no example of " + name)
            verify(guide.includes("`" + name + "`"), "docs/qml.md does not tell of " + name)
        }
    }
}
