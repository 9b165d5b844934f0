// Named message channels between the handset's processes.
#include "platform/QCopChannel.h"

#include "platform/qcop/ChannelDirectory_p.h"
#include "platform/qcop/ChannelFrame_p.h"
#include "platform/qcop/ChannelListener_p.h"
#include "platform/qcop/ChannelOrigin_p.h"
#include "platform/qcop/ChannelSender_p.h"

namespace {

/// The text up to its first NUL, which is all that a name has.
QCString nameOf(const QCString& text)
{
    return text.contains('\0') ? QCString(text.constData()) : text;
}

} // namespace

QCopChannel::QCopChannel(const QCString& channel, QObject* parent, const char* name)
    : QObject(parent)
    , m_channel(nameOf(channel))
    , m_listener(std::make_unique<zyn::ChannelListener>(
          m_channel, [this](const QByteArray& message, const QByteArray& data) { receive(message, data); }, this))
{
    // By this name receivers may be connected with a queue between.
    qRegisterMetaType<QCString>("QCString");
    setObjectName(QString::fromLatin1(name));
}

QCopChannel::~QCopChannel() = default;

bool QCopChannel::isListening() const
{
    return m_listener->isListening();
}

bool QCopChannel::send(const QCString& channel, const QCString& message, const QByteArray& data)
{
    const QCString channelName = nameOf(channel);
    const QCString messageName = nameOf(message);
    const zyn::ChannelFrame frame(messageName, data);
    return !channelName.isEmpty() && frame.isValid() && zyn::ChannelSender::sendFromThisThread(channelName, frame);
}

bool QCopChannel::send(const QCString& channel, const QCString& message)
{
    return send(channel, message, QByteArray());
}

QList<QCString> QCopChannel::channels()
{
    return zyn::ChannelDirectory::channels(zyn::ChannelEnvironment::current().root());
}

zyn::ChannelOrigin zyn::ChannelOrigin::of(const QCopChannel& channel)
{
    return channel.m_listener->origin();
}

void QCopChannel::receive(const QCString& message, const QByteArray& data)
{
    Q_EMIT received(message, data);
}
