// Carries out the requests for push-to-talk calls.
#include "handset/phone_server/PttRequests.h"

#include "handset/common/Log.h"
#include "handset/phone_server/PhoneLine.h"
#include "utility/message/Payload_p.h"

#include <optional>

namespace zyn::handset {
namespace {

/// The first party of the request @p data, nothing when it is not whole.
std::optional<Party> firstParty(const QByteArray& data)
{
    const FieldValues values = decode(kMakePttCall, data);
    const int32_t count = values[0].number;
    if (!values.isComplete() || count < 1 || count > kMaxPttParties)
        return std::nullopt;
    return Party{values[1].texts.first(), values[2].texts.first()};
}

} // namespace

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
        log(QStringLiteral("a request for a push-to-talk call is not whole: ignored"));
}

void PttRequests::dropCall()
{
    if (m_line.current() && m_line.current()->isPtt())
        m_line.hangUp();
}

} // namespace zyn::handset
