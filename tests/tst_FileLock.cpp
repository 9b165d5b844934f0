// Lock files: of the activity log, and of the settings.
#include "handset/favourites/Favourites.h"
#include "platform/SETUP_SET_Manager.h"
#include "support/OtherUser.h"
#include "support/Role.h"

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <optional>
#include <vector>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr unsigned int kPatience = 60; // a process that is left alone goes, in seconds

/// Waits for a byte, and gives it; 0 when the other end is gone.
char hear(int connection)
{
    char byte = 0;
    return ::recv(connection, &byte, 1, 0) == 1 ? byte : '\0';
}

void say(int connection, char byte)
{
    ::send(connection, &byte, 1, MSG_NOSIGNAL);
}

/// A process that takes the lock when it is told to, says whether it has it, and gives it back when it is told again.
class Starter
{
public:
    explicit Starter(const QString& directory)
    {
        int pair[2] = {-1, -1};
        ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair);
        m_process = ::fork();
        m_end = pair[m_process == 0];
        ::close(pair[m_process != 0]);
        if (m_process != 0)
            return;
        ::alarm(kPatience);
        while (hear(m_end) != '\0') {
            zyn::handset::ActivityLogLock lock(directory);
            say(m_end, lock.lock() ? 'y' : 'n');
            hear(m_end);
        }
        ::_exit(EXIT_SUCCESS);
    }
    Starter(const Starter&) = delete;
    Starter& operator=(const Starter&) = delete;
    Starter(Starter&& other) noexcept
        : m_process(std::exchange(other.m_process, 0))
        , m_end(std::exchange(other.m_end, -1))
    {}
    ~Starter()
    {
        if (m_process <= 0)
            return;
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
        ::close(m_end);
    }
    void tell() const { say(m_end, '.'); }
    bool isOwner() const { return hear(m_end) == 'y'; }

private:
    pid_t m_process = 0;
    int m_end = -1;
};

int setOne(const QString& path)
{
    return SETUP_SET_Manager(path, false).setSettingInfo(u"g"_s, u"k"_s, 1) ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

class tst_FileLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_directory.emplace(); }
    void cleanup() { m_directory.reset(); }

    void hasOneOwnerOfManyWhoStart();
    void isLeftWhenItIsAnothers();
    void refusesWhatIsNoLockOfASetting_data();
    void refusesWhatIsNoLockOfASetting();
    void removesWhatKilledWritersLeft();

private:
    QString path(const QString& name) const { return m_directory->filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    std::optional<QTemporaryDir> m_directory;
};

void tst_FileLock::hasOneOwnerOfManyWhoStart()
{
    constexpr int kStarters = 6;
    constexpr int kRounds = 2000;
    std::vector<Starter> starters;
    starters.reserve(kStarters);
    for (int i = 0; i < kStarters; ++i)
        starters.emplace_back(m_directory->path());
    // Of a process whose number another one has by now.
    const QByteArray leftover =
        QByteArray::number(::getpid()) + "\ntst_FileLock\n" + QSysInfo::machineHostName().toLocal8Bit() + '\n';
    for (int round = 0; round < kRounds; ++round) {
        write(u"topPalsLock"_s, leftover);
        for (const Starter& starter : starters)
            starter.tell();
        int owners = 0;
        for (const Starter& starter : starters)
            owners += starter.isOwner();
        QCOMPARE(owners, 1);
        for (const Starter& starter : starters)
            starter.tell();
    }
}

void tst_FileLock::isLeftWhenItIsAnothers()
{
    {
        zyn::handset::ActivityLogLock lock(m_directory->path());
        QVERIFY(lock.lock());
        QVERIFY(QFile::remove(path(u"topPalsLock"_s)));
        write(u"topPalsLock"_s, "1\nanother\n");
    }
    QVERIFY(QFile::exists(path(u"topPalsLock"_s)));
    {
        zyn::handset::ActivityLogLock lock(m_directory->path());
        QVERIFY(lock.lock());
        zyn::handset::ActivityLogLock second(m_directory->path());
        QVERIFY(!second.lock());
        QCOMPARE(second.problem(), u"process %1 (tst_FileLock) owns the favourites"_s.arg(::getpid()));
    }
    QVERIFY(!QFile::exists(path(u"topPalsLock"_s)));
}

void tst_FileLock::refusesWhatIsNoLockOfASetting_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind : {"fifo", "device", "link to a file", "link to nothing", "directory", "another user's file"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_FileLock::refusesWhatIsNoLockOfASetting()
{
    QFETCH(const QString, kind);
    write(u"settings.cfg"_s, "[g]\nk=old\n");
    write(u"precious"_s, "");
    const QString lock = path(u"settings.cfg.lock"_s);
    const QByteArray name = QFile::encodeName(lock);
    if (kind == u"fifo") {
        QVERIFY(::mkfifo(name.constData(), 0600) == 0);
    } else if (kind == u"device") {
        if (::mknod(name.constData(), S_IFCHR | 0600, ::makedev(1, 3)) != 0)
            QSKIP("only root can make a device");
    } else if (kind.startsWith(u"link")) {
        QVERIFY(QFile::link(kind.endsWith(u"nothing") ? u"nothing"_s : u"precious"_s, lock));
    } else if (kind == u"directory") {
        QVERIFY(QDir().mkdir(lock));
    } else {
        write(u"settings.cfg.lock"_s, "");
        if (!otheruser::give(lock))
            QSKIP("only root can act as another user");
    }
    const QString before = otheruser::ownership(lock);
    const auto setter = role::start(u"setter"_s, {path(u"settings.cfg"_s)});
    QCOMPARE(role::finish(*setter), EXIT_FAILURE);
    QCOMPARE(otheruser::ownership(lock), before);
    QVERIFY(!QFile::exists(path(u"nothing"_s)));
    QFile file(path(u"settings.cfg"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "[g]\nk=old\n");
}

void tst_FileLock::removesWhatKilledWritersLeft()
{
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(EXIT_SUCCESS);
    ::waitpid(gone, nullptr, 0);
    const QStringList kept = {u"note.AbCdEf"_s,
                              u"settings.cfg"_s,
                              u"settings.cfg.1"_s,
                              u"settings.cfg.AbCdEfG"_s,
                              u"settings.cfg.Backup"_s,
                              u"settings.cfg.backup"_s,
                              u"settings.cfg.new.%1"_s.arg(::getppid()),
                              u"settings.cfg.rpmnew"_s};
    for (const QString& name : kept)
        write(name, "[g]\n");
    write(u"settings.cfg.AbCdEf"_s, "[g]\nk=1\n");
    write(u"settings.cfg.abcdef"_s, "");
    write(u"settings.cfg.new.%1"_s.arg(gone), "[g]\nk=1\n");
    write(u"settings.cfg.lock"_s, "2147483647\nx\nhost\n");
    QCOMPARE(setOne(path(u"settings.cfg"_s)), EXIT_SUCCESS);
    QStringList left = QDir(m_directory->path()).entryList(QDir::Files | QDir::Hidden);
    left.sort();
    QCOMPARE(left, kept);
}

int main(int argc, char** argv)
{
    return role::testMain<tst_FileLock>(argc, argv,
                                        {{u"setter"_s, [](const QStringList& a) { return setOne(a.value(0)); }}});
}

#include "tst_FileLock.moc"
