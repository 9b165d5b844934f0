// Receives requests to place and end voice calls.
#pragma once

#include "platform/QCopChannel.h"
#include "platform/TAPI.h"

#include <QtCore/QString>

/**
 * Turns the requests of PHONE_VoiceCallSender into signals, for the application that carries them out.
 *
 * Every receiver of the user's processes gets every request. Nothing is checked: the number may be empty, and of a
 * request that ends early the fields that are not there whole are 0, false and null texts.
 */
class ZYN_EXPORT PHONE_VoiceCallReceiver : public QCopChannel
{
    Q_OBJECT

public:
    /// Listens for requests as @p name, a label for debugging that may be null; @p parent deletes it.
    explicit PHONE_VoiceCallReceiver(QObject* parent = nullptr, const char* name = nullptr);
    ~PHONE_VoiceCallReceiver() override;

    /// Decodes one message; called by the channel.
    void receive(const QCString& message, const QByteArray& data) override;

Q_SIGNALS:
    /// A call is asked for. The arguments are those of PHONE_VoiceCallSender::makeCall().
    void signalMakeCall(const QString& number, const QString& name, bool flag, int clir, int dialMode,
                        TAPI_CALL_LINE_E line);
    /// The call is to end.
    void sigDropCall();
};
