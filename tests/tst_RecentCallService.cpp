// The recent-call service, run as the process that it is, through the library and through bare sockets.
#include "platform/QCopChannel.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/support/Patience.h"
#include "tests/support/ServiceProcess.h"
#include "tests/support/SocketClient.h"
#include "tests/support/StoreFixture.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <limits>

#include <sys/stat.h>

using zyn::posix::UniqueFd;
namespace rc = zyn::recentcall;

namespace {

constexpr auto kAnswered = RC_CALL_CATEGORY_ANSWERED;
constexpr auto kMissed = RC_CALL_CATEGORY_MISSED;
constexpr auto kDialed = RC_CALL_CATEGORY_DIALED;
constexpr auto kAll = RC_CALL_CATEGORY_ALL;
constexpr auto kVoice = RC_CALL_TYPE_VOICE;
const QString kSocket = QStringLiteral("/tmp/zynrecentcallcom/recentcall_interface");

using Uids = QList<int>;
constexpr int kLastUid = std::numeric_limits<int>::max();

/// What a client may claim about a call: neither uid nor slot are its to say.
PHONE_ENG_RecentCall claim(RC_CALL_CATEGORY_T category, int uid = 4711, RC_CALL_TYPE_T type = kVoice)
{
    PHONE_ENG_RecentCall record(QStringLiteral("+447700900123"), QDateTime::currentDateTime(), 5, true);
    record.category = category;
    record.callType = type;
    record.uid = uid;
    record.slot = 77;
    record.reservedB = 0x01020304;
    return record;
}

int add(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T type = kVoice)
{
    PHONE_ENG_RecentCall record = claim(category, 4711, type);
    return PHONE_RecentCall_AddRecord(record);
}

int remove(int uid, RC_CALL_CATEGORY_T category, int slot = 77)
{
    PHONE_ENG_RecentCall record = claim(category, uid);
    record.slot = slot;
    return PHONE_RecentCall_DeleteRecord(record);
}

void addUnread(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T type = kVoice)
{
    PHONE_ENG_RecentCall record = claim(category, 4711, type);
    record.readFlags = 0;
    PHONE_RecentCall_AddRecord(record);
}

/// The uids of a list in its order; -3 alone when the service does not answer with success.
Uids uids(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T type = kVoice)
{
    QPtrList<RC_RecordInterface> list;
    if (const int result = RC_Interface().getRecordList(list, category, type); result != 0)
        return {-result};
    Uids found;
    for (const RC_RecordInterface* record : list)
        found += record->getUID();
    return found;
}

const QByteArray kGreeting = frame(0, words({0}));
const QByteArray kListAll = frame(rc::ListRecords, words({kAll, kVoice}));
const QByteArray kAddMissed = frame(rc::AddRecord, zyn::bytesOf(claim(kMissed)).toByteArray());

UniqueFd client(const QByteArray& bytes)
{
    return connectAndSend(kSocket, bytes);
}

/// What the service has sent once it has closed the connection; nothing when it does not close it.
std::optional<QByteArray> sentBeforeClose(const UniqueFd& fd)
{
    if (!isClosed(fd))
        return std::nullopt;
    QByteArray sent(2'000'000, '\0');
    const auto buffer = std::as_writable_bytes(std::span(sent.data(), size_t(sent.size())));
    qsizetype size = 0;
    for (ssize_t n = 1; n > 0; size += std::max<ssize_t>(n, 0))
        n = zyn::posix::receiveSome(fd.get(), buffer.subspan(size_t(size)));
    return sent.first(size);
}

/// A record file that holds calls with these uids, from its first slot on.
QByteArray imageOf(RC_CALL_CATEGORY_T category, const Uids& uids)
{
    QByteArray image = zyn::RecordFile::blankImage();
    for (int slot = 0; slot < uids.size(); ++slot) {
        PHONE_ENG_RecentCall call = claim(category, uids.at(slot));
        call.inUse = 1;
        call.slot = slot;
        image.replace(qsizetype(zyn::RecordFile::offset(slot)), qsizetype{sizeof call},
                      zyn::bytesOf(call).toByteArray());
    }
    return image;
}

Uids downFrom(int uid, int count)
{
    Uids uids;
    for (int i = 0; i < count; ++i)
        uids += uid - i;
    return uids;
}

bool writeFile(const QString& path, const QByteArray& bytes, QIODevice::OpenMode mode = QIODevice::WriteOnly)
{
    QFile file(path);
    return file.open(mode) && file.write(bytes) == bytes.size();
}

/// @{ The ways in which a backup comes to its place.
using Restoring = bool (*)(const QString& path, const QByteArray& image);

bool byRename(const QString& path, const QByteArray& image)
{
    const QByteArray staged = QFile::encodeName(path) + ".restored";
    return writeFile(QFile::decodeName(staged), image)
           && ::rename(staged.constData(), QFile::encodeName(path).constData()) == 0;
}

bool afterRemoval(const QString& path, const QByteArray& image)
{
    return QFile::remove(path) && writeFile(path, image);
}

bool intoTheOldFile(const QString& path, const QByteArray& image)
{
    return writeFile(path, image, QIODevice::ReadWrite);
}

bool intoTheOldFileWithItsTime(const QString& path, const QByteArray& image)
{
    const QDateTime time = QFileInfo(path).lastModified();
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.write(image) == image.size() && file.flush()
           && file.setFileTime(time, QFileDevice::FileModificationTime);
}
/// @}

/// Puts the same backup in place again and again; fails when a call of it is not there by the next time.
int restoreOften(const QStringList& arguments)
{
    constexpr int kTimes = 500;
    const QString path = arguments.value(0);
    const QByteArray backup = imageOf(kMissed, {100, 101, 102});
    const auto size = qsizetype(zyn::RecordFile::offset(3));
    for (int left = kTimes; left > 0; --left) {
        if (!byRename(path, backup))
            return EXIT_FAILURE;
        if (left == kTimes)
            role::sayReady();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || file.read(size) != backup.first(size))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

/// @{ What others do to the dialed list.
using Meddling = bool (*)(const StoreFixture& files);

bool nothing(const StoreFixture& /*files*/)
{
    return true;
}

bool removeAndReadIt(const StoreFixture& files)
{
    QString number;
    StoreFixture::forgetSingletons();
    return QFile::remove(files.file(kDialed)) && !RC_Interface().getLastDialedNumber(number)
           && QFile::exists(files.file(kDialed));
}

bool blankIt(const StoreFixture& files)
{
    const QDateTime time = QFileInfo(files.file(kDialed)).lastModified();
    StoreFixture::store().clearAllData();
    QFile file(files.file(kDialed));
    return file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime);
}

bool removeItsDirectory(const StoreFixture& files)
{
    return QDir(files.path() + QStringLiteral("/phone")).removeRecursively();
}

bool damageItsSlotNumbers(const StoreFixture& files)
{
    QByteArray image = files.read(kDialed);
    for (const int slot : {0, 1, 2, 3, 20, 49}) {
        const auto at = qsizetype(zyn::RecordFile::offset(slot)) + qsizetype{offsetof(PHONE_ENG_RecentCall, slot)};
        image.replace(at, 4, words({slot * 1000 - 7}));
    }
    return intoTheOldFile(files.file(kDialed), image);
}

bool makeItADirectory(const StoreFixture& files)
{
    return QFile::remove(files.file(kDialed)) && QDir().mkdir(files.file(kDialed));
}

bool makeItAFifo(const StoreFixture& files)
{
    return QFile::remove(files.file(kDialed))
           && ::mkfifo(QFile::encodeName(files.file(kDialed)).constData(), 0600) == 0;
}

bool makeItALinkToItself(const StoreFixture& files)
{
    return QFile::remove(files.file(kDialed)) && QFile::link(files.file(kDialed), files.file(kDialed));
}
/// @}

/// Adds calls until the given number of them was taken, whether or not the service is there all the time.
int addUntilTaken(const QStringList& arguments)
{
    for (int left = arguments.value(0).toInt(); left > 0;)
        left -= add(kAnswered) == 0 ? 1 : 0;
    return EXIT_SUCCESS;
}

} // namespace

