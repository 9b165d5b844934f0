// Places and ends voice calls.
#include "utility/PHONE_VoiceCall.h"

#include "utility/PHONE_VoiceCallSender.h"
#include "utility/message/Message_p.h"

// The sender refuses a null number.

void PHONE_MakeVoiceCall(char* number, QString const& name, bool flag, PHONE_MAKE_CALL_CLIR_T clir, signed char line)
{
    PHONE_VoiceCallSender().makeCall(number, name, flag, clir, zyn::DialOrdinary, line);
}

void PHONE_VoiceCallInterfaceMakeVoiceCall(char* number, QString const& name, bool flag, PHONE_MAKE_CALL_CLIR_T clir,
                                           signed char line)
{
    PHONE_MakeVoiceCall(number, name, flag, clir, line);
}

void PHONE_MakeVoiceCallDirectly(char const* number)
{
    PHONE_VoiceCallSender().makeCall(number, zyn::DialDirectly);
}

void PHONE_MakeVoiceCallPrependly(char const* number)
{
    PHONE_VoiceCallSender().makeCall(number, zyn::DialPrependly);
}

void PHONE_EndVoiceCall()
{
    PHONE_VoiceCallSender().dropCall();
}

void PHONE_MakeVideoCall(char const* /*number*/)
{}

void PHONE_EndVTCall()
{}
