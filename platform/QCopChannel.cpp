// Named message channels, within one process.
#include "platform/QCopChannel.h"

#include <QtCore/QList>

namespace {

QList<QCopChannel*> s_listeners;

} // namespace

QCopChannel::QCopChannel(const QCString& channel, QObject* parent, const char* name)
    : QObject(parent)
    , m_channel(channel)
{
    setObjectName(QString::fromLatin1(name));
    s_listeners.append(this);
}

QCopChannel::~QCopChannel()
{
    s_listeners.removeOne(this);
}

QCString QCopChannel::channel() const
{
    return m_channel;
}

bool QCopChannel::send(const QCString& channel, const QCString& message)
{
    return send(channel, message, QByteArray());
}

bool QCopChannel::send(const QCString& channel, const QCString& message, const QByteArray& data)
{
    if (channel.isEmpty() || message.isEmpty())
        return false;
    for (QCopChannel* listener : std::as_const(s_listeners)) {
        if (listener->m_channel == channel)
            QMetaObject::invokeMethod(
                listener, [=] { listener->receive(message, data); }, Qt::QueuedConnection);
    }
    return true;
}

void QCopChannel::receive(const QCString& message, const QByteArray& data)
{
    Q_EMIT received(message, data);
}