class tst_RecentCallService : public QObject
{
    Q_OBJECT

private:
    std::optional<StoreFixture> m_files;
    ServiceProcess m_service;

    void start(const QString& options = {}, const QString& before = {})
    {
        QVERIFY(m_service.start(ZYN_RECENTCALLD, options, before));
    }
    void tell(int signal) { m_service.tell(signal); }
    int stop(int signal = SIGTERM) { return m_service.stop(signal); }
    QByteArray log() { return m_service.log(); }
    void overwrite(RC_CALL_CATEGORY_T category, int slot, size_t field, int32_t value)
    {
        QByteArray bytes = m_files->read(category);
        m_files->write(category,
                       bytes.replace(qsizetype(zyn::RecordFile::offset(slot)) + qsizetype(field), 4, words({value})));
    }

    /// The uids of the missed calls that are not read, in the order of their slots.
    QString unreadOnDisk() const
    {
        QStringList found;
        const QByteArray image = m_files->read(kMissed);
        for (int slot = 0; slot < zyn::RecordFile::count(image); ++slot) {
            const PHONE_ENG_RecentCall record = zyn::RecordFile::at(image, slot);
            if (record.inUse && record.readFlags == 0)
                found += QString::number(record.uid);
        }
        return found.join(QLatin1Char(' '));
    }

private Q_SLOTS:
    void init()
    {
        m_files.emplace();
        start();
    }
    void cleanup()
    {
        if (m_service.isRunning())
            QCOMPARE(stop(), 0);
        QVERIFY(!QFile::exists(kSocket) && !QFile::exists(kSocket + QStringLiteral(".lock")));
    }

