// Sources of the phone's state: status messages, the call log, the favourites.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/RC_MissedCallInterface.h"
#include "tools/top/PhoneState.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_VoiceCallReceiver.h"

#include <optional>
#include <vector>

class PHONE_MsgClient;

namespace zyn::tool {

class PhoneState;

/// Updates the state from the messages of the phone channel.
class StatusSource : public PHONE_MsgClient
{
public:
    /// @p state is not owned.
    explicit StatusSource(PhoneState& state);

    void receive(const QCString& message, const QByteArray& data) override;

private:
    /// Shows the value of @p signal, a number, a boolean or a text.
    template<typename Argument>
    void follow(void (PHONE_MsgClient::*signal)(Argument), Item item);
    /// Shows @p event and its time at @p item.
    void followEvent(void (PHONE_MsgClient::*signal)(), Item item, const char* event, bool isAlert = false);
    void followNames();
    void followCounters();

    PhoneState& m_state;
};

/**
 * Updates the call in progress, the last logged call and the unread missed calls.
 *
 * No message describes the call in progress: all that is known is the request to place it, and how often its state
 * changed, until it is in the log. The log is read from its files, which never blocks.
 */
class CallSource : public QObject
{
    Q_OBJECT

public:
    /// Neither is owned.
    CallSource(PhoneState& state, const PHONE_MsgClient& client);
    ~CallSource() override;

    bool isListening() const { return m_requests.isListening(); }
    /// Reads the log again.
    void refresh();

private:
    void begin(const QString& call);
    void showCall();
    /// Shows the unread ones of @p calls; nothing means that they are unknown.
    void showMissed(const std::optional<std::vector<PHONE_ENG_RecentCall>>& calls);
    void showNewest(const std::vector<PHONE_ENG_RecentCall>& calls);

    PhoneState& m_state;
    PHONE_VoiceCallReceiver m_requests;
    RC_MissedCallInterface m_missed;
    QString m_number; ///< of the last requested call
    QString m_call;   ///< empty if unknown
    int m_changes = 0;
    bool m_hasLooked = false;
    std::optional<int> m_newest; ///< the uid of the last logged call
};

/// Reads the activity log into @p state, without creating or changing files.
void readFavourites(PhoneState& state);

} // namespace zyn::tool
