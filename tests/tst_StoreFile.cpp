// How store files come into being, in directories that are full, short of descriptors, or another user's.
#include "recentcall/utility/store/StoreFile_p.h"
#include "support/Descriptors.h"
#include "support/OtherUser.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/SmallDisk.h"
#include "support/StdoutCapture.h"
#include "support/StoreFixture.h"

#include <QtCore/QDir>
#include <QtTest/QTest>

#include <atomic>
#include <csignal>
#include <functional>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr RC_CALL_CATEGORY_T kAnswered = RC_CALL_CATEGORY_ANSWERED;
constexpr qsizetype kShownOutput = 1000;
constexpr char kPrecious[] = "precious";
constexpr unsigned int kPatience = 60; // a process that is left alone goes, in seconds

QByteArray freshFile()
{
    QByteArray contents = zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray();
    for (int slot = 0; slot < zyn::kRecordSlots; ++slot)
        contents += zyn::bytesOf(PHONE_ENG_RecentCall());
    return contents;
}

/// Does @p work in a process of its own, and gives its exit code.
int inAnotherProcess(const std::function<bool()>& work)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(kPatience);
        ::_exit(work() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// All that a process does to the call log.
void useStore()
{
    StoreFixture::forgetSingletons();
    PHONE_ENG_RecentCall record = StoreFixture::add(kAnswered, "1");
    record.slot = 0;
    StoreFixture::store().modifyItem(record);
    StoreFixture::uids(kAnswered);
    StoreFixture::store().removeItem(record);
    StoreFixture::store().clearAllData();
}

/// Puts now a damaged list, now links to @p victim where this store's files are made by the process @p maker.
[[noreturn]] void swapLinks(const QByteArray& victim, pid_t maker)
{
    const QByteArray staged = "rc_a.new." + QByteArray::number(maker);
    for (;;) {
        for (const QByteArray& name : {QByteArray("rc_a"), staged}) {
            QFile damaged(u"damaged"_s);
            if (damaged.open(QIODevice::WriteOnly))
                damaged.write("damaged");
            damaged.close();
            ::rename("damaged", "rc_a");
            if (::symlink(victim.constData(), "link") == 0)
                ::rename("link", name.constData());
        }
    }
}

} // namespace

class tst_StoreFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void replacesNothingUnseen();
    void replacesNothingWhileDescriptorsAreShort();
    void leavesAnInvalidListOnAFullDisk_data();
    void leavesAnInvalidListOnAFullDisk();
    void leavesAnInvalidListOnADiskThatIsFull();
    void followsNoLinkOfAnotherUser_data();
    void followsNoLinkOfAnotherUser();
    void givesNothingAwayToWhoSwapsLinks();
    void keepsAListElsewhere_data();
    void keepsAListElsewhere();
    void keepsOwnerAndPermissions();
    void removesWhatKilledProcessesLeft();

private:
    QString list() const { return m_fixture->file(kAnswered); }
    QString path(const QString& name) const { return m_fixture->path() + u'/' + name; }
    /// A file beside the store, of this user alone.
    QString precious() const
    {
        QFile file(path(u"precious"_s));
        if (!file.exists() && file.open(QIODevice::WriteOnly))
            file.write(kPrecious);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
        return file.fileName();
    }
    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::optional<StdoutCapture> m_output;
    std::optional<StoreFixture> m_fixture;
    qsizetype m_descriptors = 0;
};

void tst_StoreFile::init()
{
    m_output.emplace();
    m_fixture.emplace();
    ::chmod(QFile::encodeName(m_fixture->path()).constData(), 0755);
    StoreFixture::startAfresh();
    m_descriptors = openDescriptors();
}

void tst_StoreFile::cleanup()
{
    QCOMPARE(openDescriptors(), m_descriptors);
    m_fixture.reset();
    const QByteArray output = m_output->take();
    m_output.reset();
    if (QTest::currentTestFailed()) // what failed was written to the captured output, too
        qInfo("%s", output.right(kShownOutput).constData());
}