    void tellsItsServiceManagerOnceItServes_data()
    {
        QTest::addColumn<QString>("mark");
        QTest::newRow("at a socket with a file") << QString();
        QTest::newRow("at a socket without one") << QStringLiteral("@");
    }
    void tellsItsServiceManagerOnceItServes()
    {
        QFETCH(QString, mark);
        stop();
        const QString name = mark + m_files->path() + QStringLiteral("/notify");
        const UniqueFd manager(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        const auto address = zyn::posix::unixAddress(name.toLocal8Bit().replace('@', '\0'));
        QCOMPARE(::bind(manager.get(), address.get(), address.length), 0);

        start({}, QStringLiteral("export NOTIFY_SOCKET='%1';").arg(name));
        QByteArray text(32, '\0');
        QCOMPARE(::recv(manager.get(), text.data(), size_t(text.size()), 0), 7);
        QCOMPARE(text.first(7), "READY=1");
        QCOMPARE(::recv(manager.get(), text.data(), size_t(text.size()), 0), -1);
    }

    void servesUnderADeafServiceManager()
    {
        stop();
        start({}, QStringLiteral("export NOTIFY_SOCKET=/tmp/nobody;"));
        QCOMPARE(uids(kAll), Uids());
        QCOMPARE(log(),
                 "zyn-recentcalld: the service manager at /tmp/nobody does not hear: No such file or directory\n");
    }

    void keepsEachListAndCallTypeApart_data()
    {
        QTest::addColumn<RC_CALL_CATEGORY_T>("category");
        QTest::addColumn<RC_CALL_TYPE_T>("type");
        QTest::newRow("answered voice calls") << kAnswered << kVoice;
        QTest::newRow("missed push-to-talk calls") << kMissed << RC_CALL_TYPE_PTT1;
        QTest::newRow("dialed calls of a type unknown") << kDialed << RC_CALL_TYPE_T(-9);
    }
    void keepsEachListAndCallTypeApart()
    {
        QFETCH(RC_CALL_CATEGORY_T, category);
        QFETCH(RC_CALL_TYPE_T, type);
        const auto otherCategory = RC_CALL_CATEGORY_T(category % 3 + 1);
        const auto otherType = RC_CALL_TYPE_PTT2;
        for (int i = 0; i < 3; ++i)
            QCOMPARE(add(category, type), 0); // uids 0, 1, 2
        add(otherCategory, type);             // 3
        add(category, otherType);             // 4
        QCOMPARE(uids(category, type), Uids({2, 1, 0}));
        QCOMPARE(uids(kAll, type), Uids({3, 2, 1, 0}));

        QCOMPARE(remove(1, otherCategory), 1);
        QCOMPARE(remove(1, category), 0);
        QCOMPARE(remove(1, category), 1);
        QCOMPARE(uids(category, type), Uids({2, 0}));

        QCOMPARE(PHONE_RecentCall_DeleteAll(category, type), 0);
        QCOMPARE(PHONE_RecentCall_DeleteAll(category, type), 0);
        QCOMPARE(uids(kAll, type), Uids({3}));
        QCOMPARE(PHONE_RecentCall_DeleteAll(kAll, type), 0);
        QCOMPARE(uids(kAll, type), Uids());
        QCOMPARE(uids(category, otherType), Uids({4}));
    }

    void storesTheRecordAsItIs()
    {
        PHONE_ENG_RecentCall record = claim(kMissed);
        PHONE_RecentCall_AddRecord(record);
        QCOMPARE(uids(kMissed), Uids({0}));
        record.uid = 0;
        record.slot = 0;
        record.inUse = 1;
        QCOMPARE(zyn::bytesOf(m_files->recordIn(kMissed, 0)), zyn::bytesOf(record));
    }

    void fullListLosesItsOldest()
    {
        m_files->setLimits(50, 3, 0);
        stop();
        start();
        for (int i = 0; i < 5; ++i) {
            add(kMissed, i == 3 ? RC_CALL_TYPE_PTT1 : kVoice);
            add(kDialed);
        }
        QCOMPARE(uids(kMissed), Uids({4, 2}));
        QCOMPARE(uids(kMissed, RC_CALL_TYPE_PTT1), Uids({3}));
        const UniqueFd fd = client(kGreeting + kListAll);
        ::shutdown(fd.get(), SHUT_WR);
        QCOMPARE(sentBeforeClose(fd).value_or(QByteArray()).mid(8, 8), words({2, 53}));
        QCOMPARE(log().count("a call of category 3 refused"), 5);
    }

    void showsTheNewestBelowALoweredLimit()
    {
        const auto startWith = [&](int limit) {
            stop();
            m_files->setLimits(50, 50, limit);
            start();
        };
        for (int i = 0; i < 50; ++i)
            add(kDialed);
        startWith(10);
        QCOMPARE(uids(kDialed), downFrom(49, 10));
        QCOMPARE(m_files->uids(kDialed), downFrom(49, 10)); // as those see it who read the file
        for (int i = 0; i < 3; ++i)
            add(kDialed);
        QCOMPARE(uids(kDialed), downFrom(52, 10));
        // What the user deletes is not made up for by older calls.
        QCOMPARE(remove(52, kDialed), 0);
        QCOMPARE(uids(kDialed), downFrom(51, 9));
        startWith(50);
        QCOMPARE(uids(kDialed), downFrom(51, 49));
        add(kDialed);
        QCOMPARE(remove(50, kDialed), 0);
        QCOMPARE(uids(kDialed), Uids({52, 51}) + downFrom(49, 47));

        // A backup of a longer list comes while the limit is low.
        startWith(3);
        Uids many;
        for (int i = 0; i < 50; ++i)
            many += 100 + (i * 7) % 50;
        QVERIFY(byRename(m_files->file(kDialed), imageOf(kDialed, many)));
        add(kDialed);
        QCOMPARE(uids(kDialed), downFrom(150, 3));
        // To delete all is to delete those behind the limit, too.
        QCOMPARE(PHONE_RecentCall_DeleteAll(kDialed, kVoice), 0);
        startWith(50);
        QCOMPARE(uids(kDialed), Uids());
    }

    void showsNoCallTwiceThatWasBeingMoved()
    {
        stop();
        m_files->setLimits(50, 3, 50);
        QByteArray image = imageOf(kMissed, {5, 6, 7, 8, 7, 9});
        const auto slotField = [](int slot) {
            return qsizetype(zyn::RecordFile::offset(slot)) + qsizetype{offsetof(PHONE_ENG_RecentCall, slot)};
        };
        image.replace(slotField(4), 4, words({2})); // as the one in slot 2, whose place it left
        m_files->write(kMissed, image);
        start();
        QCOMPARE(uids(kMissed), downFrom(9, 3));
        stop();
        m_files->setLimits(50, 50, 50);
        start();
        QCOMPARE(uids(kMissed), downFrom(9, 5));
    }

    void survivesItsEnd_data()
    {
        QTest::addColumn<int>("signal");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("told to end") << SIGTERM << 0;
        QTest::newRow("interrupted") << SIGINT << 0;
        QTest::newRow("killed") << SIGKILL << -1;
    }
    void survivesItsEnd()
    {
        QFETCH(int, signal);
        QFETCH(int, exitCode);
        for (const auto category : zyn::kRecordLists)
            add(category);
        QCOMPARE(uids(kAll), Uids({2, 1, 0}));
        QCOMPARE(stop(signal), exitCode);
        QCOMPARE(QFile::exists(kSocket), exitCode != 0);
        start();
        add(kMissed);
        QCOMPARE(uids(kAll), Uids({3, 2, 1, 0}));
    }

    void refusesToStartBesideALiveService()
    {
        const QByteArray refusal =
            "zyn-recentcalld: cannot listen on " + kSocket.toLatin1() + ": another service has it\n";
        QProcess second;
        for (const bool isLocked : {true, false}) {
            if (!isLocked)
                QVERIFY(QFile::remove(kSocket + QStringLiteral(".lock")));
            second.start(QStringLiteral(ZYN_RECENTCALLD), QStringList());
            QCOMPARE(role::finish(second), 1);
            QCOMPARE(second.readAllStandardError(), refusal);
            QCOMPARE(uids(kAll), Uids());
        }
    }

    void closesTheConnectionThatSends_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray record(228, '\1');
        QTest::newRow("a negative length") << kGreeting + words({rc::AddRecord, -1});
        QTest::newRow("a length beyond any command's") << kGreeting + words({rc::AddRecord, 0x7FFFFFFF});
        QTest::newRow("a record one byte short") << kGreeting + frame(rc::AddRecord, record.chopped(1));
        QTest::newRow("a record one byte long") << kGreeting + frame(rc::DeleteRecord, record + '\1');
        QTest::newRow("an empty list request") << kGreeting + frame(rc::ListRecords, {});
        QTest::newRow("an unknown code") << kGreeting + frame(5, words({1, 1}));
        QTest::newRow("a mark-read one byte short") << kGreeting + frame(rc::MarkRead, record.chopped(1));
        QTest::newRow("a code beyond a byte") << kGreeting + frame(0x101, record);
        QTest::newRow("a command before its greeting") << kListAll;
        QTest::newRow("a greeting twice") << kGreeting + kGreeting;
        QTest::newRow("a greeting of another kind") << frame(0, words({1}));
        QTest::newRow("no greeting but noise") << QByteArray(100'000, '\xFF');
    }
    void closesTheConnectionThatSends()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(sentBeforeClose(client(bytes + kAddMissed)), QByteArray());
        QCOMPARE(uids(kAll), Uids());
        QCOMPARE(log().count('\n'), 1);
    }

