// What the telephony stacks have in common: calls that are objects of a service, and what keeps a call from being
// placed.
#include "handset/modem/StackModem.h"

#include "handset/common/Log.h"
#include "handset/phone_server/PhoneStatus.h"
#include "utility/PHONE_EmergencyCall.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// More calls than a network lets anybody have: 3GPP TS 22.030 has seven.
constexpr size_t kMostCalls = 16;

/// How the errors begin that the bus gives for a service, as for an object that is not there.
constexpr QLatin1String kErrorsOfTheBus("org.freedesktop.DBus.Error.");

/// How long calls wait for a service that has gone: one that was restarted is back by then.
constexpr std::chrono::seconds kPatience{10};

/// How long a service takes at most to find calls that it has not made.
constexpr std::chrono::seconds kUntilPolled{3};

/// How long a service takes to learn from the card how many tries are left.
constexpr std::chrono::milliseconds kUntilCounted{300};

/// How many calls that are over here may go on there.
constexpr qsizetype kMostUnknown = 16;

/// How often a call is hung up that the service does not hang up, and how long after the last time.
constexpr int kTries = 10;
constexpr std::chrono::milliseconds kBetweenHangUps{500};

/// What keeps a call from being placed, but for one to an emergency number.
struct Obstacle
{
    bool (*isThere)(const PhoneFacts& facts);
    const char* text;
};

/// Some modems are off as long as there is no card, or it is locked: that is told first.
constexpr Obstacle kObstacles[] = {
    {[](const PhoneFacts& facts) { return facts.sim == SimCard::None; }, "there is no SIM card"},
    {[](const PhoneFacts& facts) { return facts.sim == SimCard::Locked; },
     "the SIM card asks for a PIN: see 'zynphone phone unlock'"},
    {[](const PhoneFacts& facts) { return !facts.isOnline; }, "the radio is off"},
    {[](const PhoneFacts& facts) { return facts.registration != Registration::Registered; }, "there is no service"},
    {[](const PhoneFacts& facts) { return !facts.hasVoice; }, "the modem takes no calls"},
};

bool rings(CallState state)
{
    return state == CallState::Ringing || state == CallState::Waiting;
}

} // namespace

StackModem::StackModem(Bus& bus, PhoneStatus& status, const QString& service, const QString& stack)
    : m_bus(bus)
    , m_status(status)
    , m_service(service)
    , m_stack(stack)
{
    m_tell.setSingleShot(true);
    connect(&m_tell, &QTimer::timeout, this, &StackModem::tell);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &StackModem::giveUp);
    // Subscriptions end with their connection, whether or not the service was still there.
    connect(&bus, &Bus::lost, this, [this] { m_isSubscribed = false; });
}

void StackModem::start()
{
    if (!std::exchange(m_isSubscribed, true))
        subscribe();
    askForModems();
}

void StackModem::lose()
{
    suspendCalls(kPatience);
    for (const auto& [id, number] : m_cancelled)
        abandon(number);
    m_cancelled.clear();
    forget();
    learn([](PhoneFacts& facts) { facts = {}; });
    tell();
}

void StackModem::suspendCalls(std::chrono::seconds patience)
{
    for (auto& [id, call] : m_calls) {
        // The modem cannot have one that was never asked for, or was refused: that is asked for again.
        if (call.isPlaced && !call.isAsked)
            continue;
        call.isSuspended = true;
        call.path.clear();
    }
    m_unknown.clear();
    m_patience.start(patience);
}

void StackModem::noteModemGone()
{
    suspendCalls(kUntilPolled);
}

void StackModem::giveUp()
{
    m_patience.stop();
    const bool isAnySuspended =
        std::ranges::any_of(m_calls, [](const auto& entry) { return entry.second.isSuspended; });
    for (const auto& [id, call] : std::map(m_calls)) {
        if (!call.isSuspended)
            continue;
        abandon(call.number);
        noteOver(id, CallEnd::Network);
    }
    // Whoever calls later is somebody else.
    if (m_facts.hasModem && isAnySuspended)
        m_patience.start(kPatience);
    else if (m_facts.hasModem)
        m_abandoned.clear();
}

/// Remembers a call that is over here: should the service still have it, it is not another one.
void StackModem::abandon(const QString& number)
{
    if (!number.isEmpty() && m_abandoned.size() < qsizetype{kMostCalls})
        m_abandoned += number;
}

