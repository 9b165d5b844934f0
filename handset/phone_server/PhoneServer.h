// The phone server and the phone application of a desk.
#pragma once

#include "handset/common/CommandServer.h"
#include "handset/phone_server/PhoneLine.h"
#include "handset/phone_server/PhoneRequests.h"
#include "utility/PHONE_VoiceCallReceiver.h"

#include <chrono>
#include <optional>

namespace zyn::handset {

/// Places the calls that others ask for, over the socket and over the message channels, on one line.
class PhoneServer
{
public:
    /**
     * @param prefix          what is put in front of a number that is to be dialed with a prefix, unless it is an
     * emergency number
     * @param timeout        how long a client of the socket may let the server wait for what it owes
     * @param maxConnections  how many clients are served at a time; further ones wait for their turn
     */
    PhoneServer(CallPace pace, const QString& prefix, std::chrono::milliseconds timeout, int maxConnections);

    PhoneLine& line() { return m_line; }

    /// Starts to listen, in place of a server that died; false, and told in the log, when another one lives or the
    /// socket cannot be had.
    bool listen();

    /// Ends the call on the line, and returns when all calls have been handed over, as far as they are taken in time.
    void close() { m_line.close(); }

private:
    void listenToVoiceCallRequests();
    void makeCall(const QString& number, const QString& name, int dialMode);
    void dropCall();

    PhoneLine m_line;
    const QString m_prefix;
    std::optional<PHONE_VoiceCallReceiver> m_voiceCallRequests;
    std::optional<PttRequests> m_pttRequests;
    std::optional<PhoneRequests> m_phoneRequests;
    CommandServer m_clients;
};

} // namespace zyn::handset