void tst_StoreFile::replacesNothingUnseen()
{
    m_fixture->add(kAnswered, "112");
    const QByteArray before = m_fixture->read(kAnswered);
    QFile::setPermissions(list(), QFile::WriteOwner); // it may be written, but not be looked into
    if (!otheruser::give(list()) || !otheruser::give(m_fixture->file(QString())))
        QSKIP("only root can act as another user");
    QCOMPARE(inAnotherProcess([] {
                 const bool isOther = otheruser::become();
                 StoreFixture::forgetSingletons();
                 StoreFixture::store();
                 return isOther;
             }),
             EXIT_SUCCESS);
    QCOMPARE(m_fixture->read(kAnswered), before);
}

void tst_StoreFile::replacesNothingWhileDescriptorsAreShort()
{
    constexpr int kRounds = 12000;
    m_fixture->add(kAnswered, "112");
    const QByteArray before = m_fixture->read(kAnswered);
    rlimit limit = {};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const int next = ::dup(STDIN_FILENO);
    ::close(next);
    // Other threads and processes take and give back descriptors at any moment.
    std::atomic<bool> isDone = false;
    std::thread others([&] {
        for (rlim_t i = 0; !isDone; ++i) {
            const rlimit narrow = {i % 2 ? limit.rlim_cur : static_cast<rlim_t>(next), limit.rlim_max};
            ::setrlimit(RLIMIT_NOFILE, &narrow);
        }
        ::setrlimit(RLIMIT_NOFILE, &limit);
    });
    int replaced = 0;
    for (int round = 0; round < kRounds && replaced == 0; ++round) {
        StoreFixture::forgetSingletons();
        StoreFixture::store();
        const int fd = ::open(QFile::encodeName(list()).constData(), O_RDONLY);
        char inUse = 1;
        if (fd >= 0 && ::pread(fd, &inUse, 1, 8 + 64) == 1)
            replaced += inUse == 0;
        ::close(fd);
    }
    isDone = true;
    others.join();
    QCOMPARE(replaced, 0);
    QCOMPARE(m_fixture->read(kAnswered), before);
}

