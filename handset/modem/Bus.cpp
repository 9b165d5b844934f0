// The system bus: requests that nobody waits for, signals, and a bus that goes and comes back.
#include "handset/modem/Bus.h"

#include "handset/common/Log.h"

#include <QtCore/QPointer>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

constexpr auto kBetweenTries = 5s;
constexpr qsizetype kLongestText = 128;
constexpr qsizetype kMostTexts = 256;

/// What the bus itself says when it goes.
const BusAddress kLocal{{}, u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s};

QString printableText(QString text)
{
    text.truncate(kLongestText);
    text.removeIf([](QChar character) { return !character.isPrint(); });
    return text;
}

/**
 * Who takes the reply to one request, in its turn among the signals of its sender.
 *
 * Not a QDBusPendingCallWatcher: one that is made when the reply has already come hands it over behind signals that
 * came later, and what they told would be undone by what was so before.
 */
class PendingReply : public QObject
{
    Q_OBJECT

public:
    PendingReply(Bus& bus, QObject* context, const Bus::Reply& then)
        : QObject(&bus)
        , m_context(context)
        , m_then(then)
    {}

public Q_SLOTS:
    void take(const QDBusMessage& reply)
    {
        deleteLater();
        if (m_context)
            m_then(reply);
    }
    void fail(const QDBusError& error) { take(QDBusMessage::createError(error)); }

private:
    QPointer<QObject> m_context;
    Bus::Reply m_then;
};

} // namespace

Bus::Bus()
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &Bus::tryToConnect);
}

Bus::~Bus()
{
    if (!m_name.isEmpty())
        QDBusConnection::disconnectFromBus(m_name);
}

void Bus::start()
{
    tryToConnect();
}

void Bus::call(const BusAddress& to, const QString& method, const QVariantList& arguments, QObject* context,
               const Reply& then, std::chrono::milliseconds patience)
{
    QDBusMessage request = QDBusMessage::createMethodCall(to.service, to.path, to.interface, method);
    request.setAutoStartService(false);
    request.setArguments(arguments);
    auto* const pending = new PendingReply(*this, context, then);
    if (connection().callWithCallback(request, pending, SLOT(take(QDBusMessage)), SLOT(fail(QDBusError)),
                                      static_cast<int>(patience.count())))
        return;
    const auto fail = [pending] { pending->take(QDBusMessage::createError(QDBusError::Disconnected, {})); };
    QMetaObject::invokeMethod(pending, fail, Qt::QueuedConnection);
}

void Bus::listen(const BusAddress& from, const QString& signal, QObject* receiver, const char* slot)
{
    connection().connect(from.service, from.path, from.interface, signal, receiver, slot);
}

void Bus::tryToConnect()
{
    // A name of its own each time, as Qt keeps a connection that broke under its name.
    m_name = u"zyn-phoned-%1"_s.arg(++m_tries);
    QDBusConnection made = QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name);
    if (!made.isConnected()) {
        if (!std::exchange(m_isLackLogged, true))
            log(u"no system bus (%1): start dbus; trying again every %2 s"_s.arg(made.lastError().message())
                    .arg(kBetweenTries.count()));
        QDBusConnection::disconnectFromBus(std::exchange(m_name, {}));
        m_retry.start(kBetweenTries);
        return;
    }
    m_isConnected = true;
    m_isLackLogged = false;
    made.connect(kLocal.service, kLocal.path, kLocal.interface, u"Disconnected"_s, this, SLOT(noteLost()));
    Q_EMIT connected();
}

void Bus::noteLost()
{
    if (!std::exchange(m_isConnected, false))
        return;
    log(u"the system bus has gone: waiting for it"_s);
    QDBusConnection::disconnectFromBus(std::exchange(m_name, {}));
    Q_EMIT lost();
    m_retry.start(kBetweenTries);
}

QString failureOf(const QDBusMessage& reply)
{
    if (reply.type() != QDBusMessage::ErrorMessage)
        return {};
    if (reply.errorName() == kNoReply)
        return u"no answer"_s;
    const QString text = printableText(reply.errorMessage());
    return printableText(reply.errorName()) + (text.isEmpty() ? QString() : u": "_s + text);
}

bool hasSignature(const QDBusMessage& message, const char* signature)
{
    return message.type() != QDBusMessage::ErrorMessage && message.signature() == QLatin1String(signature);
}

QVariant busValue(const QVariant& value)
{
    return value.metaType() == QMetaType::fromType<QDBusVariant>() ? value.value<QDBusVariant>().variant() : value;
}

QString busText(const QVariant& value)
{
    const QVariant plain = busValue(value);
    return plain.typeId() == QMetaType::QString ? printableText(plain.toString()) : QString();
}

QStringList busTexts(const QVariant& value)
{
    const QVariant plain = busValue(value);
    QStringList texts;
    if (plain.typeId() == QMetaType::QStringList) {
        for (const QString& text : plain.toStringList().first(std::min(kMostTexts, plain.toStringList().size())))
            texts += printableText(text);
    }
    return texts;
}

std::optional<bool> busBool(const QVariant& value)
{
    const QVariant plain = busValue(value);
    return plain.typeId() == QMetaType::Bool ? std::optional(plain.toBool()) : std::nullopt;
}

std::optional<qint64> busNumber(const QVariant& value)
{
    const QVariant plain = busValue(value);
    switch (plain.typeId()) {
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return plain.toLongLong();
    default:
        return std::nullopt;
    }
}

std::optional<double> busReal(const QVariant& value)
{
    const QVariant plain = busValue(value);
    return plain.typeId() == QMetaType::Double ? std::optional(plain.toDouble()) : std::nullopt;
}

QString busPath(const QVariant& value)
{
    const QVariant plain = busValue(value);
    if (plain.metaType() != QMetaType::fromType<QDBusObjectPath>())
        return {};
    const QString path = plain.value<QDBusObjectPath>().path();
    return path == u"/"_s ? QString() : path;
}

QVariantMap busMap(const QVariant& value)
{
    const QVariant plain = busValue(value);
    if (plain.metaType() == QMetaType::fromType<QDBusArgument>()) {
        const auto argument = plain.value<QDBusArgument>();
        return argument.currentSignature() == u"a{sv}"_s ? qdbus_cast<QVariantMap>(argument) : QVariantMap();
    }
    return plain.typeId() == QMetaType::QVariantMap ? plain.toMap() : QVariantMap();
}

} // namespace zyn::handset

#include "Bus.moc"
