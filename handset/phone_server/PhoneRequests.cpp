// Handles the requests of the phone channel and of the push-to-talk channel.
#include "handset/phone_server/PhoneRequests.h"

#include "handset/common/Log.h"
#include "handset/phone_server/PhoneLine.h"

#include <algorithm>
#include <iterator>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// The first party of the request @p data, or nothing if the request is malformed.
std::optional<Party> firstParty(const QByteArray& data)
{
    const FieldValues values = decode(kMakePttCall, data);
    const int32_t count = values[0].number;
    if (!values.isComplete() || count < 1 || count > kMaxPttParties)
        return std::nullopt;
    return Party{values[1].texts.first(), values[2].texts.first()};
}

} // namespace

struct PhoneRequests::Request
{
    PHONE_MSG_TYPE_T type;
    void (PhoneRequests::*answer)(int32_t number);
};

const PhoneRequests::Request PhoneRequests::kRequests[] = {
    {PHONE_MSG_SET_RFMOD_S, &PhoneRequests::setRadioMode},
    {PHONE_MSG_SET_FEATUREDB_LANG_S, &PhoneRequests::setLanguage},
    {PHONE_MSG_RESET_TOTAL_DURATION_S, &PhoneRequests::resetTotalDuration},
    {PHONE_MSG_GET_TOTAL_BYTE_AND_DURATION_S, &PhoneRequests::reportTotals},
};

PhoneRequests::PhoneRequests(PhoneLine& line)
    : PHONE_Msg(nullptr, nullptr)
    , m_line(line)
{
    connect(&line.modem(), &Modem::radioSwitched, this,
            [this](bool isDone) { m_line.status().report(PHONE_MSG_RET_SET_RFMOD_S, {isDone ? 1 : 0}); });
}

void PhoneRequests::receive(const QCString& message, const QByteArray& data)
{
    const auto found = std::ranges::find_if(
        kRequests, [&](const Request& request) { return message == phoneMessage(request.type).name; });
    if (found == std::end(kRequests))
        return;
    const FieldValues values = decode(phoneMessage(found->type), data);
    if (values.isComplete())
        (this->*found->answer)(values.list.isEmpty() ? 0 : values[0].number);
    else
        log(u"%1 without its number: ignored"_s.arg(QString::fromLatin1(message)));
}

void PhoneRequests::setRadioMode(int32_t on)
{
    log(on ? u"radio on"_s : u"radio off"_s);
    m_line.modem().setRadio(on != 0);
}

void PhoneRequests::setLanguage(int32_t language)
{
    log(u"language %1"_s.arg(language));
    m_line.status().report(PHONE_MSG_RET_SET_FEATUREDB_LANG_S, {m_line.modem().takesLanguage() ? 1 : 0});
}

/// Kind 0 is the total counted here; kind 1 is always 0.
void PhoneRequests::resetTotalDuration(int32_t kind)
{
    constexpr int32_t kDone = 0;
    constexpr int32_t kNoSuchKind = 1;
    if (kind == 0)
        m_line.resetTotal();
    m_line.status().report(PHONE_MSG_RET_RESET_TOTAL_DURATION_S, {kind, kind == 0 || kind == 1 ? kDone : kNoSuchKind});
}

void PhoneRequests::reportTotals(int32_t /*unused*/)
{
    m_line.status().report(PHONE_MSG_TOTAL_DATA_BYTES_S, {0, 0, 0, 0});
    m_line.status().report(PHONE_MSG_TOTAL_CONNECTED_DURATION_S, {m_line.isConnected() ? 1 : 0, m_line.totalSeconds()});
}

PttRequests::PttRequests(PhoneLine& line)
    : QCopChannel(kPttChannel)
    , m_line(line)
{}

void PttRequests::receive(const QCString& message, const QByteArray& data)
{
    if (message == kMakePttCall.name)
        makeCall(data);
    else if (message == kDropPttCall.name)
        dropCall();
}

void PttRequests::makeCall(const QByteArray& data)
{
    if (const auto party = firstParty(data))
        m_line.place(*party, RC_CALL_TYPE_PTT1);
    else
        log(u"a malformed request for a push-to-talk call: ignored"_s);
}

void PttRequests::dropCall()
{
    if (m_line.current() && m_line.current()->isPtt())
        m_line.apply(m_line.currentId(), CallEvent::HangUp);
}

} // namespace zyn::handset
