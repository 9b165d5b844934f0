// Carries out the requests for push-to-talk calls.
#include "handset/phone_server/PttRequests.h"

#include "handset/common/Log.h"
#include "handset/phone_server/PhoneLine.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

#include <optional>

namespace zyn::handset {
namespace {

/// The first party of the request @p data, nothing when it is not whole.
std::optional<Party> firstParty(const QByteArray& data)
{
    zyn::PayloadReader reader(data);
    const int32_t count = reader.readInt();
    if (count < 1 || count > zyn::kMaxPttParties)
        return std::nullopt;
    QStringList texts;
    for (int32_t i = 0; i < 2 * count; ++i)
        texts += reader.readText();
    reader.readInt();
    reader.readInt();
    if (!reader.isComplete())
        return std::nullopt;
    return Party{texts.at(0), texts.at(count)};
}

} // namespace

PttRequests::PttRequests(PhoneLine& line)
    : QCopChannel(zyn::kPttChannel)
    , m_line(line)
{}

void PttRequests::receive(const QCString& message, const QByteArray& data)
{
    if (message == zyn::kMakePttCall)
        makeCall(data);
    else if (message == zyn::kDropPttCall)
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
