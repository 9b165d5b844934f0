// The handset's line and its calls.
#include "handset/phone_server/PhoneLine.h"

#include "handset/common/Log.h"

#include <algorithm>
#include <array>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// In which order calls are meant by those who name none.
constexpr std::array kForemost{CallState::Connected, CallState::Alerting, CallState::Dialing,
                               CallState::Ringing,   CallState::Waiting,  CallState::Held};

/// The ids of @p calls, those that are meant first at the beginning.
std::vector<int> foremostFirst(const PhoneLine::Calls& calls)
{
    std::vector<int> ids;
    for (const CallState state : kForemost) {
        for (const auto& [id, call] : calls) {
            if (call.machine().state() == state)
                ids.push_back(id);
        }
    }
    return ids;
}

/// Whether another call can be placed beside one in @p state.
bool canWait(CallState state)
{
    return state == CallState::Connected || state == CallState::Held;
}

} // namespace

PhoneLine::PhoneLine(Modem& modem, PhoneStatus& status)
    : m_modem(modem)
    , m_status(status)
{
    connect(&modem, &Modem::came, this, &PhoneLine::noteCame);
    connect(&modem, &Modem::identified, this,
            [this](int id, const Party& party) { change(id, [&](Call& call) { return call.identify(party); }); });
    connect(&modem, &Modem::happened, this,
            [this](int id, CallEvent event) { change(id, [&](Call& call) { return call.apply(event); }); });
    connect(&modem, &Modem::reached, this,
            [this](int id, CallState state) { change(id, [&](Call& call) { return call.reach(state); }); });
    connect(&modem, &Modem::ended, this,
            [this](int id, CallEnd end) { change(id, [&](Call& call) { return call.end(end); }); });
    connect(&modem, &Modem::radioChanged, this, [this](bool isOn) {
        // A real modem tells what becomes of its calls.
        if (!isOn && m_modem.isPlayed())
            disconnectCalls();
    });
}

int PhoneLine::place(const Party& party, RC_CALL_TYPE_T type, CallerId callerId)
{
    const Modem::Request request{party.number, type, callerId};
    const QString reason = obstacle(request);
    if (!reason.isEmpty()) {
        log(u"cannot place a call: %1"_s.arg(reason));
        return 0;
    }
    const int id = Modem::newCall();
    begin(id, CallStateMachine::placed(), party, type);
    m_modem.dial(id, request);
    return id;
}

bool PhoneLine::ring(const Party& caller)
{
    if (!m_modem.isPlayed() || !hasRadio() || m_isClosed)
        return false;
    if (m_calls.size() >= m_modem.callsAtOnce())
        missWhileBusy(caller);
    else
        noteCame(Modem::newCall(), caller, CallState::Ringing);
    return true;
}

bool PhoneLine::apply(int id, CallEvent event)
{
    const Call* const known = call(id);
    return known && known->machine().can(event) && m_modem.carryOut(id, event);
}

bool PhoneLine::hangUpAll()
{
    const std::vector<int> ids = foremostFirst(m_calls);
    return std::ranges::count_if(ids, [&](int id) { return apply(id, CallEvent::HangUp); }) > 0;
}

const Call* PhoneLine::current() const
{
    return call(currentId());
}

int PhoneLine::currentId() const
{
    const std::vector<int> ids = foremostFirst(m_calls);
    return ids.empty() ? 0 : ids.front();
}

const Call* PhoneLine::call(int id) const
{
    const auto found = m_calls.find(id);
    return found == m_calls.end() ? nullptr : &found->second;
}

bool PhoneLine::isConnected() const
{
    return std::ranges::any_of(
        m_calls, [](const auto& entry) { return entry.second.machine().state() == CallState::Connected; });
}

void PhoneLine::close()
{
    m_isClosed = true;
    m_modem.close();
    disconnectCalls();
    m_uploader.finish();
}

/// Why @p request cannot be carried out now, or nothing.
QString PhoneLine::obstacle(const Modem::Request& request) const
{
    if (!isDialable(request.number))
        return u"the number is invalid"_s;
    if (m_isClosed)
        return u"the phone is shutting down"_s;
    QString reason = m_modem.obstacle(request);
    if (!reason.isEmpty())
        return reason;
    const bool isBusy = m_calls.size() >= m_modem.callsAtOnce() || !std::ranges::all_of(m_calls, [](const auto& entry) {
                            return canWait(entry.second.machine().state());
                        });
    return isBusy ? u"the line is busy"_s : QString();
}

void PhoneLine::begin(int id, CallStateMachine course, const Party& party, RC_CALL_TYPE_T type)
{
    const auto [entry, isNew] = m_calls.try_emplace(id, course, party, type);
    if (isNew)
        report(id, entry->second);
}

/// Has @p event happen to the foremost call to which it can.
bool PhoneLine::apply(CallEvent event)
{
    return std::ranges::any_of(foremostFirst(m_calls), [&](int id) { return apply(id, event); });
}

void PhoneLine::noteCame(int id, const Party& caller, CallState state)
{
    begin(id, CallStateMachine::foundIn(state), caller, RC_CALL_TYPE_VOICE);
}

template<typename Change>
void PhoneLine::change(int id, const Change& make)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end() || !make(found->second))
        return;
    if (found->second.machine().isOver())
        reportEnd(id);
    else
        report(id, found->second);
}

/// Ends the calls, whatever their states: those that nobody has answered are missed.
void PhoneLine::disconnectCalls()
{
    for (const int id : foremostFirst(m_calls)) {
        change(id, [](Call& call) {
            return call.end(call.machine().isPlaced() || call.machine().wasConnected() ? CallEnd::Here
                                                                                       : CallEnd::There);
        });
    }
}

void PhoneLine::missWhileBusy(const Party& caller)
{
    Call call(CallStateMachine::incoming(), caller);
    call.apply(CallEvent::Miss);
    log(u"a call from %1 is missed: the line is busy"_s.arg(caller.number));
    m_uploader.add(call.record());
    m_status.report(PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S);
}

void PhoneLine::report(int id, const Call& call)
{
    const CallState state = call.machine().state();
    log(u"call %1, %2: %3"_s.arg(id).arg(call.party().number, QLatin1String(nameOf(state))));
    if (state == CallState::Connected)
        m_status.report(PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S, {1, call.talkedSeconds()});
    m_status.report(PHONE_Msg::PHONE_MSG_VOICE_CALL_STAT_CHANGED_S);
    Q_EMIT callChanged(id, state);
}

void PhoneLine::reportEnd(int id)
{
    const Call& call = m_calls.at(id);
    // First, because listeners look for the call in the log when its end is reported.
    m_uploader.add(call.record());
    if (call.machine().wasConnected()) {
        m_totalSeconds += call.duration();
        m_status.report(PHONE_Msg::PHONE_MSG_CURRENT_CONNECTED_DURATION_S, {0, call.duration()});
        m_status.report(PHONE_Msg::PHONE_MSG_TOTAL_CONNECTED_DURATION_S, {0, m_totalSeconds});
    }
    report(id, call);
    m_calls.erase(id);
}

} // namespace zyn::handset
