// What a user would take instead of our channels: ZeroMQ, libdbus and Qt's D-Bus.
#include "bench/Transports.h"

#include "bench/Bench.h"
#include "bench/Child.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QString>

#ifdef ZYN_BENCH_ZMQ
#    include <zmq.h>
#endif
#ifdef ZYN_BENCH_DBUS
#    include <dbus/dbus.h>
#endif
#ifdef ZYN_BENCH_QTDBUS
#    include <QtDBus/QDBusConnection>
#    include <QtDBus/QDBusMessage>
#endif

namespace bench {
namespace {

constexpr char kZmq[] = "ZeroMQ";
constexpr char kQtDbus[] = "Qt's D-Bus";

#if defined ZYN_BENCH_DBUS || defined ZYN_BENCH_QTDBUS
constexpr char kObject[] = "/zyn/bench";
constexpr char kInterface[] = "zyn.bench";
constexpr char kSignal[] = "message";

std::string busAddress()
{
    return "unix:path=" + socketPath("bus");
}
#endif

#ifdef ZYN_BENCH_ZMQ
void* zmqSocket(int type)
{
    void* const socket = ::zmq_socket(::zmq_ctx_new(), type);
    const int unlimited = 0;
    ::zmq_setsockopt(socket, ZMQ_SNDHWM, &unlimited, sizeof unlimited);
    ::zmq_setsockopt(socket, ZMQ_RCVHWM, &unlimited, sizeof unlimited);
    return socket;
}

void listenWithZmq(Ear& ear)
{
    void* const socket = zmqSocket(ZMQ_SUB);
    require(::zmq_setsockopt(socket, ZMQ_SUBSCRIBE, "", 0) == 0, "ZeroMQ's subscription");
    require(::zmq_connect(socket, ("ipc://" + socketPath("zmq")).c_str()) == 0, "ZeroMQ's connection");
    answer("ready");
    for (char buffer[64]; ::zmq_recv(socket, buffer, sizeof buffer, 0) >= 0;)
        ear.hear();
}

class ZmqTransport : public Transport
{
public:
    /// Returns when all have subscribed.
    explicit ZmqTransport(int listeners)
    {
        const int all = 1; // not only the first of several alike
        ::zmq_setsockopt(m_socket, ZMQ_XPUB_VERBOSE, &all, sizeof all);
        require(::zmq_bind(m_socket, ("ipc://" + socketPath("zmq")).c_str()) == 0, "ZeroMQ's socket");
        char buffer[64];
        for (int i = 0; i < listeners; ++i)
            require(::zmq_recv(m_socket, buffer, sizeof buffer, 0) >= 0, "ZeroMQ's subscribers");
    }
    void send() override { require(::zmq_send(m_socket, kPayload, sizeof kPayload, 0) >= 0, "ZeroMQ's message"); }

private:
    void* m_socket = zmqSocket(ZMQ_XPUB);
};
#endif

#ifdef ZYN_BENCH_DBUS
DBusConnection* openBus()
{
    DBusConnection* const bus = ::dbus_connection_open_private(busAddress().c_str(), nullptr);
    require(bus && ::dbus_bus_register(bus, nullptr), "libdbus's connection");
    return bus;
}

void listenWithDbus(Ear& ear)
{
    DBusConnection* const bus = openBus();
    DBusError error;
    ::dbus_error_init(&error);
    ::dbus_bus_add_match(bus, "type='signal',interface='zyn.bench'", &error);
    require(!::dbus_error_is_set(&error), "libdbus's match");
    answer("ready");
    while (::dbus_connection_read_write(bus, -1)) {
        while (DBusMessage* const message = ::dbus_connection_pop_message(bus)) {
            if (::dbus_message_is_signal(message, kInterface, kSignal))
                ear.hear();
            ::dbus_message_unref(message);
        }
    }
}

class DbusTransport : public Transport
{
public:
    void send() override
    {
        DBusMessage* const message = ::dbus_message_new_signal(kObject, kInterface, kSignal);
        const char* const payload = kPayload;
        ::dbus_message_append_args(message, DBUS_TYPE_STRING, &payload, DBUS_TYPE_INVALID);
        require(::dbus_connection_send(m_bus, message, nullptr), "libdbus's message");
        ::dbus_message_unref(message);
    }
    void flush() override { ::dbus_connection_flush(m_bus); }

private:
    DBusConnection* m_bus = openBus();
};
#endif

#ifdef ZYN_BENCH_QTDBUS
QDBusConnection openQtBus()
{
    const QString address = QString::fromStdString(busAddress());
    QDBusConnection bus = QDBusConnection::connectToBus(address, QStringLiteral("bench"));
    require(bus.isConnected(), "the connection of Qt's D-Bus");
    return bus;
}

class QtDbusListener : public QObject
{
    Q_OBJECT

public:
    explicit QtDbusListener(Ear& ear)
        : m_ear(ear)
    {}

public Q_SLOTS:
    void hear(const QString& /*payload*/) { m_ear.hear(); }

private:
    Ear& m_ear;
};

void listenWithQtDbus(Ear& ear)
{
    QDBusConnection bus = openQtBus();
    QtDbusListener listener(ear);
    require(bus.connect(QString(), QLatin1String(kObject), QLatin1String(kInterface), QLatin1String(kSignal), &listener,
                        SLOT(hear(QString))),
            "a match of Qt's D-Bus");
    QCoreApplication::processEvents();
    answer("ready");
    QCoreApplication::exec();
}

class QtDbusTransport : public Transport
{
public:
    void send() override
    {
        QDBusMessage message =
            QDBusMessage::createSignal(QLatin1String(kObject), QLatin1String(kInterface), QLatin1String(kSignal));
        message << QLatin1String(kPayload);
        require(m_bus.send(message), "a message of Qt's D-Bus");
    }

private:
    QDBusConnection m_bus = openQtBus();
};
#endif

} // namespace

std::vector<Kind> peerTransports()
{
    std::vector<Kind> kinds;
#ifdef ZYN_BENCH_ZMQ
    kinds.push_back({.name = "zmq",
                     .listen = listenWithZmq,
                     .connect = [](int listeners) -> std::unique_ptr<Transport> {
                         return std::make_unique<ZmqTransport>(listeners);
                     },
                     .shown = kZmq});
#endif
#ifdef ZYN_BENCH_DBUS
    kinds.push_back({.name = "dbus",
                     .listen = listenWithDbus,
                     .connect = [](int) -> std::unique_ptr<Transport> { return std::make_unique<DbusTransport>(); },
                     .needsBus = true,
                     .isSlow = true,
                     .shown = kDbus});
#endif
#ifdef ZYN_BENCH_QTDBUS
    kinds.push_back({.name = "qtdbus",
                     .listen = listenWithQtDbus,
                     .connect = [](int) -> std::unique_ptr<Transport> { return std::make_unique<QtDbusTransport>(); },
                     .needsBus = true,
                     .isSlow = true,
                     .shown = kQtDbus});
#endif
    return kinds;
}

std::vector<const char*> peerNames()
{
    return {kZmq, kDbus, kQtDbus};
}

} // namespace bench

#include "PeerTransports.moc"
