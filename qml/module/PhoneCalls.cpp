// The calls of the line, from the phone server's control socket.
#include "qml/module/PhoneCalls.h"

#include "qml/module/PhoneControlClient.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/message/Message_p.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::qml {
namespace {

static_assert(std::size(phonecontrol::kCallStates) == size_t{PhoneCalls::Failed} + 1);
static_assert(kFirstOver == PhoneCalls::Ended);

/// The most characters of a number, as a record has room for.
constexpr qsizetype kLongestDialed = sizeof(voicecall::SimCall::number) - 1;

constexpr ListRole<LineCall> kCallRoles[] = {
    {"callId", [](const LineCall& call) -> QVariant { return call.id; }},
    {"number", [](const LineCall& call) -> QVariant { return call.number; }},
    {"name", [](const LineCall& call) -> QVariant { return call.name; }},
    {"type", [](const LineCall& call) -> QVariant { return call.type; }},
    {"direction",
     [](const LineCall& call) -> QVariant { return int{call.isPlaced ? PhoneCalls::Outgoing : PhoneCalls::Incoming}; }},
    {"state", [](const LineCall& call) -> QVariant { return call.state; }},
    {"since", [](const LineCall& call) -> QVariant { return call.since; }},
};

} // namespace

/// The list of the calls, which is told rather than fetched.
class CallsModel final : public FetchedRows<LineCall>
{
public:
    CallsModel(PhoneControlClient& client, QObject* parent)
        : FetchedRows(kCallRoles, parent)
        , m_client(client)
    {
        ask();
    }

    using FetchedRows::rows;

    /// These are the calls now.
    void tell(const std::vector<LineCall>& calls)
    {
        setRows(calls);
        settle({});
    }

    /// The call has changed; false if it has left the list.
    bool tell(const LineCall& call)
    {
        std::vector<LineCall> calls = rows();
        const auto known = std::ranges::find(calls, call.id, &LineCall::id);
        if (known != calls.end())
            *known = call;
        else if (!call.isOver())
            calls.push_back(call);
        setRows(calls);
        if (call.isOver() && std::erase_if(calls, [&](const LineCall& other) { return other.id == call.id; }) > 0)
            setRows(std::move(calls));
        return !call.isOver();
    }

    /// Nothing is known any more, because of @p reason.
    void forget(const QString& reason)
    {
        if (isLoaded())
            setRows({});
        setUnloaded();
        settle(reason);
    }

protected:
    void fetch() override
    {
        ask();
        m_client.refresh();
    }

private:
    void ask()
    {
        if (!std::exchange(m_isAsking, true))
            begin();
    }

    /// What was asked for has come, or what was not; the same again is not worth telling.
    void settle(const QString& reason)
    {
        if (!m_isAsking && reason == error())
            return;
        ask();
        m_isAsking = false;
        finish(reason);
    }

    PhoneControlClient& m_client;
    bool m_isAsking = false;
};

PhoneCalls::PhoneCalls(QObject* parent)
    : QObject(parent)
    , m_client(PhoneControlClient::shared())
    , m_calls(new CallsModel(*m_client, this))
{
    connect(m_calls, &FetchedListModel::loadedChanged, this, &PhoneCalls::availableChanged);
    connect(m_client.get(), &PhoneControlClient::callsTold, this, [this](const std::vector<LineCall>& calls) {
        m_calls->tell(calls);
        noteRinging();
    });
    connect(m_client.get(), &PhoneControlClient::callChanged, this, [this](const LineCall& call) {
        const bool isOver = !m_calls->tell(call);
        noteRinging();
        if (isOver)
            Q_EMIT callOver(call.id, call.number, call.name, call.state);
    });
    connect(m_client.get(), &PhoneControlClient::lost, this, [this](const QString& reason) {
        m_calls->forget(reason);
        noteRinging();
    });
    m_client->refresh();
}

PhoneCalls::~PhoneCalls() = default;

FetchedListModel* PhoneCalls::calls() const
{
    return m_calls;
}

bool PhoneCalls::isAvailable() const
{
    return m_calls->isLoaded();
}

bool PhoneCalls::dial(const QString& number, const QString& name)
{
    QByteArray digits = dialable(number);
    if (digits.isEmpty())
        return false;
    PHONE_MakeVoiceCall(digits.data(), name, false, PHONE_MAKE_CALL_CLIR_T{kDefaultClir}, kDefaultLine);
    return true;
}

bool PhoneCalls::dialDirectly(const QString& number)
{
    const QByteArray digits = dialable(number);
    if (!digits.isEmpty())
        PHONE_MakeVoiceCallDirectly(digits.constData());
    return !digits.isEmpty();
}

bool PhoneCalls::dialPrepended(const QString& number)
{
    const QByteArray digits = dialable(number);
    if (!digits.isEmpty())
        PHONE_MakeVoiceCallPrependly(digits.constData());
    return !digits.isEmpty();
}

void PhoneCalls::hangUp()
{
    PHONE_EndVoiceCall();
}

void PhoneCalls::answer(int callId)
{
    QStringList words{QLatin1String(phonecontrol::kAnswer.name)};
    if (callId != 0)
        words += QString::number(callId);
    say(words);
}

void PhoneCalls::end(int callId)
{
    say({QLatin1String(phonecontrol::kHangUp.name), QString::number(callId)});
}

/// @p number as the library takes it; nothing, which is told, if it cannot.
QByteArray PhoneCalls::dialable(const QString& number)
{
    const bool isLatin1 =
        std::ranges::all_of(number, [](QChar character) { return !character.isNull() && character <= u'\u00ff'; });
    if (isLatin1 && !number.isEmpty() && number.size() <= kLongestDialed)
        return number.toLatin1();
    Q_EMIT failed(tr("A number has 1 to %1 digits or signs").arg(kLongestDialed));
    return {};
}

void PhoneCalls::say(const QStringList& words)
{
    m_client->say(words, this, [this](const QString& refusal) {
        if (!refusal.isEmpty())
            Q_EMIT failed(refusal);
    });
}

void PhoneCalls::noteRinging()
{
    const bool isRinging = std::ranges::any_of(
        m_calls->rows(), [](const LineCall& call) { return call.state == Ringing || call.state == Waiting; });
    if (std::exchange(m_isRinging, isRinging) != isRinging)
        Q_EMIT ringingChanged();
}

} // namespace zyn::qml