    void knowsNoOtherCategories()
    {
        for (const int number : {0, 5, -1, std::numeric_limits<int>::min()}) {
            const auto category = RC_CALL_CATEGORY_T(number);
            QCOMPARE(uids(category), Uids({-3}));
            QCOMPARE(PHONE_RecentCall_DeleteAll(category, kVoice), 2);
            QCOMPARE(add(category), 0);
            QCOMPARE(remove(0, category), 1);
        }
        QCOMPARE(uids(kAll), Uids());
    }

    void dropsClientsThatKeepItWaiting()
    {
        stop();
        start(QStringLiteral("--patience 3000"));
        for (int i = 0; i < 50; ++i)
            add(kDialed);
        const UniqueFd silent = client({});
        const UniqueFd greetedOnly = client(kGreeting);
        const UniqueFd stalled = client(kGreeting + kAddMissed.chopped(1));
        const UniqueFd deaf = client(kGreeting + kListAll.repeated(100));
        QCOMPARE(uids(kAll).count(), 50);
        for (const UniqueFd* fd : {&silent, &greetedOnly, &stalled})
            QCOMPARE(sentBeforeClose(*fd), QByteArray());
        const qsizetype wholeAnswers = qsizetype{100} * (16 + 50 * 228);
        QVERIFY(sentBeforeClose(deaf).value_or(QByteArray(wholeAnswers, '\0')).size() < wholeAnswers);
        QCOMPARE(log().count("in time: connection closed"), 4);
    }