void tst_StoreFile::leavesAnInvalidListOnAFullDisk_data()
{
    QTest::addColumn<int>("change"); // of the file's size
    QTest::addColumn<int>("space");
    QTest::addColumn<bool>("isClosed");
    for (const bool isClosed : {false, true}) {
        for (const int space : {0, 4, 600, 11'000}) {
            for (const int change : {-300, 1}) {
                QTest::addRow("%d bytes of space, file of %+d bytes, %s", space, change,
                              isClosed ? "no new file beside it" : "new files beside it")
                    << change << space << isClosed;
            }
        }
    }
}

void tst_StoreFile::leavesAnInvalidListOnAFullDisk()
{
    QFETCH(const int, change);
    QFETCH(const int, space);
    QFETCH(const bool, isClosed);
    m_fixture->add(kAnswered, "112");
    const QByteArray before = m_fixture->read(kAnswered).leftJustified(zyn::RecordFile::size() + change, '\0', true);
    m_fixture->write(kAnswered, before);
    const QString directory = m_fixture->file(QString());
    if (isClosed) {
        QFile::setPermissions(directory, QFile::ReadOwner | QFile::ExeOwner);
        if (!otheruser::give(list()) || !otheruser::give(directory))
            QSKIP("only root can act as another user");
    }
    const auto make = [&] {
        const ScopedFileSizeLimit limit(static_cast<rlim_t>(space));
        return (!isClosed || otheruser::become())
               && zyn::createStoreFile(QFile::encodeName(list()), freshFile()) != zyn::CreateResult::Done;
    };
    QCOMPARE(inAnotherProcess(make), EXIT_SUCCESS);
    QCOMPARE(m_fixture->read(kAnswered), before);
    QCOMPARE(QDir(directory).entryList(QDir::Files).size(), 3);
}

void tst_StoreFile::leavesAnInvalidListOnADiskThatIsFull()
{
    const SmallDisk disk(m_fixture->file(QString()), "64k");
    if (!disk.isMounted())
        QSKIP("the kernel allows no mount here");
    StoreFixture::forgetSingletons();
    m_fixture->add(kAnswered, "112");
    const QByteArray before = m_fixture->read(kAnswered) + '\0';
    m_fixture->write(kAnswered, before);
    QVERIFY(QFile::remove(m_fixture->file(RC_CALL_CATEGORY_DIALED)));
    for (const int pages : {0, 1}) {
        disk.fill(pages);
        StoreFixture::forgetSingletons();
        StoreFixture::store();
        QCOMPARE(m_fixture->read(kAnswered), before);
        QVERIFY(!QFile::exists(m_fixture->file(RC_CALL_CATEGORY_DIALED)));
    }
    disk.clear();
    StoreFixture::forgetSingletons();
    StoreFixture::store();
    QCOMPARE(m_fixture->read(kAnswered), freshFile());
}

void tst_StoreFile::followsNoLinkOfAnotherUser_data()
{
    QTest::addColumn<QStringList>("links"); // each the other user's if it begins with a "!": name, target
    QTest::newRow("at the end, to a file") << QStringList{u"!phone/rc_a>precious"_s};
    QTest::newRow("at the end, to a list") << QStringList{u"!phone/rc_a>sound"_s};
    QTest::newRow("at the end, to nothing") << QStringList{u"!phone/rc_a>nothing"_s};
    QTest::newRow("behind one of this user") << QStringList{u"phone/rc_a>second"_s, u"!second>precious"_s};
    QTest::newRow("to one of this user") << QStringList{u"!phone/rc_a>second"_s, u"second>sound"_s};
    QTest::newRow("on the way") << QStringList{u"!phone>safe"_s};
    QTest::newRow("on the way, to nothing") << QStringList{u"!phone>nothing"_s};
    QTest::newRow("on the way of one of this user") << QStringList{u"phone/rc_a>way/rc_a"_s, u"!way>safe"_s};
}

void tst_StoreFile::followsNoLinkOfAnotherUser()
{
    QFETCH(const QStringList, links);
    m_fixture->add(kAnswered, "112");
    QVERIFY(QFile::copy(list(), path(u"sound"_s)));
    QVERIFY(QDir().mkdir(path(u"safe"_s)) && QFile::copy(precious(), path(u"safe/rc_a"_s)));
    for (const QString& link : links) {
        const QString name = path(link.section(u'>', 0, 0).remove(u'!'));
        QVERIFY(QFile::remove(name) || !QFile::exists(name) || QFile::rename(name, path(u"away"_s)));
        QVERIFY(QFile::link(path(link.section(u'>', 1)), name));
        if (link.startsWith(u'!') && !otheruser::give(name))
            QSKIP("only root can act as another user");
    }
    const QByteArray sound = contents(path(u"sound"_s));
    const QString owner = otheruser::ownership(precious());
    useStore();
    QVERIFY(zyn::createStoreFile(QFile::encodeName(list()), freshFile()) != zyn::CreateResult::Done);
    QCOMPARE(contents(precious()), kPrecious);
    QCOMPARE(otheruser::ownership(precious()), owner);
    QCOMPARE(contents(path(u"safe/rc_a"_s)), kPrecious);
    QCOMPARE(QDir(path(u"safe"_s)).entryList(QDir::Files).size(), 1);
    QCOMPARE(contents(path(u"sound"_s)), sound);
    QVERIFY(!QFileInfo::exists(path(u"nothing"_s)));
}

void tst_StoreFile::givesNothingAwayToWhoSwapsLinks()
{
    constexpr int kRounds = 3000;
    const QByteArray victim = QFile::encodeName(precious());
    const QString owner = otheruser::ownership(precious());
    const QString directory = m_fixture->file(QString());
    if (!otheruser::give(directory) || !otheruser::give(list()))
        QSKIP("only root can act as another user");
    const pid_t maker = ::getpid();
    const pid_t attacker = ::fork();
    if (attacker == 0) {
        ::alarm(kPatience);
        if (otheruser::become() && ::chdir(QFile::encodeName(directory).constData()) == 0)
            swapLinks(victim, maker);
        ::_exit(EXIT_FAILURE);
    }
    const QByteArray fresh = freshFile();
    for (int round = 0; round < kRounds && otheruser::ownership(precious()) == owner; ++round) {
        zyn::createStoreFile(QFile::encodeName(list()), fresh);
        const auto file = zyn::openStoreFile(QFile::encodeName(list()));
    }
    ::kill(attacker, SIGKILL);
    int status = 0;
    ::waitpid(attacker, &status, 0);
    QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, "the attacker could not attack");
    QCOMPARE(otheruser::ownership(precious()), owner);
    QCOMPARE(contents(precious()), kPrecious);
}