QString StackModem::obstacle(const Request& request) const
{
    if (request.type != RC_CALL_TYPE_VOICE)
        return u"%1 makes no push-to-talk calls"_s.arg(m_stack);
    if (!m_facts.hasModem)
        return u"%1 has no modem"_s.arg(m_stack);
    // A network takes these without a card, without its PIN, and for strangers.
    if (PHONE_IsEmergencyCall(request.number.toLatin1().data()))
        return {};
    const auto* const found =
        std::ranges::find_if(kObstacles, [&](const Obstacle& obstacle) { return obstacle.isThere(m_facts); });
    return found == std::end(kObstacles) ? QString() : QString(QLatin1String(found->text));
}

void StackModem::dial(int id, const Request& request)
{
    m_calls[id] = {.path = {}, .number = request.number, .isPlaced = true};
    Request wanted = request;
    // A code before the number of help may keep it from being known as that; and help is to see who calls.
    if (PHONE_IsEmergencyCall(wanted.number.toLatin1().data()))
        wanted.callerId = CallerId::AsSubscribed;
    askForCall(id, wanted);
}

bool StackModem::carryOut(int id, CallEvent event)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end())
        return false;
    Line& call = found->second;
    if (event == CallEvent::HangUp) {
        call.isUnwanted = true;
        const bool hasObject = !call.path.isEmpty();
        if (hasObject || call.isSuspended) {
            // Asked for twice, a service may end the call that it has just taken back.
            if (!call.isBeingHungUp)
                hangUp(id, kTries);
        } else {
            m_cancelled[id] = call.number;
            noteOver(id, CallEnd::Here);
        }
        return true;
    }
    if (event != CallEvent::Answer || call.isPlaced)
        return false;
    // Asked for twice, a service may exchange the calls that it has just exchanged.
    if (!std::exchange(call.isBeingAnswered, true))
        askToAnswer(call, [this, id, path = call.path](const QDBusMessage& reply) { noteAnswered(id, path, reply); });
    return true;
}

void StackModem::sendTone(int id, QChar key)
{
    const Line* const line = call(id);
    if (line && !line->path.isEmpty())
        askForTone(*line, key);
}

void StackModem::unlock(const Codes& codes, const Result& then)
{
    const bool needsPuk = m_facts.pin == Pin::Puk1;
    if (m_facts.pin != Pin::Pin1 && !needsPuk)
        return then(u"no PIN is asked for"_s);
    if (needsPuk == codes.puk.isEmpty())
        return then(needsPuk ? u"the card asks for its PUK: give it, and a new PIN"_s : u"no PUK is asked for"_s);
    askToUnlock(codes, [this, then](const QDBusMessage& reply) {
        const QString failure = failureOf(reply);
        if (failure.isEmpty())
            return then({});
        logFailure(u"unlocking the card"_s, reply);
        QTimer::singleShot(kUntilCounted, this, [this, then, failure] {
            askForTries([this, then, failure] {
                const QString why = u"the card did not take it (%1)"_s.arg(failure);
                then(m_facts.triesLeft ? why + u"; tries left: %1"_s.arg(*m_facts.triesLeft) : why);
            });
        });
    });
}

QJsonObject StackModem::describe() const
{
    QJsonObject object = describeFacts(m_facts);
    object[u"modem"_s] = m_stack;
    object[u"obstacle"_s] = obstacle({});
    object[u"failure"_s] = m_failure;
    return object;
}

void StackModem::close()
{
    for (const auto& [id, call] : std::map(m_calls)) {
        if (!call.path.isEmpty())
            askToHangUp(call, [](const QDBusMessage& /*reply*/) {});
    }
    m_tell.stop();
    m_patience.stop();
    m_calls.clear();
}

void StackModem::noteObject(int id, const QString& path)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end() || !found->second.path.isEmpty())
        return;
    found->second.path = path;
    found->second.isSuspended = false;
    found->second.isBeingAnswered = false;
    found->second.isBeingHungUp = false;
    if (found->second.isUnwanted)
        hangUp(id, kTries);
}

void StackModem::noteAsked(int id, bool isAsked)
{
    if (const auto found = m_calls.find(id); found != m_calls.end())
        found->second.isAsked = isAsked;
}

