// The status messages of the phone server.
#include "handset/phone_server/Status.h"

#include "handset/common/Log.h"
#include "platform/QCopChannel.h"

using namespace Qt::StringLiterals;

namespace zyn::handset {

void reportStatus(const PhoneMessage& message, const QByteArray& payload)
{
    if (!QCopChannel::send(message.channel, message.name, payload))
        log(u"somebody missed %1"_s.arg(QLatin1String(message.name)));
}

void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<FieldValue> values)
{
    const PhoneMessage& message = phoneMessage(type);
    reportStatus(message, encode(message, values));
}

} // namespace zyn::handset
