// A test of what a phone server does, which each of its functions finds free: beside it runs what calls go to.
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    /// The spies that begin anew with each function.
    property var spies: []

    function initTestCase() {
        verify(TestHandset.start("zyn-recentcalld"))
    }

    function init() {
        verify(TestHandset.start("zyn-phoned", "--step 60000"))
        for (const client of [PhoneCalls, DeskNetwork])
            tryCompare(client, "available", true)
        for (const spy of spies)
            spy.clear()
    }

    function cleanup() {
        TestHandset.stop("zyn-phoned")
        for (const client of [PhoneCalls, DeskNetwork])
            tryCompare(client, "available", false)
    }
}