    void carriesOutWhatFollowsAnAnswerThatNobodyTakes()
    {
        for (int i = 0; i < 50; ++i)
            add(kDialed);
        client(kGreeting + kListAll.repeated(100) + kAddMissed);
        QTRY_COMPARE(uids(kMissed), Uids({50}));
    }

    void clientsWaitForTheirTurnWhenDescriptorsAreShort()
    {
        stop();
        start({}, QStringLiteral("ulimit -n 48;"));
        std::vector<UniqueFd> crowd(100);
        for (UniqueFd& fd : crowd)
            fd = client(kGreeting);
        QCOMPARE(add(kMissed), 0);
        // A client that has its turn is served in full meanwhile.
        for (int slot = 0; slot < 10; ++slot) {
            send(crowd.front(), kAddMissed);
            QTRY_COMPARE(m_files->recordIn(kMissed, slot).inUse, 1);
        }
        crowd.clear();
        QCOMPARE(uids(kMissed).count(), 11);
    }

    void carriesOutFirstWhatWasSentBeforeAConnectionWasOpened()
    {
        const UniqueFd earlier = client(kGreeting);
        QCOMPARE(uids(kMissed), Uids());
        tell(SIGSTOP);
        send(earlier, kAddMissed);
        const UniqueFd later = client(kGreeting + kListAll);
        ::shutdown(later.get(), SHUT_WR);
        tell(SIGCONT);
        QCOMPARE(sentBeforeClose(later).value_or(QByteArray()).mid(8, 4), words({1}));
    }

    void carriesOutAllThatWasSentBeforeItsEnd()
    {
        const UniqueFd earlier = client(kGreeting);
        QCOMPARE(uids(kMissed), Uids());
        tell(SIGSTOP);
        for (int i = 0; i < 4; ++i)
            send(earlier, kAddMissed);
        for (int i = 0; i < 4; ++i)
            QCOMPARE(add(kMissed), 0);
        tell(SIGTERM);
        tell(SIGCONT);
        QCOMPARE(m_service.finish(), 0);
        start();
        QCOMPARE(uids(kMissed).count(), 8);
    }

    void losesNoAddOfClientsThatCloseAtOnce()
    {
        constexpr int kEach = 500;
        std::vector<std::unique_ptr<QProcess>> adders(4);
        for (auto& adder : adders)
            adder = role::start(QStringLiteral("add"), {QString::number(kEach)});
        int own = 0;
        const auto isRunning = [](const auto& adder) { return adder->state() != QProcess::NotRunning; };
        while (std::any_of(adders.begin(), adders.end(), isRunning)) {
            QCoreApplication::processEvents();
            QCOMPARE(add(kMissed), 0);
            QCOMPARE(uids(kMissed).count(), std::min(++own, 50));
            if (own % 20 == 0) {
                QCOMPARE(stop(), 0);
                start();
            }
        }
        for (const auto& adder : adders)
            QCOMPARE(role::finish(*adder), 0);
        // Every add that was taken has used one uid.
        QCOMPARE(uids(kAll).value(0), int(adders.size()) * kEach + own - 1);
        QCOMPARE(uids(kAnswered).count(), 50);
    }

