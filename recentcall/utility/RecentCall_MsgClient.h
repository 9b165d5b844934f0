// Turns the messages of the recent-call screens into signals.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/RC_Types.h"
#include "recentcall/utility/RecentCall_Msg.h"

#include <QtCore/QString>

/// Which component asked for the recent-call screens.
enum OTHER_COMPONENT_SHOW_UI : int {
    OTHER_COMPONENT_NONE = 0, ///< RecentCall_Msg::requestShowUI()
    OTHER_COMPONENT_CALLING = 2,
    OTHER_COMPONENT_MESSAGE = 3,
};

/**
 * Turns the messages of the recent-call screens' channel into signals: for the screens, which obey them, and for those
 * who follow the missed calls or wait for a number.
 *
 * Signals are emitted from the event loop of the thread that made the client. It keeps nothing from one message to the
 * next. Of a payload that ends early, the fields that are not there whole are 0 and null texts. Messages print debug
 * lines: see platform/QuietTrace.h.
 */
class ZYN_EXPORT RecentCall_MsgClient : public RecentCall_Msg
{
    Q_OBJECT

public:
    /// The process's client, made by the first call, whose thread is the one to use it.
    static RecentCall_MsgClient* instance();
    /// Deletes the client; the next instance() makes another.
    static void destruction();

    ~RecentCall_MsgClient() override;

    /// Decodes one message; called by the channel.
    void receive(const QCString& message, const QByteArray& data) override;

Q_SIGNALS:
    /// The SIM card is another one than before.
    void signalSimCardDiffed();
    /// The handset is being switched off.
    void signalPowerOff();
    /// The missed calls have changed.
    void signalMissedCallUpdate();
    /// The screens are to show the calls of @p category, as @p component asks.
    void signalShowRecentCall(RC_CALL_CATEGORY_T category, OTHER_COMPONENT_SHOW_UI component);
    /// The screens are to show @p page.
    void signalShowPage(RC_PAGE_ID_T page);
    /// The screens are to show the call at @p index of @p category, counted as the screens count.
    void signalShowDetail(RC_CALL_CATEGORY_T category, int index);
    /// The number picker has closed; @p number is null when none was selected.
    void signalExitPicker(bool selected, const QString& number);
    /// The screens are to hide.
    void signalHideUI();

private:
    RecentCall_MsgClient(QObject* parent, const char* name);
};
