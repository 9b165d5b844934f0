// The time of day, told once a minute.
pragma Singleton
import QtQuick

QtObject {
    id: clock

    property date now: new Date()
    // To the next full minute, and a little more, so that it has come.
    readonly property Timer timer: Timer {
        interval: 60050 - clock.now.getSeconds() * 1000 - clock.now.getMilliseconds()
        running: true
        repeat: true
        onTriggered: clock.now = new Date()
    }

    // No locale is to show seconds: they are not told.
    readonly property string format: Qt.locale().timeFormat(Locale.ShortFormat).replace(/[:.]ss?/, "")
    readonly property string time: timeOf(now)
    readonly property string day: now.toLocaleDateString(Qt.locale(), Locale.LongFormat)

    function timeOf(moment) {
        return moment.toLocaleTimeString(Qt.locale(), format)
    }
}