void tst_StoreFile::keepsAListElsewhere_data()
{
    QTest::addColumn<QStringList>("links");
    QTest::addColumn<QByteArray>("there"); // null for nothing
    const QByteArray nothing;
    QTest::newRow("nothing there yet") << QStringList{u"phone/rc_a>%1/there"_s} << nothing;
    QTest::newRow("something invalid there") << QStringList{u"phone/rc_a>%1/there"_s} << "damaged"_ba;
    QTest::newRow("a list there") << QStringList{u"phone/rc_a>%1/there"_s} << freshFile();
    QTest::newRow("by a path from the link") << QStringList{u"phone/rc_a>.././there"_s} << "damaged"_ba;
    QTest::newRow("by several links") << QStringList{u"phone/rc_a>%1/b"_s, u"b>way/there"_s, u"way>%1//"_s} << nothing;
}

void tst_StoreFile::keepsAListElsewhere()
{
    QFETCH(const QStringList, links);
    QFETCH(const QByteArray, there);
    QVERIFY(QFile::remove(list()));
    for (const QString& text : links) {
        const QString link = QString(text).replace(u"%1"_s, m_fixture->path());
        const QByteArray target = QFile::encodeName(link.section(u'>', 1));
        QCOMPARE(::symlink(target.constData(), QFile::encodeName(path(link.section(u'>', 0, 0))).constData()), 0);
    }
    if (!there.isNull()) {
        QFile file(path(u"there"_s));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(there) == there.size());
    }
    StoreFixture::forgetSingletons();
    StoreFixture::store();
    QVERIFY(QFileInfo(list()).isSymLink());
    QCOMPARE(contents(path(u"there"_s)), freshFile());
    QVERIFY(m_fixture->add(kAnswered, "112").uid >= 0);
    QCOMPARE(m_fixture->recordIn(kAnswered, 0).getPhoneNumber(), u"112"_s);
    QVERIFY(QFileInfo(list()).isSymLink());
    QVERIFY(QDir(m_fixture->path()).entryList({u"*.new.*"_s}, QDir::Files | QDir::System).isEmpty());
}

void tst_StoreFile::keepsOwnerAndPermissions()
{
    m_fixture->write(kAnswered, "damaged");
    QVERIFY(::chmod(QFile::encodeName(list()).constData(), 0640) == 0);
    if (!otheruser::give(list()))
        QSKIP("only root can give files away");
    const QString owner = otheruser::ownership(list());
    StoreFixture::forgetSingletons();
    StoreFixture::store();
    QCOMPARE(m_fixture->read(kAnswered), freshFile());
    QCOMPARE(otheruser::ownership(list()), owner);
}

void tst_StoreFile::removesWhatKilledProcessesLeft()
{
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(EXIT_SUCCESS);
    ::waitpid(gone, nullptr, 0);
    const QString lives = QString::number(::getppid());
    for (const QString& name :
         {u"rc_a.new.%1"_s.arg(gone), u"rc_a.new."_s + lives, u"rc_a.new.1x"_s, u"rc_d.new.%1.1"_s.arg(gone),
          u"note.new.%1"_s.arg(gone), u"rc_m.new.%1"_s.arg(gone), u"rc_m.new.%1"_s.arg(::getpid())})
        m_fixture->write(name, "x");
    // Neither list has to be made: the next writer removes them all the same.
    StoreFixture::forgetSingletons();
    m_fixture->add(kAnswered, "112");
    QStringList left = QDir(m_fixture->file(QString())).entryList({u"*.new.*"_s}, QDir::Files);
    left.sort();
    QStringList expected = {u"note.new.%1"_s.arg(gone), u"rc_a.new."_s + lives, u"rc_a.new.1x"_s,
                            u"rc_d.new.%1.1"_s.arg(gone)};
    expected.sort();
    QCOMPARE(left, expected);
}

QTEST_GUILESS_MAIN(tst_StoreFile)
#include "tst_StoreFile.moc"
