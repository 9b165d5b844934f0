// Files that are created or replaced whole: on a full disk, short of descriptors, behind links, among other users.
#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "platform/posix/Directory_p.h"
#include "platform/posix/FileLock_p.h"
#include "platform/posix/PathAt_p.h"
#include "platform/posix/StagedFile_p.h"
#include "support/ActivityLogFixture.h"
#include "support/ForkedChild.h"
#include "support/OtherUser.h"
#include "support/Scenario.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/SmallDisk.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <atomic>
#include <barrier>
#include <chrono>
#include <csignal>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using zyn::handset::ActivityLogLock;

namespace {

constexpr RC_CALL_CATEGORY_T kAnswered = RC_CALL_CATEGORY_ANSWERED;

/// Makes a file what it is before or, when @p isChanged, what it is to become; whether that was done.
using Writer = bool (*)(const ActivityLogFixture& fixture, const QString& path, bool isChanged);

zyn::CreateResult createListAt(const QString& path)
{
    return zyn::createStoreFile(QFile::encodeName(path), freshList());
}

bool createList(const QString& path)
{
    return createListAt(path) == zyn::CreateResult::Done;
}

bool writeList(const ActivityLogFixture& fixture, const QString& path, bool isChanged)
{
    if (!isChanged)
        fixture.write(QFileInfo(path).fileName(), freshList().replace(8 + 64, 1, "\1") + '\0');
    return !isChanged || createList(path);
}

bool writeNumbers(const ActivityLogFixture& /*fixture*/, const QString& path, bool isChanged)
{
    return zyn::emergency::writeList(isChanged ? QStringList{u"112"_s, u"911"_s} : QStringList{u"999"_s},
                                     QFile::encodeName(path).constData());
}

bool writeSeenCalls(const ActivityLogFixture& /*fixture*/, const QString& path, bool isChanged)
{
    PHONE_ENG_RecentCall call;
    call.uid = isChanged;
    return zyn::handset::SeenCalls(path).replaceBy(std::span(&call, 1));
}

bool writeSetting(const ActivityLogFixture& /*fixture*/, const QString& path, bool isChanged)
{
    return SETUP_SET_Manager(path, false).setSettingInfo(u"g"_s, u"k"_s, isChanged);
}

/// A favourite's file with 5 entries, which is to get @p slotCount slots.
template<int slotCount>
bool writeEntries(const ActivityLogFixture& fixture, const QString& path, bool isChanged)
{
    const QString number = QFileInfo(path).fileName();
    if (isChanged) {
        fixture.setSlots(QString::number(slotCount));
        return zyn::handset::renewLog(number);
    }
    activity::revamp({}, number);
    for (int start = 1; start <= 5; ++start)
        activity::add(number, start);
    return true;
}

/// Puts now a damaged list, now links to @p victim where this store's files are made by the process @p maker.
[[noreturn]] void swapLinks(const QByteArray& victim, pid_t maker)
{
    const QByteArray staged = "rc_a.new." + QByteArray::number(maker);
    for (;;) {
        for (const QByteArray& name : {QByteArray("rc_a"), staged}) {
            if (QFile damaged(u"damaged"_s); damaged.open(QIODevice::WriteOnly))
                damaged.write("damaged");
            ::rename("damaged", "rc_a");
            if (::symlink(victim.constData(), "link") == 0)
                ::rename("link", name.constData());
        }
    }
}

} // namespace

