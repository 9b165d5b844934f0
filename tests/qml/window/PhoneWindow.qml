// A phone on the screen, and the tests of it.
import QtQuick
import ZynPhone.Handset

Item {
    property alias phone: phone
    property alias services: phone.services

    width: 360
    height: 720

    Phone {
        id: phone

        anchors.fill: parent
        focus: true
    }
}
