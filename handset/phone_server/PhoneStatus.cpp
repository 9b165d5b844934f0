// The status messages of the phone server, and what they have told so far.
#include "handset/phone_server/PhoneStatus.h"

#include "handset/common/Log.h"
#include "platform/QCopChannel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// Whether @p message tells a state, and neither an event, which has no value, nor the result of a request.
bool isState(const PhoneMessage& message)
{
    return message.fields.size() > 0 && !std::string_view(message.word).ends_with("-result");
}

void send(const PhoneMessage& message, const QByteArray& payload)
{
    if (!QCopChannel::send(message.channel, message.name, payload))
        log(u"not all listeners received %1"_s.arg(QLatin1String(message.name)));
}

} // namespace

void PhoneStatus::report(const PhoneMessage& message, const QByteArray& payload)
{
    send(message, payload);
    if (!isState(message))
        return;
    std::erase_if(m_told, [&](const Told& told) { return told.message == &message; });
    m_told.push_back({&message, payload, Clock::now()});
}

void PhoneStatus::report(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<FieldValue> values)
{
    const PhoneMessage& message = phoneMessage(type);
    report(message, encode(message, values));
}

void PhoneStatus::tell(PHONE_Msg::PHONE_MSG_TYPE_T type, std::span<const FieldValue> values)
{
    const PhoneMessage& message = phoneMessage(type);
    const QByteArray payload = encode(message, values);
    const bool isTold = std::ranges::any_of(
        m_told, [&](const Told& told) { return told.message == &message && told.payload == payload; });
    if (!isTold)
        report(message, payload);
}

bool PhoneStatus::tellAgain(Clock::time_point time) const
{
    bool isAnyTold = false;
    for (const Told& told : m_told) {
        if (told.time > time)
            break;
        send(*told.message, told.payload);
        isAnyTold = true;
    }
    return isAnyTold;
}

} // namespace zyn::handset
