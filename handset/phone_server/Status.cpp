// The status messages of the phone server.
#include "handset/phone_server/Status.h"

#include "handset/common/Log.h"
#include "platform/QCopChannel.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

namespace zyn::handset {

void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, const QByteArray& payload)
{
    const QCString message = zyn::messageName(zyn::kPhonePrefix, static_cast<unsigned>(type), zyn::kPhoneTypes);
    if (!QCopChannel::send(zyn::kPhoneChannel, message, payload))
        log(QStringLiteral("somebody missed %1").arg(QString::fromLatin1(message)));
}

void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<int32_t> numbers)
{
    zyn::PayloadWriter writer;
    for (const int32_t number : numbers)
        writer.writeInt(number);
    reportStatus(type, writer.payload());
}

} // namespace zyn::handset