class tst_StoreFile : public StoreTest<ActivityLogFixture>
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        begin();
        ::chmod(QFile::encodeName(m_fixture->path()).constData(), 0755);
        QVERIFY(QDir().mkdir(m_fixture->file(u""_s)));
    }
    void cleanup() { end(); }

    void keepsTheOldOnAFullDisk_data()
    {
        QTest::addColumn<Writer>("writer");
        QTest::addColumn<int>("pages"); // that are left
        QTest::newRow("a damaged list") << &writeList << 0;
        QTest::newRow("a damaged list, half of which fits") << &writeList << 1;
        QTest::newRow("emergency numbers") << &writeNumbers << 0;
        QTest::newRow("calls looked at") << &writeSeenCalls << 0;
        QTest::newRow("a setting") << &writeSetting << 0;
        QTest::newRow("a favourite's log of more slots") << &writeEntries<20> << 0;
        QTest::newRow("a favourite's log of more slots, half of which fits") << &writeEntries<20> << 1;
        QTest::newRow("a favourite's log of fewer slots, no space for its copy") << &writeEntries<3> << 1;
        QTest::newRow("a favourite's log of fewer slots, space for its copy only") << &writeEntries<3> << 2;
    }

    void keepsTheOldOnAFullDisk()
    {
        QFETCH(const Writer, writer);
        QFETCH(const int, pages);
        const SmallDisk disk(m_fixture->file(u""_s), "256k");
        if (!disk.isMounted())
            QSKIP("the kernel allows no mount here");
        const QString name = u"555"_s;
        QVERIFY(writer(*m_fixture, m_fixture->file(name), false));
        const QByteArray before = m_fixture->read(name);
        const QString names = m_fixture->files();
        disk.fill(pages);
        QVERIFY(!writer(*m_fixture, m_fixture->file(name), true));
        QCOMPARE(m_fixture->read(name), before);
        disk.clear();
        QCOMPARE(m_fixture->files(), names);
        QVERIFY(writer(*m_fixture, m_fixture->file(name), true));
        QVERIFY(m_fixture->read(name) != before);
    }

    void replacesAListWithinAFileSize_data()
    {
        QTest::addColumn<int>("change"); // of the file's size
        QTest::addColumn<int>("space");
        QTest::addColumn<bool>("isClosed");
        for (const bool isClosed : {false, true}) {
            for (const int space : {0, 4, 600, 11'000, 12'000}) {
                for (const int change : {-11'000, -300, 1})
                    QTest::addRow("%d bytes of space, file of %+d bytes, %s", space, change,
                                  isClosed ? "no new file beside it" : "new files beside it")
                        << change << space << isClosed;
            }
        }
    }

    void replacesAListWithinAFileSize()
    {
        QFETCH(const int, change);
        QFETCH(const int, space);
        QFETCH(const bool, isClosed);
        const bool isEnough = space > 11'408;
        const auto expected = isEnough    ? zyn::CreateResult::Done
                              : space < 8 ? zyn::CreateResult::CannotWriteHeader
                                          : zyn::CreateResult::CannotWriteData;
        const QByteArray before = addCall().leftJustified(11'408 + change, '\0', true);
        m_fixture->write(kAnswered, before);
        const QString directory = m_fixture->file(u""_s);
        if (isClosed) {
            QFile::setPermissions(directory, QFile::ReadOwner | QFile::ExeOwner);
            if (!otheruser::give(list()) || !otheruser::give(directory))
                QSKIP("only root can act as another user");
        }
        QVERIFY(inAnotherProcess([&] {
            const ScopedFileSizeLimit limit(static_cast<rlim_t>(space));
            return (!isClosed || otheruser::become()) && createListAt(list()) == expected;
        }));
        QCOMPARE(m_fixture->read(kAnswered), isEnough ? freshList() : before);
        QCOMPARE(m_fixture->files(), u"rc_a rc_d rc_m"_s);
    }

    void replacesNothingUnseen()
    {
        const QByteArray before = addCall();
        QFile::setPermissions(list(), QFile::WriteOwner); // it may be written, but not be inspected
        if (!otheruser::give(list()) || !otheruser::give(m_fixture->file(u""_s)))
            QSKIP("only root can act as another user");
        QVERIFY(inAnotherProcess([&] {
            const QByteArray path = QFile::encodeName(list());
            return otheruser::become() && (startStore(), true) && ::chmod(path.constData(), S_IRUSR) == 0
                   && !zyn::posix::replaceFile(path, "new");
        }));
        QCOMPARE(m_fixture->read(kAnswered), before);
    }

    void replacesNothingWhileDescriptorsAreShort()
    {
        constexpr int kRounds = 12'000;
        const QByteArray before = addCall();
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
        for (int round = 0; round < kRounds; ++round)
            startStore();
        isDone = true;
        others.join();
        QCOMPARE(m_fixture->read(kAnswered), before); // a call that was replaced once is gone
    }

    void keepsFiles_data() { scenario::addRows(QFINDTESTDATA("data/store_file.txt")); }
    void keepsFiles()
    {
        using Words = const QStringList&;
        QFETCH(QStringList, steps);
        if (steps.contains(u"as root"_s) && !shell(u"touch x && chown 65534 x || echo no; rm -f x"_s).isEmpty())
            QSKIP("only root can give files away");
        scenario::play({
            {u"as"_s, [] {}},
            {u"sh"_s, [this](Words w) { return shell(w.join(u' ')); }},
            {u"start"_s, &startStore},
            {u"create"_s, [this] { return createList(list()); }},
            {u"add"_s, [] { return StoreFixture::add(kAnswered, "112").uid >= 0; }},
            {u"is-fresh"_s, [this](Words w) { return m_fixture->read(w[0]) == freshList(); }},
            {u"fresh"_s, [this](Words w) { m_fixture->write(w[0], freshList()); }},
            {u"replace"_s,
             [this](Words w) { return zyn::posix::replaceFile(QFile::encodeName(m_fixture->file(w[0])), "new"); }},
            {u"victims"_s, [this] { makeVictims(); }},
            {u"use"_s, [this] { return use(); }},
        });
    }

    void replacesNoLinkOfAnotherUser_data()
    {
        QTest::addColumn<Writer>("writer");
        QTest::newRow("emergency numbers") << &writeNumbers;
        QTest::newRow("calls looked at") << &writeSeenCalls;
        QTest::newRow("a setting") << &writeSetting;
    }

    void replacesNoLinkOfAnotherUser()
    {
        QFETCH(const Writer, writer);
        m_fixture->write(u"precious"_s, "precious");
        for (const QString& target : {u"precious"_s, u"nothing"_s}) {
            const QString link = m_fixture->file(u"555"_s);
            QFile::remove(link);
            QVERIFY(QFile::link(target, link));
            if (!otheruser::give(link))
                QSKIP("only root can act as another user");
            QVERIFY(!writer(*m_fixture, link, true));
            QCOMPARE(m_fixture->read(u"precious"_s), "precious");
            QCOMPARE(m_fixture->files(), u"555 precious"_s);
        }
    }

    void keepsToItsUserWhatItMakes()
    {
        QVERIFY(QDir(m_fixture->file(u""_s)).removeRecursively());
        const mode_t mask = ::umask(027);
        zyn::makeStoreDirectory();
        ::umask(0);
        writeSetting(*m_fixture, m_fixture->file(u"../setup/some.cfg"_s), true);
        ::umask(mask);
        QCOMPARE(otheruser::ownership(m_fixture->file(u"../setup"_s)).section(u' ', 2), u"40700"_s);
        QCOMPARE(otheruser::ownership(m_fixture->file(u""_s)).section(u' ', 2), u"40750"_s); // others may be let in
        // The name of an open directory may be a link to any file of ours.
        m_fixture->write(u"precious"_s, "precious");
        const QString before = otheruser::ownership(m_fixture->file(u"precious"_s));
        QVERIFY(!zyn::posix::setDirectoryMode(QFile::encodeName(m_fixture->file(u"precious"_s)), 0777));
        QVERIFY(!zyn::posix::makeDirectories(QFile::encodeName(m_fixture->file(u"precious/b"_s))));
        QCOMPARE(otheruser::ownership(m_fixture->file(u"precious"_s)), before);
    }

    void writesNothingInADirectoryThatAnotherUserPlanted()
    {
        const QByteArray planted = freshList();
        m_fixture->write(kAnswered, planted);
        const QString numbers = m_fixture->file(u"../numbers"_s);
        m_fixture->write(u"../numbers"_s, "");
        for (const QString& what : {list(), m_fixture->file(u""_s), numbers}) {
            if (!otheruser::give(what))
                QSKIP("only root can act as another user");
        }
        const QByteArray parent = QFile::encodeName(m_fixture->path());
        const QByteArray directory = QFile::encodeName(m_fixture->file(u""_s)).chopped(1);
        QVERIFY(!zyn::posix::isTakenByOthers(directory)); // root has put it there for that user
        ::chmod(parent.constData(), 01777);
        QVERIFY(inAnotherProcess([&] {
            ActivityLogLock lock;
            return zyn::isStoreOthers() && !createList(m_fixture->file(RC_CALL_CATEGORY_MISSED))
                   && !zyn::openStoreFile(QFile::encodeName(list())).isValid() && !lock.lock()
                   && lock.problem().endsWith(u": another user has made its directory"_s);
        }));
        QCOMPARE(m_fixture->read(kAnswered), planted);
        // What is written there does not become his.
        QVERIFY(writeNumbers(*m_fixture, numbers, true));
        QCOMPARE(otheruser::ownership(numbers).section(u' ', 0, 0), QString::number(::geteuid()));
        ::chmod(parent.constData(), 0755);
    }

    void keepsTheListOfOneWhoMakesItMeanwhile()
    {
        constexpr int kRounds = 1000;
        const QByteArray whole = addCall();
        const QByteArray made = QFile::encodeName(m_fixture->file(u"made"_s));
        std::barrier<> areReady(2);
        std::thread other([&] {
            for (int round = 0; round < kRounds; ++round) {
                areReady.arrive_and_wait();
                std::this_thread::sleep_for(std::chrono::microseconds(round % 100));
                ::rename(made.constData(), QFile::encodeName(list()).constData());
                areReady.arrive_and_wait();
            }
        });
        int kept = 0;
        for (int round = 0; round < kRounds; ++round) {
            m_fixture->write(kAnswered, "damaged");
            m_fixture->write(u"made"_s, whole);
            areReady.arrive_and_wait();
            createList(list());
            areReady.arrive_and_wait();
            kept += m_fixture->read(kAnswered) == whole;
        }
        other.join();
        QCOMPARE(kept, kRounds);
        QCOMPARE(m_fixture->files(), u"rc_a rc_d rc_m"_s);
    }

    void refusesNamesThatEndEarly()
    {
        const QString name = m_fixture->file(u"555"_s);
        m_fixture->write(u"555"_s, "old");
        const QByteArray longer = QFile::encodeName(name) + '\0' + '1';
        QVERIFY(!zyn::posix::replaceFile(longer, "new"));
        QVERIFY(!zyn::posix::readWhole(longer, 3));
        QCOMPARE(m_fixture->read(u"555"_s), "old");
    }

    void isNotFooledByWhoSwapsLinks()
    {
        constexpr int kRounds = 3000;
        m_fixture->write(u"../precious"_s, "precious");
        const QString victim = path(u"precious"_s);
        const QString owner = otheruser::ownership(victim);
        const QString directory = m_fixture->file(u""_s);
        createList(list());
        if (!otheruser::give(directory) || !otheruser::give(list()))
            QSKIP("only root can act as another user");
        const pid_t maker = ::getpid();
        const pid_t attacker = ::fork();
        if (attacker == 0) {
            ::alarm(forkedChildTime());
            if (otheruser::become() && ::chdir(QFile::encodeName(directory).constData()) == 0)
                swapLinks(QFile::encodeName(victim), maker);
            ::_exit(EXIT_FAILURE);
        }
        for (int round = 0; round < kRounds && otheruser::ownership(victim) == owner; ++round) {
            createList(list());
            zyn::openStoreFile(QFile::encodeName(list()));
        }
        ::kill(attacker, SIGKILL);
        int status = 0;
        ::waitpid(attacker, &status, 0);
        QVERIFY2(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL, "the attacker could not attack");
        QCOMPARE(otheruser::ownership(victim), owner);
        QCOMPARE(beside(u"precious"_s), "precious");
    }

    void hasOneHolderOfManyWhoLock()
    {
        constexpr int kStarters = 6;
        constexpr int kRounds = 2000;
        const QByteArray name = QFile::encodeName(m_fixture->file(u"topPalsLock"_s));
        // Of a process whose number another one has by now.
        m_fixture->write(u"topPalsLock"_s, QByteArray::number(::getpid()) + "\ntst_StoreFile\n"
                                               + QSysInfo::machineHostName().toLocal8Bit() + '\n');
        std::vector<std::atomic<int>> holders(kRounds);
        std::barrier<> allHaveTried(kStarters);
        std::vector<std::thread> starters(kStarters);
        for (std::thread& starter : starters) {
            starter = std::thread([&] {
                zyn::posix::FileLock lock;
                for (std::atomic<int>& count : holders) {
                    count += lock.lock(name); // after giving back what it has, as others start
                    allHaveTried.arrive_and_wait();
                }
            });
        }
        for (std::thread& starter : starters)
            starter.join();
        for (const std::atomic<int>& count : holders)
            QCOMPARE(count.load(), 1);
        QCOMPARE(m_fixture->files(), QString());
    }

    void leavesALockThatIsAnothers()
    {
        const QString folder = m_fixture->path() + u"/phone"_s;
        {
            ActivityLogLock lock(folder);
            QVERIFY(lock.lock());
            const QByteArray holder = QByteArray::number(::getpid()) + "\ntst_StoreFile\n";
            QCOMPARE(m_fixture->read(u"topPalsLock"_s), holder + QSysInfo::machineHostName().toLocal8Bit() + '\n');
            QVERIFY(QFile::remove(m_fixture->file(u"topPalsLock"_s)));
            m_fixture->write(u"topPalsLock"_s, "1\nanother\n");
        }
        QCOMPARE(m_fixture->files(), u"topPalsLock"_s);
        {
            ActivityLogLock lock(folder);
            QVERIFY(lock.lock());
            ActivityLogLock second(folder);
            QVERIFY(!second.lock());
            QCOMPARE(second.problem(), u"process %1 (tst_StoreFile) owns the favourites"_s.arg(::getpid()));
        }
        QCOMPARE(m_fixture->files(), QString());
    }

private:
    QString shell(const QString& command) const { return scenario::shell(m_fixture->path(), {command}); }
    /// What others' links may lead to: a file, a directory, and a list with a call.
    void makeVictims() const
    {
        addCall();
        shell(u"echo precious >precious; mkdir safe; echo precious >safe/rc_a; cp phone/rc_a sound; cp sound copy"_s);
    }
    /// What is left of that when a process has done to the call log all that it does.
    QString use() const
    {
        startStore();
        PHONE_ENG_RecentCall record = StoreFixture::add(kAnswered, "1");
        record.slot = 0;
        StoreFixture::store().modifyItem(record);
        StoreFixture::uids(kAnswered);
        StoreFixture::store().removeItem(record);
        StoreFixture::store().clearAllData();
        if (createList(list()))
            return u"a list made"_s;
        return shell(
            u"echo $(cat precious safe/rc_a; ls safe; ls nothing 2>&-; stat -c %u precious; cmp sound copy)"_s);
    }
    QString list() const { return m_fixture->file(kAnswered); }
    QString path(const QString& name) const { return m_fixture->path() + u'/' + name; }
    /// What the file @p name beside the store holds.
    QByteArray beside(const QString& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void startStore()
    {
        StoreFixture::forgetSingletons();
        StoreFixture::store();
    }
    /// Adds a call to the list; what its file holds then.
    QByteArray addCall() const
    {
        StoreFixture::startAfresh();
        m_fixture->add(kAnswered, "112");
        return m_fixture->read(kAnswered);
    }
};

QTEST_GUILESS_MAIN(tst_StoreFile)
#include "tst_StoreFile.moc"
