// Names and sends the messages of the phone channel.
#include "utility/PHONE_Msg.h"

#include "utility/PHONE_Log_p.h"
#include "utility/message/PhoneMessages_p.h"

namespace {

constexpr char kMsgSource[] = "utility/PHONE_Msg";

} // namespace

PHONE_Msg::PHONE_Msg(QObject* parent, const char* name)
    : QCopChannel(zyn::kPhoneChannel, parent, name)
{}

PHONE_Msg::~PHONE_Msg() = default;

QCString PHONE_Msg::getMsg(PHONE_MSG_TYPE_T type)
{
    const auto messages = zyn::phoneMessages();
    const auto index = static_cast<size_t>(type);
    return index < messages.size() ? messages[index].name : "";
}

bool PHONE_Msg::send(PHONE_MSG_TYPE_T type)
{
    zyn::logEntry(kPhoneLogLevel, kMsgSource, __func__);
    const QCString name = getMsg(type);
    return !name.isEmpty() && QCopChannel::send(zyn::kPhoneChannel, name);
}

bool PHONE_Msg::send(PHONE_MSG_TYPE_T type, const QByteArray& data)
{
    zyn::logEntry(kPhoneLogLevel, kMsgSource, __func__);
    const QCString name = getMsg(type);
    if (name.isEmpty()) {
        PHONE_Log(kPhoneLogLevel, "Error in getting message");
        return false;
    }
    return QCopChannel::send(zyn::kPhoneChannel, name, data);
}
