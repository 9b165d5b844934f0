// Receives requests to place and end voice calls.
#include "utility/PHONE_VoiceCallReceiver.h"

#include "utility/PHONE_SignalTypes_p.h"
#include "utility/message/Payload_p.h"

PHONE_VoiceCallReceiver::PHONE_VoiceCallReceiver(QObject* parent, const char* name)
    : QCopChannel(zyn::kVoiceCallChannel, parent, name)
{
    zyn::registerSignalTypes(staticMetaObject);
}

PHONE_VoiceCallReceiver::~PHONE_VoiceCallReceiver() = default;

void PHONE_VoiceCallReceiver::receive(const QCString& message, const QByteArray& data)
{
    if (message == zyn::kMakeCall.name) {
        const zyn::FieldValues values = zyn::decode(zyn::kMakeCall, data);
        Q_EMIT signalMakeCall(values[0].text, values[1].text, values[2].number != 0, values[3].number, values[4].number,
                              static_cast<TAPI_CALL_LINE_E>(values[5].number));
    } else if (message == zyn::kDropCall.name) {
        Q_EMIT sigDropCall();
    }
}