    void makesADamagedFileAnew_data()
    {
        QTest::addColumn<int>("keptBytes");
        QTest::addColumn<QByteArray>("addedBytes");
        QTest::newRow("missing") << -1 << QByteArray();
        QTest::newRow("cut in its header") << 6 << QByteArray();
        QTest::newRow("cut between records") << 8 + 228 << QByteArray();
        QTest::newRow("one byte long") << 11'408 << QByteArray(1, '\0');
        QTest::newRow("another header") << 0 << QByteArray(11'408, '\6');
    }
    void makesADamagedFileAnew()
    {
        QFETCH(int, keptBytes);
        QFETCH(QByteArray, addedBytes);
        add(kAnswered);
        add(kMissed);
        QCOMPARE(uids(kAll), Uids({1, 0}));
        if (keptBytes < 0)
            QVERIFY(QFile::remove(m_files->file(kMissed)));
        else
            m_files->write(kMissed, m_files->read(kMissed).first(keptBytes) + addedBytes);
        add(kMissed);
        QCOMPARE(uids(kAll), Uids({2, 0}));
        QVERIFY(log().startsWith("zyn-recentcalld: missing or damaged record files are made anew"));
        start();
        QCOMPARE(uids(kAll), Uids({2, 0}));
    }

    void keepsACallWhoseSlotIsWrong()
    {
        for (int i = 0; i < 2; ++i)
            add(kMissed);
        QCOMPARE(uids(kMissed), Uids({1, 0}));
        QCOMPARE(stop(), 0);
        overwrite(kMissed, 0, offsetof(PHONE_ENG_RecentCall, slot), 5);
        start();
        add(kMissed);
        QCOMPARE(uids(kMissed), Uids({2, 1, 0}));
        QCOMPARE(remove(0, kMissed), 0);
        QCOMPARE(uids(kMissed), Uids({2, 1}));
    }

    void losesNoCallAfterOthersHave_data()
    {
        QTest::addColumn<Meddling>("meddle");
        QTest::newRow("done nothing") << &nothing;
        QTest::newRow("removed the list, and read it") << &removeAndReadIt;
        QTest::newRow("blanked the list, and left its time") << &blankIt;
        QTest::newRow("removed the directory") << &removeItsDirectory;
        QTest::newRow("damaged slot numbers") << &damageItsSlotNumbers;
    }
    void losesNoCallAfterOthersHave()
    {
        QFETCH(Meddling, meddle);
        for (int i = 0; i < 50; ++i)
            add(kDialed);
        QCOMPARE(uids(kDialed), downFrom(49, 50));
        QVERIFY(meddle(*m_files));
        add(kDialed);
        QCOMPARE(uids(kDialed).value(0), 50);
        for (int i = 1; i < 100; ++i)
            add(kDialed);
        QCOMPARE(uids(kDialed), downFrom(149, 50));
        for (int slot = 0; slot < zyn::kRecordSlots; ++slot)
            QCOMPARE(m_files->recordIn(kDialed, slot).slot, slot);
        QVERIFY(!log().contains("lost"));
    }

    void addsToABackupThatWasPutInPlace_data()
    {
        QTest::addColumn<Restoring>("restore");
        QTest::newRow("as another file") << &byRename;
        QTest::newRow("after the old one was removed") << &afterRemoval;
        QTest::newRow("into the old file") << &intoTheOldFile;
        QTest::newRow("into the old file, whose time stays") << &intoTheOldFileWithItsTime;
    }
    void addsToABackupThatWasPutInPlace()
    {
        QFETCH(Restoring, restore);
        add(kMissed);
        QCOMPARE(uids(kMissed), Uids{0});
        QVERIFY(restore(m_files->file(kMissed), imageOf(kMissed, {100, 101, 102, 103, 104})));
        add(kMissed);
        QCOMPARE(uids(kMissed), downFrom(105, 6));
        // An older one: what is added is newer than all that there has been.
        QVERIFY(restore(m_files->file(kMissed), imageOf(kMissed, {7, 8})));
        add(kDialed);
        add(kMissed);
        QCOMPARE(uids(kAll), Uids({107, 106, 8, 7}));
    }

    void addsToABackupThatIsBeingWritten()
    {
        add(kMissed);
        QCOMPARE(uids(kMissed), Uids{0});
        QFile file(m_files->file(kMissed));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered));
        add(kMissed);
        file.write(imageOf(kMissed, {100, 101, 102}));
        QCOMPARE(uids(kMissed), downFrom(103, 4));
    }

    void losesNoCallOfABackupThatComesMeanwhile()
    {
        const auto restorer = role::start(QStringLiteral("restore"), {m_files->file(kMissed)});
        QVERIFY(role::waitReady(*restorer));
        while (restorer->state() != QProcess::NotRunning) {
            QCOMPARE(add(kMissed), 0);
            // The list must not become full: it would lose its oldest.
            for (const int uid : uids(kMissed)) {
                if (uid > 102)
                    remove(uid, kMissed);
            }
            QCoreApplication::processEvents();
        }
        QCOMPARE(role::finish(*restorer), 0);
        add(kMissed);
        QCOMPARE(uids(kMissed).mid(uids(kMissed).size() - 3), Uids({102, 101, 100}));
        QVERIFY(!log().contains("lost"));
    }

    void ofEqualUidsMeansTheOneInTheSlot_data()
    {
        QTest::addColumn<int>("slot");
        QTest::newRow("the first") << 0;
        QTest::newRow("one in between") << 1;
        QTest::newRow("the last") << 2;
    }
    void ofEqualUidsMeansTheOneInTheSlot()
    {
        QFETCH(int, slot);
        m_files->write(kMissed, imageOf(kMissed, {5, 5, 5, 6}));
        PHONE_ENG_RecentCall record = claim(kMissed, 5);
        record.slot = slot;
        const auto markAllUnread = [&] {
            QByteArray image = m_files->read(kMissed);
            for (int i = 0; i < 4; ++i)
                image[qsizetype(zyn::RecordFile::offset(i)) + qsizetype{offsetof(PHONE_ENG_RecentCall, readFlags)}] = 0;
            m_files->write(kMissed, image);
        };
        markAllUnread();
        QCOMPARE(rc::markRead(record), rc::Success);
        for (int i = 0; i < 4; ++i)
            QCOMPARE(m_files->recordIn(kMissed, i).readFlags != 0, i == slot);
        QCOMPARE(remove(5, kMissed, slot), 0);
        for (int i = 0; i < 4; ++i)
            QCOMPARE(m_files->recordIn(kMissed, i).inUse == 0, i == slot);
    }

    void goesOnWhenNoUidIsLeft_data()
    {
        QTest::addColumn<Uids>("missed");
        QTest::addColumn<Uids>("dialed");
        QTest::addColumn<Uids>("expected");
        QTest::newRow("one has the last uid") << Uids{5, kLastUid} << Uids{6} << Uids{7, 6, 5};
        QTest::newRow("several have it") << Uids{kLastUid, kLastUid} << Uids{kLastUid, 3} << Uids{6, 5, 4, 3};
        QTest::newRow("all are near it") << Uids{kLastUid, kLastUid - 4} << Uids{kLastUid - 2} << Uids{2, 1, 0};
        QTest::newRow("there is one left") << Uids{kLastUid - 1, 3} << Uids() << Uids{kLastUid - 1, 3};
    }
    void goesOnWhenNoUidIsLeft()
    {
        QFETCH(Uids, missed);
        QFETCH(Uids, dialed);
        QFETCH(Uids, expected);
        stop();
        m_files->write(kMissed, imageOf(kMissed, missed));
        m_files->write(kDialed, imageOf(kDialed, dialed));
        start();
        QCOMPARE(uids(kAll), expected);
        // The newest is always first, and none of the others goes.
        for (int added = 0; added < 4; ++added) {
            const Uids before = uids(kAnswered);
            add(kAnswered);
            const Uids after = uids(kAnswered);
            QCOMPARE(after.size(), before.size() + 1);
            QVERIFY(std::ranges::is_sorted(after, std::greater<>()) && uids(kAll).value(0) == after.value(0));
        }
        QCOMPARE(uids(kAll).size(), expected.size() + 4);
    }

    void knowsRenumberedCallsByTheirOldUids()
    {
        for (int i = 0; i < 8; ++i)
            add(kAnswered);
        QCOMPARE(PHONE_RecentCall_DeleteAll(kAnswered, kVoice), 0);
        // The uid comes while the service runs, and twice.
        m_files->write(kMissed, imageOf(kMissed, {6, kLastUid, kLastUid}));
        QCOMPARE(uids(kMissed), Uids({kLastUid, kLastUid, 6}));
        add(kDialed);
        QCOMPARE(uids(kAll), Uids({10, 9, 8, 6}));
        QCOMPARE(remove(kLastUid, kMissed, 2), 0);
        QCOMPARE(remove(kLastUid, kMissed, 2), 1);
        QCOMPARE(uids(kAll), Uids({10, 8, 6}));
        // The last one, once it is deleted, is in nobody's way.
        m_files->write(kMissed, imageOf(kMissed, {kLastUid - 1}));
        add(kMissed);
        QCOMPARE(remove(kLastUid, kMissed), 0);
        add(kMissed);
        QCOMPARE(uids(kMissed), downFrom(kLastUid, 2));
    }

    void givesOfAllListsWhatCanBeHad_data()
    {
        QTest::addColumn<Meddling>("spoil");
        QTest::newRow("one is a directory") << &makeItADirectory;
        QTest::newRow("one is a FIFO") << &makeItAFifo;
        QTest::newRow("one is a link to itself") << &makeItALinkToItself;
    }
    void givesOfAllListsWhatCanBeHad()
    {
        QFETCH(Meddling, spoil);
        for (const auto category : {kAnswered, kMissed, kDialed})
            add(category);
        QCOMPARE(uids(kAll), downFrom(2, 3));
        QVERIFY(spoil(*m_files));
        QCOMPARE(uids(kAll), Uids({1, 0}));
        QCOMPARE(uids(kDialed), Uids{-3});
        add(kDialed);
        add(kMissed);
        QCOMPARE(uids(kAll), Uids({3, 1, 0}));
        QCOMPARE(PHONE_RecentCall_DeleteAll(kAll, kVoice), 2);
        QCOMPARE(uids(kAll), Uids());
        const QByteArray lines = log();
        QCOMPARE(lines.count("list 3 is left out, because of its file"), 1);
        QCOMPARE(lines.count("a call of list 3 is lost: its file cannot be had"), 1);
    }

    void failsForAFileThatItCannotHave()
    {
        QVERIFY(QFile::remove(m_files->file(kMissed)));
        QVERIFY(QDir().mkdir(m_files->file(kMissed)));
        QPtrList<RC_RecordInterface> list;
        QCOMPARE(RC_Interface().getRecordList(list, kMissed, kVoice), 3);
        QCOMPARE(PHONE_RecentCall_DeleteAll(kMissed, kVoice), 2);
        QCOMPARE(remove(0, kMissed), 2);
        QCOMPARE(RC_Interface().getRecordList(list, kAnswered, kVoice), 0);
    }

    void announcesEachChangeOfTheMissedCalls()
    {
        QStringList seen, expected;
        const QCopChannel channel("/ZYN/recentcall");
        connect(&channel, &QCopChannel::received, this, [&](const QCString& message, const QByteArray& data) {
            seen += QString::fromUtf8(message + data + ": ") + unreadOnDisk();
        });
        const auto expect = [&](const char* unread) {
            expected += QStringLiteral("RECENTCALL_MSG_2: ") + QLatin1String(unread);
            QTRY_COMPARE(seen, expected);
        };
        addUnread(kMissed); // uid 0
        expect("0");
        addUnread(kDialed); // 1
        addUnread(kMissed, RC_CALL_TYPE_PTT1);
        expect("0 2");
        QCOMPARE(rc::markRead(claim(kMissed, 0)), rc::Success);
        expect("2");
        QCOMPARE(rc::markRead(claim(kMissed, 0)), rc::Success);
        QCOMPARE(rc::markRead(claim(kMissed, 1)), rc::NoSuchRecord);
        QCOMPARE(rc::markRead(claim(kAll, 2)), rc::NoSuchRecord);
        QCOMPARE(rc::markRead(claim(kDialed, 1)), rc::Success);
        QCOMPARE(m_files->recordIn(kDialed, 0).readFlags, PHONE_ENG_RecentCall::kRead);
        QCOMPARE(remove(2, kMissed), 0);
        expect("");
        QCOMPARE(remove(2, kMissed), 1);
        QCOMPARE(PHONE_RecentCall_DeleteAll(kMissed, RC_CALL_TYPE_PTT1), 0);
        addUnread(kMissed); // 3
        expect("3");
        QCOMPARE(PHONE_RecentCall_DeleteAll(kAll, kVoice), 0);
        expect("");
        QVERIFY(QFile::remove(m_files->file(kMissed)));
        QCOMPARE(uids(kMissed), Uids());
        expect("");

        m_files->setLimits(50, 1, 50);
        stop();
        start();
        expect("");
        addUnread(kMissed);
        expect("0");
        addUnread(kMissed);
        expect("1");
        QCOMPARE(stop(), 0);
        QCoreApplication::processEvents();
        QCOMPARE(seen, expected);
    }

    void believesNoDamagedRecord()
    {
        for (int i = 0; i < 3; ++i)
            add(kMissed);
        QCOMPARE(uids(kMissed), Uids({2, 1, 0}));
        overwrite(kMissed, 0, offsetof(PHONE_ENG_RecentCall, category), 0x7FFFFFFF);
        overwrite(kMissed, 1, offsetof(PHONE_ENG_RecentCall, slot), 2);
        QCOMPARE(remove(0, kMissed), 0);
        QCOMPARE(remove(1, kMissed), 0);
        QCOMPARE(uids(kMissed), Uids({2}));
    }
};

int main(int argc, char** argv)
{
    return role::testMain<tst_RecentCallService>(
        argc, argv, {{QStringLiteral("add"), addUntilTaken}, {QStringLiteral("restore"), restoreOften}});
}

#include "tst_RecentCallService.moc"
