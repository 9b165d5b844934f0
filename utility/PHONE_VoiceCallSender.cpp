// Sends requests to place and end voice calls.
#include "utility/PHONE_VoiceCallSender.h"

#include "utility/message/Payload_p.h"

PHONE_VoiceCallSender::PHONE_VoiceCallSender() = default;

PHONE_VoiceCallSender::~PHONE_VoiceCallSender() = default;

bool PHONE_VoiceCallSender::makeCall(const char* number, const QString& name, bool flag, int clir, int dialMode,
                                     signed char line)
{
    if (!number || *number == '\0')
        return false;
    return zyn::sendMessage(zyn::kMakeCall, {QString::fromLatin1(number), name, flag, clir, dialMode, line});
}

bool PHONE_VoiceCallSender::makeCall(const char* number, int dialMode)
{
    return makeCall(number, QString(), false, zyn::kDefaultClir, dialMode, zyn::kDefaultLine);
}

void PHONE_VoiceCallSender::dropCall()
{
    zyn::sendMessage(zyn::kDropCall);
}