void StackModem::noteNotPlaced(int id, const QDBusMessage& reply)
{
    // One that was hung up meanwhile may have been placed all the same.
    if (const auto cancelled = m_cancelled.extract(id); cancelled && reply.errorName() == kNoReply) {
        abandon(cancelled.mapped());
        if (!m_patience.isActive())
            m_patience.start(kPatience);
    }
    const auto found = m_calls.find(id);
    if (found == m_calls.end())
        return;
    if (reply.errorName() == kNoReply) {
        found->second.isSuspended = true;
        if (!m_patience.isActive())
            m_patience.start(kPatience);
        return;
    }
    logFailure(u"the call"_s, reply);
    noteOver(id, CallEnd::Network);
}

void StackModem::noteFound(const QString& path, const QString& number, const QString& name, CallState state)
{
    if (hasCall(path))
        return;
    // Written alike, it is one that was hung up, rather than one that may have been written in another way.
    const int known = suspendedCall(number, state);
    if (known != 0 && (m_calls.at(known).number == number || !m_abandoned.contains(number))) {
        noteObject(known, path);
        noteState(path, state);
        return;
    }
    // Who was told that a call is over must not go on talking; but nobody is cut off from help, and who rings may do so
    // anew.
    if (!rings(state) && m_abandoned.removeOne(number) && !PHONE_IsEmergencyCall(number.toLatin1().data()))
        return endUnknown(path);
    if (m_calls.size() >= kMostCalls)
        return;
    const int id = newCall();
    const QString caller = isDialable(number) ? number : QString();
    m_calls[id] = {.path = path, .number = caller, .isPlaced = false, .state = state};
    Q_EMIT came(id, {caller, name}, state);
}

void StackModem::noteAllFound()
{
    if (m_patience.isActive() || !m_abandoned.isEmpty())
        m_patience.start(kUntilPolled);
}

void StackModem::noteCaller(const QString& path, const QString& number, const QString& name)
{
    const auto found = m_calls.find(idOf(path));
    if (found == m_calls.end() || found->second.isPlaced)
        return;
    const QString caller = isDialable(number) ? number : QString();
    if (!caller.isEmpty())
        found->second.number = caller;
    Q_EMIT identified(found->first, {caller, name});
}

void StackModem::noteState(const QString& path, CallState state)
{
    const int id = idOf(path);
    if (id == 0)
        return;
    m_calls.at(id).state = state;
    Q_EMIT reached(id, state);
}

/// What has become of answering the call @p id, whose object is @p path.
void StackModem::noteAnswered(int id, const QString& path, const QDBusMessage& reply)
{
    const bool isFailure = !failureOf(reply).isEmpty();
    if (isFailure)
        logFailure(u"answering"_s, reply);
    if (idOf(path) != id)
        return;
    m_calls.at(id).isBeingAnswered = false;
    // A call that ends before its states are polled was talked on all the same.
    if (!isFailure)
        noteState(path, CallState::Connected);
}

void StackModem::noteEnd(const QString& path, CallEnd end)
{
    const auto found = m_calls.find(idOf(path));
    if (found != m_calls.end())
        found->second.end = end;
}

void StackModem::noteOver(const QString& path, CallEnd end)
{
    noteOver(idOf(path), end);
}

void StackModem::noteOver(int id, CallEnd end)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end())
        return;
    const CallEnd by = found->second.end.value_or(found->second.isUnwanted ? CallEnd::Here : end);
    m_calls.erase(found);
    Q_EMIT ended(id, by);
}

void StackModem::noteAllOver()
{
    for (const auto& [id, call] : std::map(m_calls))
        noteOver(id, CallEnd::Network);
}

int StackModem::idOf(const QString& path) const
{
    const auto found = std::ranges::find_if(m_calls, [&](const auto& entry) { return entry.second.path == path; });
    return path.isEmpty() || found == m_calls.end() ? 0 : found->first;
}

/// The call with @p number that waits for its service, and is found in @p state, or 0. A single one may have been
/// written in another way; but who rings is told in one way, or not at all. What rings now is none that was talked on.
int StackModem::suspendedCall(const QString& number, CallState state) const
{
    std::vector<int> waiting;
    for (const auto& [id, call] : m_calls) {
        if (!call.isSuspended || rings(call.state) != rings(state))
            continue;
        if (call.number == number)
            return id;
        if (!rings(state) || number.isEmpty() || call.number.isEmpty())
            waiting.push_back(id);
    }
    return waiting.size() == 1 ? waiting.front() : 0;
}

