// Named message channels between processes.
#pragma once

#include "platform/QCString.h"
#include "platform/ZynExport.h"

#include <QtCore/QObject>

/// A listener on a named channel.
class ZYN_EXPORT QCopChannel : public QObject
{
    Q_OBJECT

public:
    explicit QCopChannel(const QCString& channel, QObject* parent = nullptr, const char* name = nullptr);
    ~QCopChannel() override;

    QCString channel() const;

    static bool send(const QCString& channel, const QCString& message);
    static bool send(const QCString& channel, const QCString& message, const QByteArray& data);

Q_SIGNALS:
    void received(const QCString& message, const QByteArray& data);

public:
    virtual void receive(const QCString& message, const QByteArray& data);

private:
    QCString m_channel;
};
