// The phone server and the phone application.
#pragma once

#include "handset/common/CommandServer.h"
#include "handset/phone_server/NewListeners.h"
#include "handset/phone_server/PhoneLine.h"
#include "handset/phone_server/PhoneRequests.h"
#include "utility/PHONE_VoiceCallReceiver.h"

#include <chrono>
#include <optional>

namespace zyn::handset {

/// Places the calls that clients ask for, over the socket and over the message channels, on one line, and makes happen
/// what is said on the control socket. Who begins to listen is told the states that are known.
class PhoneServer
{
public:
    /**
     * @param modem           carries the calls, and lives longer
     * @param status          tells the states of the phone, and lives longer
     * @param prefix          put in front of numbers to be dialed with a prefix, except emergency numbers
     * @param timeout         how long the server waits for a client that has to make progress
     * @param maxConnections  the number of clients served at a time; further ones wait
     */
    PhoneServer(Modem& modem, PhoneStatus& status, const QString& prefix, std::chrono::milliseconds timeout,
                int maxConnections);

    PhoneLine& line() { return m_line; }

    /// Starts to listen, in place of a server that died. False, which is logged, if another one is alive or a socket
    /// cannot be made.
    bool listen();

    /// Ends the call on the line and waits for the uploads; see PhoneLine::close().
    void close() { m_line.close(); }

private:
    void listenToVoiceCallRequests();
    void makeCall(const QString& number, const QString& name, int clir, int dialMode);
    void dropCall();

    PhoneStatus& m_status;
    PhoneLine m_line;
    const QString m_prefix;
    std::optional<PHONE_VoiceCallReceiver> m_voiceCallRequests;
    std::optional<PttRequests> m_pttRequests;
    std::optional<PhoneRequests> m_phoneRequests;
    std::optional<NewListeners> m_newListeners;
    CommandServer m_clients;
    CommandServer m_control;
};

} // namespace zyn::handset
