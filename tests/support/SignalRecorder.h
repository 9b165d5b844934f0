// Records every signal that an object's class declares, as text.
#pragma once

#include "utility/PHONE_MsgClient.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QVariant>

#include <functional>

/// `take()` gives `signalName(argument,argument)` for each signal in the order of emission. Texts are quoted and a null
/// one reads null; of what a pointer points to, the first 16 bytes are shown.
class SignalRecorder : public QObject
{
    // No Q_OBJECT: it has one unnamed slot for each signal of the sender.

public:
    explicit SignalRecorder(const QObject* sender)
        : m_class(sender->metaObject())
    {
        for (int index = m_class->methodOffset(); index < m_class->methodCount(); ++index) {
            QMetaObject::connect(sender, index, this, firstSlot() + index - m_class->methodOffset(),
                                 Qt::DirectConnection);
        }
    }

    QByteArray take()
    {
        QByteArray all = m_signals.join(' ');
        m_signals.clear();
        return all;
    }

    qsizetype count() const { return m_signals.size(); }

    /// Called after each recorded signal, while it is still being delivered.
    std::function<void()> onSignal = [] {};

    int qt_metacall(QMetaObject::Call call, int id, void** arguments) override
    {
        id = QObject::qt_metacall(call, id, arguments);
        if (id < 0 || call != QMetaObject::InvokeMetaMethod)
            return id;
        record(m_class->method(m_class->methodOffset() + id), arguments + 1);
        return -1;
    }

private:
    static int firstSlot() { return QObject::staticMetaObject.methodCount(); }

    static QByteArray quoted(const QString& text) { return text.isNull() ? "null" : '"' + text.toUtf8() + '"'; }

    static QByteArray render(const QByteArray& name, QMetaType type, void* argument)
    {
        if (name.endsWith(']') || name.endsWith('*'))
            return QByteArray(*static_cast<char**>(argument), 16).toHex();
        if (type == QMetaType::fromType<SERVICE_PROVIDER_DATA_S>()) {
            const auto& provider = *static_cast<SERVICE_PROVIDER_DATA_S*>(argument);
            return QByteArray::number(provider.flag) + ',' + quoted(provider.name);
        }
        const QVariant value(type, argument);
        if (type.id() == QMetaType::QString)
            return quoted(value.toString());
        return type.id() == QMetaType::Bool ? value.toString().toLatin1() : QByteArray::number(value.toLongLong());
    }

    void record(const QMetaMethod& signal, void** arguments)
    {
        QByteArrayList texts;
        for (int index = 0; index < signal.parameterCount(); ++index)
            texts += render(signal.parameterTypes().at(index), signal.parameterMetaType(index), arguments[index]);
        m_signals += signal.name() + '(' + texts.join(',') + ')';
        onSignal();
    }

    const QMetaObject* m_class;
    QByteArrayList m_signals;
};

/// The signatures of the signals that a class declares itself, in their order.
inline QByteArrayList signalsOf(const QMetaObject& metaObject)
{
    QByteArrayList signatures;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index)
        signatures += metaObject.method(index).methodSignature();
    return signatures;
}
