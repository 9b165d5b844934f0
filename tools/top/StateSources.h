// Where the state of the handset comes from: status messages, the call log, the favourites.
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

/// Keeps the state up to date from the messages of the phone channel, for as long as it lives.
class StatusSource : public PHONE_MsgClient
{
public:
    /// @p state is not owned.
    explicit StatusSource(PhoneState& state);

    void receive(const QCString& message, const QByteArray& data) override;

private:
    /// Shows what @p signal brings, one number, truth or text.
    template<typename Argument>
    void follow(void (PHONE_MsgClient::*signal)(Argument), Item item);
    /// Shows, at @p item, @p event and when it came.
    void followEvent(void (PHONE_MsgClient::*signal)(), Item item, const char* event, bool isAlert = false);
    void followNames();
    void followCounters();

    PhoneState& m_state;
};

/**
 * Keeps the call in progress, the last logged call and the unread missed calls up to date.
 *
 * Nobody tells who calls: of a call in progress the request to place it is known, and how often its state changed,
 * until the log has it. The log is read from its files, which waits for nobody.
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
    void showMissed(const std::vector<PHONE_ENG_RecentCall>& unread);
    void showNewest(const std::vector<PHONE_ENG_RecentCall>& calls);

    PhoneState& m_state;
    PHONE_VoiceCallReceiver m_requests;
    RC_MissedCallInterface m_missed;
    QString m_number; ///< of the call that was asked for last
    QString m_call;   ///< empty when none is known
    int m_changes = 0;
    std::optional<int> m_newest; ///< the uid of the last logged call
};

/// Reads the activity log into @p state. Makes and changes no file.
void readFavourites(PhoneState& state);

} // namespace zyn::tool
