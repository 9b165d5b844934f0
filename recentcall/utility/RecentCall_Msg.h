// Names and sends the messages of the recent-call screens.
#pragma once

#include "platform/QCopChannel.h"
#include "platform/ZynExport.h"
#include "recentcall/utility/RC_Types.h"

/// A page of the recent-call screens, which give the values their meaning.
enum RC_PAGE_ID_T : int {};

/// @{ What the calling and the messaging application send, without a payload, to have the recent calls shown.
inline constexpr char RECENTCALL_CALLING_MSG[] = "/KQ/CALLING/RECENTCALL";
inline constexpr char RECENTCALL_MESSAGE_MSG[] = "/KQ/MMS/RECENTCALL";
/// @}

/**
 * Names and sends the messages of the recent-call screens' channel, "/ZYN/recentcall".
 *
 * The operations are static and need no object; an object listens on the channel for as long as it lives. Sending does
 * not wait: true means that the message was handed on, not that the screens run. Without a listener it is lost.
 * Requests print debug lines: see platform/QuietTrace.h.
 */
class ZYN_EXPORT RecentCall_Msg : public QCopChannel
{
    // No Q_OBJECT: it has no signals of its own, and reports the class name of its base.

public:
    /// The types of the messages, and what comes with them.
    enum RECENTCALL_MSG_TYPE_T : int {
        RECENTCALL_MSG_POWEROFF_S = 0,          ///< the handset is being switched off
        RECENTCALL_MSG_SIMCARD_DIFFED_S = 1,    ///< the SIM card is another one
        RECENTCALL_MSG_MISSEDCALL_UPDATE_S = 2, ///< the missed calls have changed
        RECENTCALL_MSG_SHOW_UI_S = 3,           ///< category
        RECENTCALL_MSG_SHOW_PAGE_S = 4,         ///< page
        RECENTCALL_MSG_SHOW_DETAIL_S = 5,       ///< category, index
        RECENTCALL_MSG_EXIT_PICKER_S = 6,       ///< whether a number was picked, and, if so, the number
        RECENTCALL_MSG_HIDE_UI_S = 7,           ///< the screens are to hide
    };

    /// Listens on the channel as @p name, a label for debugging that may be null; @p parent deletes it.
    explicit RecentCall_Msg(QObject* parent = nullptr, const char* name = nullptr);
    ~RecentCall_Msg() override;

    /// "RECENTCALL_MSG_" and the number of @p type; an empty, not null, name for a type outside 0 to 7.
    static QCString getMsg(RECENTCALL_MSG_TYPE_T type);

    /// Sends the message of @p type without a payload; false when it could not be handed on, or has no name.
    static bool send(RECENTCALL_MSG_TYPE_T type);
    /// Sends the message of @p type with @p data as it is; false when it could not be handed on, or has no name.
    static bool send(RECENTCALL_MSG_TYPE_T type, const QByteArray& data);

    /// Asks the screens to show the calls of @p category. @return whether the request was handed on
    static bool requestShowUI(RC_CALL_CATEGORY_T category);
    /// Asks the screens to show @p page. @return whether the request was handed on
    static bool requestShowPage(RC_PAGE_ID_T page);
    /// Asks the screens to show one call: that at @p index of @p category, counted as the screens count.
    /// @return whether the request was handed on
    static bool showRecordDetail(int index, RC_CALL_CATEGORY_T category);
    /// Asks the screens to hide. @return whether the request was handed on
    static bool requestHideUI();
};
