// The favourites' screen: the unread calls and messages of each favourite when the screen opens.
//
// On a desk: zynphone favourites replace '' 0301112222
//            zynphone favourites log 0301112222 --list missed
//            favourites_unread
#include <recentcall/utility/ActivityLog_ENG_RecordStore.h>
#include <recentcall/utility/RC_TopPals_AL_Interface.h>

#include "Screen.h"

int main()
{
    Screen screen;
    QString numbers[ActivityLog_ENG_RecordStore::kFavourites];
    // Fails for a null pointer only: without a file of favourites all places are free.
    ActivityLog_ENG_RecordStore::instance()->getCurrentTopPalsFileNames(numbers);

    int code = EXIT_SUCCESS;
    for (const QString& number : numbers) {
        if (number.isEmpty())
            continue; // a free place
        TopPals_Missed_Details unread{number};
        if (RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) == 1) {
            const char* messages = unread.unreadMsgCount == 1 ? "message" : "messages";
            screen.show(QStringLiteral("%1: %2 missed, %3 %4 unread")
                            .arg(number)
                            .arg(unread.missedCallCount)
                            .arg(unread.unreadMsgCount)
                            .arg(QLatin1String(messages)));
        } else {
            screen.show(QStringLiteral("%1: the log cannot be read").arg(number));
            code = EXIT_FAILURE;
        }
    }
    return code;
}
