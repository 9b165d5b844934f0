// Sends requests to place and end voice calls.
#include "utility/PHONE_VoiceCallSender.h"

#include "platform/QCopChannel.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

PHONE_VoiceCallSender::PHONE_VoiceCallSender() = default;

PHONE_VoiceCallSender::~PHONE_VoiceCallSender() = default;

bool PHONE_VoiceCallSender::makeCall(const char* number, const QString& name, bool flag, int clir, int dialMode,
                                     signed char line)
{
    if (!number || *number == '\0')
        return false;
    const QByteArray payload = zyn::PayloadWriter()
                                   .writeText(QString::fromLatin1(number))
                                   .writeText(name)
                                   .writeBool(flag)
                                   .writeInt(clir)
                                   .writeInt(dialMode)
                                   .writeByte(static_cast<uint8_t>(line))
                                   .payload();
    return QCopChannel::send(zyn::kVoiceCallChannel, zyn::kMakeCall, payload);
}

bool PHONE_VoiceCallSender::makeCall(const char* number, int dialMode)
{
    return makeCall(number, QString(), false, zyn::kDefaultClir, dialMode, zyn::kDefaultLine);
}

void PHONE_VoiceCallSender::dropCall()
{
    QCopChannel::send(zyn::kVoiceCallChannel, zyn::kDropCall);
}
