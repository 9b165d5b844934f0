// Receives requests to place and end voice calls.
#include "utility/PHONE_VoiceCallReceiver.h"

#include "utility/PHONE_SignalTypes_p.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

PHONE_VoiceCallReceiver::PHONE_VoiceCallReceiver(QObject* parent, const char* name)
    : QCopChannel(zyn::kVoiceCallChannel, parent, name)
{
    zyn::registerSignalTypes(staticMetaObject);
}

PHONE_VoiceCallReceiver::~PHONE_VoiceCallReceiver() = default;

void PHONE_VoiceCallReceiver::receive(const QCString& message, const QByteArray& data)
{
    if (message == zyn::kMakeCall) {
        zyn::PayloadReader reader(data);
        const QString number = reader.readText();
        const QString name = reader.readText();
        const bool flag = reader.readInt() != 0;
        const int clir = reader.readInt();
        const int dialMode = reader.readInt();
        const auto line = static_cast<TAPI_CALL_LINE_E>(static_cast<int8_t>(reader.readByte()));
        Q_EMIT signalMakeCall(number, name, flag, clir, dialMode, line);
    } else if (message == zyn::kDropCall) {
        Q_EMIT sigDropCall();
    }
}
