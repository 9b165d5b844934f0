// The sockets of the handset's services, when somebody removes them.
#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "tests/support/OtherUser.h"
#include "tests/support/Process.h"
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
    void isMadeAgainUnlessItIsAnothers_data();
    void isMadeAgainUnlessItIsAnothers();
    void replacesWhatAnotherUserPuts();

private:
    QString lock() const { return m_socket + u".lock"_s; }
    QString directory() const { return QFileInfo(m_socket).path(); }
    QString away() const { return directory() + u".away"_s; }
    bool isServed() const { return zyn::posix::isServed(QFile::encodeName(m_socket)); }
    /// Whether a process other than this one holds the lock under its name.
    bool isLocked() const
    {
        zyn::posix::FileLock attempt;
        return !attempt.lock(QFile::encodeName(lock())) && errno == EWOULDBLOCK;
    }
    bool remove(const QString& what) const;

    StoreFixture m_store;
    QString m_socket;
    std::optional<ServiceProcess> m_service;
};

void tst_ServiceSocket::cleanup()
{
    m_service->stop();
    m_service.reset();
    QDir(directory()).removeRecursively();
    QDir(away()).removeRecursively();
}

bool tst_ServiceSocket::remove(const QString& what) const
{
    if (what == u"directory moved away"_s)
        return QDir().rename(directory(), away());
    if (what.startsWith(u"directory"))
        return QDir(directory()).removeRecursively() && (!what.endsWith(u"anew") || QDir().mkdir(directory()));
    return (!what.startsWith(u"socket") || QFile::remove(m_socket))
           && (!what.contains(u"lock") || QFile::remove(lock()));
}

void tst_ServiceSocket::isMadeAgainUnlessItIsAnothers_data()
{
    QTest::addColumn<const Service*>("service");
    QTest::addColumn<QString>("removed");
    for (const Service& service : kServices) {
        for (const char* removed :
             {"socket", "lock", "socket and lock", "directory", "directory moved away", "directory, and made anew",
              "socket, for another file", "socket, for another service", "socket and lock, for another service"})
            QTest::addRow("%s: %s", service.name, removed) << &service << QString::fromLatin1(removed);
    }
}

void tst_ServiceSocket::isMadeAgainUnlessItIsAnothers()
{
    QFETCH(const Service*, service);
    QFETCH(QString, removed);
    m_socket = QString::fromLatin1(service->socket);
    m_service.emplace();
    QVERIFY(m_service->start(service->program));

    m_service->tell(SIGSTOP); // else it makes again what is still being removed
    QVERIFY(remove(removed));
    zyn::posix::FileLock held;
    const bool isLockAnothers = removed == u"socket and lock, for another service"_s;
    QVERIFY(!isLockAnothers || held.lock(QFile::encodeName(lock())));
    zyn::posix::UniqueFd other; // that of a killed service, as a backup would bring it back, or of a living one
    if (removed.contains(u"another"))
        other = zyn::posix::listenUnix(QFile::encodeName(m_socket), 0600);
    if (removed.endsWith(u"file"))
        other.reset();
    m_service->tell(SIGCONT);

    if (removed.endsWith(u"service")) {
        QVERIFY(m_service->waitLogged("cannot be made again: another service has it\n"));
        QCOMPARE(m_service->stop(), 0);
        QVERIFY(held.isInPlace() == isLockAnothers && isServed());
        return;
    }
    QTRY_VERIFY(isServed() && isLocked());
    if (removed == u"directory"_s) // open to all, whatever the umask
        QCOMPARE(int(QFileInfo(directory()).permissions() & 0x77), 0x77);
    // It is whose it was, and goes with its owner.
    const QByteArray made = ": " + m_socket.toLatin1() + " or its lock was removed: recreated\n";
    QVERIFY(m_service->log().contains(made));
    QVERIFY(!QFile::exists(m_socket) && !QFile::exists(lock()));
}

void tst_ServiceSocket::replacesWhatAnotherUserPuts()
{
    m_socket = QString::fromLatin1(kServices[0].socket);
    m_service.emplace();
    // In the place of its directory, and twice what cannot be removed, but only be put aside.
    QVERIFY(QFile(directory()).open(QIODevice::WriteOnly));
    if (!otheruser::give(directory()))
        QSKIP("only root can act as another user");
    QVERIFY(m_service->start(kServices[0].program));
    for (int i = 0; i < 2; ++i) {
        m_service->tell(SIGSTOP);
        QVERIFY(remove(u"socket and lock"_s));
        for (const QString& name : {m_socket, lock()})
            QVERIFY(QDir().mkpath(name + u"/full"_s) && otheruser::give(name));
        m_service->tell(SIGCONT);
        QTRY_VERIFY(isServed() && isLocked());
        QTRY_COMPARE(m_service->logged().count(": replaced\n"), 1 + 2 * (i + 1));
    }
}

QTEST_GUILESS_MAIN(tst_ServiceSocket)
#include "tst_ServiceSocket.moc"
