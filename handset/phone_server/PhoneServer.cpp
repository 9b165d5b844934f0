// The phone server and the phone application.
#include "handset/phone_server/PhoneServer.h"

#include "handset/phone_server/ClientConnection.h"
#include "handset/phone_server/ControlConnection.h"
#include "handset/phone_server/PhoneControl.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"
#include "utility/message/Message_p.h"

#include <algorithm>

namespace zyn::handset {
namespace {

/// The most clients of the control socket: a quarter of all, as few people play the network at once.
int controlClients(int maxConnections)
{
    return std::max(1, maxConnections / 4);
}

} // namespace

PhoneServer::PhoneServer(Modem& modem, PhoneStatus& status, const QString& prefix, std::chrono::milliseconds timeout,
                         int maxConnections)
    : m_status(status)
    , m_line(modem, status)
    , m_prefix(prefix)
    , m_clients(
          voicecall::socketPath(), maxConnections - controlClients(maxConnections),
          [this, timeout](posix::UniqueFd socket) { return new ClientConnection(std::move(socket), m_line, timeout); })
    , m_control(phonecontrol::socketPath(), controlClients(maxConnections), [this, timeout](posix::UniqueFd socket) {
        return new ControlConnection(std::move(socket), m_line, timeout);
    })
{}

bool PhoneServer::listen()
{
    if (!m_clients.acquire() || !m_control.acquire())
        return false;
    // Two servers that both answered requests would place every call twice.
    listenToVoiceCallRequests();
    m_pttRequests.emplace(m_line);
    m_phoneRequests.emplace(m_line);
    m_newListeners.emplace(kPhoneChannel);
    QObject::connect(&*m_newListeners, &NewListeners::came, &m_line,
                     [this](PhoneStatus::Clock::time_point time) { m_status.tellAgain(time); });
    return m_clients.listen() && m_control.listen();
}

void PhoneServer::listenToVoiceCallRequests()
{
    m_voiceCallRequests.emplace();
    PHONE_VoiceCallReceiver* requests = &*m_voiceCallRequests;
    QObject::connect(requests, &PHONE_VoiceCallReceiver::signalMakeCall, &m_line,
                     [this](const QString& number, const QString& name, bool /*flag*/, int clir, int dialMode) {
                         makeCall(number, name, clir, dialMode);
                     });
    QObject::connect(requests, &PHONE_VoiceCallReceiver::sigDropCall, &m_line, [this] { dropCall(); });
}

void PhoneServer::makeCall(const QString& number, const QString& name, int clir, int dialMode)
{
    // A prefixed emergency number would reach nobody.
    const bool hasPrefix =
        dialMode == DialPrependly && !number.isEmpty() && !PHONE_IsEmergencyCall(number.toLatin1().data());
    m_line.place({hasPrefix ? m_prefix + number : number, name}, RC_CALL_TYPE_VOICE, callerIdFrom(clir));
}

void PhoneServer::dropCall()
{
    if (m_line.current() && !m_line.current()->isPtt())
        m_line.apply(m_line.currentId(), CallEvent::HangUp);
}

} // namespace zyn::handset