bool StackModem::isAwaited(const QString& number) const
{
    return std::ranges::any_of(
        m_calls, [&](const auto& entry) { return entry.second.isSuspended && entry.second.number == number; });
}

/// Hangs up the call @p id, again and again while the service is busy with another one.
void StackModem::hangUp(int id, int tries)
{
    const auto found = m_calls.find(id);
    if (found == m_calls.end() || found->second.path.isEmpty())
        return;
    found->second.isBeingHungUp = tries > 0;
    if (tries == 0)
        return;
    const QString path = found->second.path;
    askToHangUp(found->second, [this, id, path, tries](const QDBusMessage& reply) {
        if (idOf(path) != id)
            return;
        if (failureOf(reply).isEmpty()) {
            QTimer::singleShot(kUntilPolled, this, [this, id] { hangUp(id, 0); });
            return;
        }
        if (tries == kTries || tries == 1)
            logFailure(u"hanging up"_s, reply);
        QTimer::singleShot(kBetweenHangUps, this, [this, id, tries] { hangUp(id, tries - 1); });
    });
}

void StackModem::endUnknown(const QString& path)
{
    if (path.isEmpty())
        return;
    if (m_unknown.size() < kMostUnknown)
        m_unknown.insert(path);
    endUnknown(path, kTries);
}

void StackModem::endUnknown(const QString& path, int tries)
{
    askToHangUp({.path = path, .number = {}}, [this, path, tries](const QDBusMessage& reply) {
        if (failureOf(reply).isEmpty() || !isUnknown(path))
            return;
        if (tries == kTries || tries == 1)
            logFailure(u"hanging up"_s, reply);
        // What the bus says is that there is no such object; what the service says, that it cannot now.
        if (tries == 1 || reply.errorName().startsWith(kErrorsOfTheBus))
            return noteGone(path);
        QTimer::singleShot(kBetweenHangUps, this, [this, path, tries] {
            if (isUnknown(path))
                endUnknown(path, tries - 1);
        });
    });
}

bool StackModem::hasCallIn(CallState state) const
{
    return std::ranges::any_of(m_calls, [&](const auto& entry) { return entry.second.state == state; });
}

const StackModem::Line* StackModem::call(int id) const
{
    const auto found = m_calls.find(id);
    return found == m_calls.end() ? nullptr : &found->second;
}

int StackModem::unboundCall() const
{
    const auto found = std::ranges::find_if(m_calls, [](const auto& entry) {
        const Line& call = entry.second;
        return call.isPlaced && call.isAsked && call.path.isEmpty() && !call.isSuspended;
    });
    return found == m_calls.end() ? 0 : found->first;
}

void StackModem::logFailure(const QString& what, const QDBusMessage& reply)
{
    const QString error = reply.errorName();
    const bool isForbidden =
        error == u"org.freedesktop.DBus.Error.AccessDenied"_s || error.endsWith(u".Unauthorized"_s);
    m_failure = u"%1 failed: %2"_s.arg(what, failureOf(reply));
    if (isForbidden)
        m_failure += u"; allow this user to talk to it, see docs/modems.md"_s;
    log(u"%1: %2"_s.arg(m_stack, m_failure));
}

void StackModem::tell()
{
    m_tell.stop();
    tellFacts(m_facts, m_status);
    if (m_facts.imsi.isEmpty())
        return storeFacts(m_facts);
    const QString before = std::exchange(m_lastImsi, m_facts.imsi);
    if (!before.isEmpty() && before != m_facts.imsi)
        m_status.report(PHONE_Msg::PHONE_MSG_SIM_CARD_CHANGED_S);
    storeFacts(m_facts);
}

void StackModem::noteFacts()
{
    if (m_facts.registration == Registration::Registered)
        m_failure.clear();
    m_tell.start(0);
    if (std::exchange(m_wasOnline, m_facts.isOnline) != m_facts.isOnline)
        Q_EMIT radioChanged(m_facts.isOnline);
}

} // namespace zyn::handset
