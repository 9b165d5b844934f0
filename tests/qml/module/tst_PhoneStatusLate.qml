// A phone server that runs already tells its states to who comes late.
import QtQuick
import QtTest
import ZynPhone
import ZynPhone.Testing

TestCase {
    name: "PhoneStatusLate"

    function test_late() {
        verify(TestHandset.start("zyn-phoned"))
        compare(TestHandset.tools(["phone battery-capacity 42", "phone network 5 26299", "phone sim-card 3"]), "")
        // The object begins to listen here.
        compare(PhoneStatus.heard, false)
        tryCompare(PhoneStatus, "batteryCapacity", 42)
        tryCompare(PhoneStatus, "networkId", "26299")
        tryCompare(PhoneStatus, "simCard", PhoneStatus.SimLocked)
        // What was told stays.
        TestHandset.kill("zyn-phoned")
        compare(PhoneStatus.batteryCapacity, 42)
    }
}
