// The system bus: requests that nobody waits for, signals, and a bus that goes and comes back.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtCore/QVariant>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

#include <chrono>
#include <functional>
#include <optional>

namespace zyn::handset {

/// An interface of an object of a service. What is empty stands for any in a subscription.
struct BusAddress
{
    QString service;
    QString path;
    QString interface;
};

/**
 * A connection to the system bus that is made again when it is lost.
 *
 * What comes over the bus is whatever its sender likes: who reads a value says of which type it must be, see below.
 */
class Bus : public QObject
{
    Q_OBJECT

public:
    Bus();
    ~Bus() override;

    /// Connects, now and from now on.
    void start();
    bool isConnected() const { return m_isConnected; }
    QDBusConnection connection() const { return QDBusConnection(m_name); }

    using Reply = std::function<void(const QDBusMessage& reply)>;
    /// Calls @p method with @p arguments, and @p then with the reply, which may be an error, unless @p context is gone
    /// by then.
    void call(const BusAddress& to, const QString& method, const QVariantList& arguments, QObject* context,
              const Reply& then, std::chrono::milliseconds patience = kPatience);

    /// Calls @p slot, a SLOT() of @p receiver with a QDBusMessage, for each @p signal of @p from.
    void listen(const BusAddress& from, const QString& signal, QObject* receiver, const char* slot);

    /// How long a reply may take: a modem takes seconds.
    static constexpr std::chrono::seconds kPatience{20};

Q_SIGNALS:
    /// A connection has been made. Nothing of a former one is left, subscriptions neither.
    void connected();
    void lost();

private Q_SLOTS:
    void noteLost();

private:
    void tryToConnect();

    QString m_name;
    int m_tries = 0;
    bool m_isConnected = false;
    bool m_isLackLogged = false;
    QTimer m_retry;
};

/// The error of a request that was not answered in time, or whose service went before it answered.
inline const QString kNoReply = QStringLiteral("org.freedesktop.DBus.Error.NoReply");

/// Why @p reply is a failure, for people, in one line; empty when it is none.
QString failureOf(const QDBusMessage& reply);

/// Whether @p message has arguments of the types @p signature, and no more.
bool hasSignature(const QDBusMessage& message, const char* signature);

/// What is in @p value, when that is a variant itself.
QVariant busValue(const QVariant& value);

/// @{ The value in @p value, however it is wrapped; that of no value when it is of another type. Texts are cut off at
/// 128 characters, and have only printable ones.
QString busText(const QVariant& value);
QStringList busTexts(const QVariant& value);
std::optional<bool> busBool(const QVariant& value);
std::optional<qint64> busNumber(const QVariant& value);
std::optional<double> busReal(const QVariant& value);
/// The path of an object, as it came; empty for "/", too, which stands for none.
QString busPath(const QVariant& value);
QVariantMap busMap(const QVariant& value);
/// @}

} // namespace zyn::handset
