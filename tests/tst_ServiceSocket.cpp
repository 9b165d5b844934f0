// The sockets of the handset's services, when somebody removes them.
#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "tests/support/ServiceProcess.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Timeout.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

struct Service
{
    const char* name;
    const char* program;
    const char* socket;
};

constexpr Service kServices[] = {
    {"recent calls", ZYN_RECENTCALLD, "/tmp/zynrecentcallcom/recentcall_interface"},
    {"phone", ZYN_PHONED, "/tmp/zynphonecom/voicecall_interface"},
};

} // namespace

class tst_ServiceSocket : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void isMadeAgain_data();
    void isMadeAgain();
    void isLeftWhenItIsAnothers_data();
    void isLeftWhenItIsAnothers();

private:
    static void addServices();
    void start();
    QString lock() const { return m_socket + u".lock"_s; }
    QString directory() const { return QFileInfo(m_socket).path(); }
    bool isServed() const { return zyn::posix::isServed(QFile::encodeName(m_socket)); }
    /// Whether a process other than this one holds the lock under its name.
    bool isLocked() const
    {
        zyn::posix::FileLock attempt;
        return !attempt.lock(QFile::encodeName(lock())) && errno == EWOULDBLOCK;
    }

    StoreFixture m_store;
    QString m_socket;
    std::optional<ServiceProcess> m_service;
};

void tst_ServiceSocket::addServices()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("socket");
}

void tst_ServiceSocket::start()
{
    QFETCH(const QString, program);
    QFETCH(const QString, socket);
    m_socket = socket;
    m_service.emplace();
    QVERIFY(m_service->start(program.toLatin1().constData()));
}

void tst_ServiceSocket::cleanup()
{
    m_service->stop();
    m_service.reset();
    QDir(directory()).removeRecursively();
}

void tst_ServiceSocket::isMadeAgain_data()
{
    addServices();
    QTest::addColumn<QString>("removed");
    for (const Service& service : kServices) {
        for (const char* removed : {"socket", "lock", "socket and lock", "directory", "directory moved away",
                                    "directory, and made anew", "socket, for another file"}) {
            QTest::addRow("%s: %s", service.name, removed)
                << QString::fromUtf8(service.program) << QString::fromLatin1(service.socket)
                << QString::fromLatin1(removed);
        }
    }
}

void tst_ServiceSocket::isMadeAgain()
{
    QFETCH(const QString, removed);
    start();
    const QString away = directory() + u".away"_s;
    m_service->tell(SIGSTOP); // else it makes again what is still being removed
    if (removed == u"directory moved away") {
        QVERIFY(QDir().rename(directory(), away));
    } else if (removed.startsWith(u"directory")) {
        QVERIFY(QDir(directory()).removeRecursively());
        QVERIFY(!removed.endsWith(u"anew") || QDir().mkdir(directory()));
    }
    if (removed.startsWith(u"socket"))
        QVERIFY(QFile::remove(m_socket));
    if (removed.endsWith(u"lock"))
        QVERIFY(QFile::remove(lock()));
    if (removed.endsWith(u"file")) { // that of a killed service, as a backup would bring it back
        const auto dead = zyn::posix::listenUnix(QFile::encodeName(m_socket), 0600);
        QVERIFY(dead.isValid());
    }
    m_service->tell(SIGCONT);
    QTRY_VERIFY(isServed() && isLocked());
    if (removed == u"directory") // open to all, whatever the umask
        QCOMPARE(int(QFileInfo(directory()).permissions() & 0x77), 0x77);
    // It is whose it was, and goes with its owner.
    const QByteArray made = ": " + m_socket.toLatin1() + " or its lock was removed: made again\n";
    QVERIFY(m_service->log().contains(made));
    QVERIFY(!QFile::exists(m_socket) && !QFile::exists(lock()));
    QDir(away).removeRecursively();
}

void tst_ServiceSocket::isLeftWhenItIsAnothers_data()
{
    addServices();
    for (const Service& service : kServices)
        QTest::newRow(service.name) << QString::fromUtf8(service.program) << QString::fromLatin1(service.socket);
}

void tst_ServiceSocket::isLeftWhenItIsAnothers()
{
    start();
    m_service->tell(SIGSTOP);
    QVERIFY(QFile::remove(m_socket) && QFile::remove(lock()));
    zyn::posix::FileLock held;
    QVERIFY(held.lock(QFile::encodeName(lock())));
    const auto listener = zyn::posix::listenUnix(QFile::encodeName(m_socket), 0600);
    QVERIFY(listener.isValid());
    m_service->tell(SIGCONT);
    QVERIFY(m_service->waitLogged("cannot be made again now: another service has it\n"));
    QCOMPARE(m_service->stop(), 0);
    QVERIFY(held.isInPlace() && isServed());
}

QTEST_GUILESS_MAIN(tst_ServiceSocket)
#include "tst_ServiceSocket.moc"
