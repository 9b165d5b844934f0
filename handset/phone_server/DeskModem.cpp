// The network of a desk, which somebody plays: calls that are placed go on by themselves.
#include "handset/phone_server/DeskModem.h"

using namespace Qt::StringLiterals;

namespace zyn::handset {

DeskModem::DeskModem(CallPace pace)
    : m_pace(pace)
{
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_next, &QTimer::timeout, this, [this] { carryOut(m_placed, CallEvent::Proceed); });
}

QString DeskModem::obstacle(const Request& /*request*/) const
{
    return m_hasRadio ? QString() : u"the radio is off"_s;
}

void DeskModem::dial(int id, const Request& /*request*/)
{
    m_placed = id;
    m_course = CallStateMachine::placed();
    m_next.start(m_pace.step);
}

bool DeskModem::carryOut(int id, CallEvent event)
{
    if (id == m_placed)
        goOn(event);
    Q_EMIT happened(id, event);
    return true;
}

void DeskModem::setRadio(bool isOn)
{
    m_hasRadio = isOn;
    Q_EMIT radioChanged(isOn);
    Q_EMIT radioSwitched(true);
}

void DeskModem::unlock(const Codes& /*codes*/, const Result& then)
{
    then(u"the network is played: there is no card that asks for a PIN"_s);
}

QJsonObject DeskModem::describe() const
{
    return {{u"modem"_s, u"desk"_s}, {u"radio"_s, m_hasRadio}, {u"obstacle"_s, obstacle({})}};
}

/// Schedules what follows from the placed call's new state.
void DeskModem::goOn(CallEvent event)
{
    m_course.apply(event);
    if (m_course.isOver())
        m_next.stop();
    else
        m_next.start(m_course.state() == CallState::Connected ? m_pace.talk : m_pace.step);
}

} // namespace zyn::handset
