// What an idle screen tells of missed calls.
import QtQuick
import ZynPhone

Text {
    text: !MissedCalls.loaded ? "Missed calls: ?"
        : MissedCalls.last ? MissedCalls.unread + " unread, last " + MissedCalls.last.number
        : "No missed calls"
}
