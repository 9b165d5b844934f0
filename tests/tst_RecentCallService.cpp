// The recent-call service, run as the process that it is, through the library and through bare sockets.
#include "platform/QCopChannel.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/support/Scenario.h"
#include "tests/support/ServiceProcess.h"
#include "tests/support/SocketClient.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Timeout.h"

#include <algorithm>
#include <cstdio>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;
namespace rc = zyn::recentcall;

namespace {

const QString kSocket = u"/tmp/zynrecentcallcom/recentcall_interface"_s;

/// The calls of a type in a list.
struct Calls
{
    RC_CALL_CATEGORY_T list;
    RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE;
};

constexpr Calls kAnswered{RC_CALL_CATEGORY_ANSWERED};
constexpr Calls kMissed{RC_CALL_CATEGORY_MISSED};
constexpr Calls kDialed{RC_CALL_CATEGORY_DIALED};
constexpr Calls kAll{RC_CALL_CATEGORY_ALL};

/// Calls as the first word of a step names them: "missed", "missed/ptt1" or "5/-9".
Calls callsOf(const QStringList& words)
{
    static const QMap<QString, int> names{{u"answered"_s, RC_CALL_CATEGORY_ANSWERED},
                                          {u"missed"_s, RC_CALL_CATEGORY_MISSED},
                                          {u"dialed"_s, RC_CALL_CATEGORY_DIALED},
                                          {u"all"_s, RC_CALL_CATEGORY_ALL},
                                          {u""_s, RC_CALL_TYPE_VOICE},
                                          {u"voice"_s, RC_CALL_TYPE_VOICE},
                                          {u"ptt1"_s, RC_CALL_TYPE_PTT1},
                                          {u"ptt2"_s, RC_CALL_TYPE_PTT2}};
    const auto number = [](const QString& name) { return names.value(name, name.toInt()); };
    const QString word = words.value(0);
    return {RC_CALL_CATEGORY_T(number(word.section(u'/', 0, 0))), RC_CALL_TYPE_T(number(word.section(u'/', 1)))};
}

/// What a client may claim about a call: neither uid nor slot are its to say.
PHONE_ENG_RecentCall claim(const Calls& calls, int uid = 4711, int slot = 77)
{
    PHONE_ENG_RecentCall record(u"+447700900123"_s, QDateTime::currentDateTime(), 5, true);
    record.category = calls.list;
    record.callType = calls.type;
    record.uid = uid;
    record.slot = slot;
    record.reservedB = 0x01020304;
    return record;
}

/// Adds a call, several, or one that is unread.
QString add(const Calls& calls, const QString& how = {})
{
    PHONE_ENG_RecentCall record = claim(calls);
    if (how == u"unread")
        record.readFlags = 0;
    int failures = 0;
    for (int left = how.startsWith(u'x') ? how.mid(1).toInt() : 1; left > 0; --left)
        failures += PHONE_RecentCall_AddRecord(record) == 0 ? 0 : 1;
    return failures == 0 ? QString() : u"failed"_s;
}

/// Numbers, of which "5..2" stands for 5 4 3 2.
QList<int> numbers(const QStringList& words)
{
    QList<int> result;
    for (QString word : words) {
        const QStringList ends = word.replace(u"LAST"_s, QString::number(INT_MAX)).split(u".."_s);
        const int last = ends.last().toInt();
        for (int number = ends.first().toInt(); number != last; number += number < last ? 1 : -1)
            result += number;
        result += last;
    }
    return result;
}

QString text(const QList<int>& numbers)
{
    QStringList words;
    for (qsizetype at = 0; at < numbers.size();) {
        qsizetype length = 1;
        while (at + length < numbers.size() && numbers.at(at + length) == numbers.at(at) - length)
            ++length;
        const qsizetype shown = length > 2 ? length : 1;
        words += QString::number(numbers.at(at)).replace(QString::number(INT_MAX), u"LAST"_s);
        if (length > 2)
            words.last() += u"..%1"_s.arg(numbers.at(at + length - 1));
        at += shown;
    }
    return words.join(u' ');
}

/// The uids of a list in its order; less than 0 alone for a failure.
QList<int> uids(const Calls& calls)
{
    QPtrList<RC_RecordInterface> records;
    if (const int result = RC_Interface().getRecordList(records, calls.list, calls.type); result != 0)
        return {-result};
    QList<int> uids;
    for (const RC_RecordInterface* record : records)
        uids += record->getUID();
    return uids;
}

QString list(const Calls& calls)
{
    return text(uids(calls));
}

const QByteArray kGreeting = frame(0, words({0}));
const QByteArray kListAll = frame(rc::ListRecords, words({kAll.list, kAll.type}));
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

/// How many calls an answer holds, and how many it could, of a client that then closes its end.
QString sizes(const UniqueFd& fd)
{
    ::shutdown(fd.get(), SHUT_WR);
    int32_t counts[2] = {-1, -1};
    const QByteArray data = sentBeforeClose(fd).value_or(QByteArray()).mid(8, qsizetype{sizeof counts});
    std::copy(data.begin(), data.end(), reinterpret_cast<char*>(counts));
    return u"%1 of %2"_s.arg(counts[0]).arg(counts[1]);
}

/// A record file that holds unread calls with these uids, from its first slot on.
QByteArray imageOf(const Calls& calls, const QList<int>& uids)
{
    QByteArray image = zyn::RecordFile::blankImage();
    for (int slot = 0; slot < uids.size(); ++slot) {
        PHONE_ENG_RecentCall call = claim(calls, uids.at(slot), slot);
        call.inUse = 1;
        call.readFlags = 0;
        zyn::RecordFile::put(image, slot, call);
    }
    return image;
}

bool writeFile(const QString& path, const QByteArray& bytes, QIODevice::OpenMode mode = QIODevice::WriteOnly)
{
    QFile file(path);
    return file.open(mode) && file.write(bytes) == bytes.size();
}

bool replaceFile(const QString& path, const QByteArray& image)
{
    const QByteArray staged = QFile::encodeName(path) + ".restored";
    return writeFile(QFile::decodeName(staged), image)
           && ::rename(staged.constData(), QFile::encodeName(path).constData()) == 0;
}

/// Does @p change, and leaves the file at @p path the time that it has.
void changeKeepingTime(const QString& path, const std::function<void()>& change)
{
    const QDateTime time = QFileInfo(path).lastModified();
    change();
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime));
}

/// Puts the same backup in place again and again; fails when a call of it is not there by the next time.
int restoreOften(const QStringList& arguments)
{
    constexpr int kTimes = 500;
    const QString path = arguments.value(0);
    const QByteArray backup = imageOf(kMissed, {100, 101, 102});
    const auto size = qsizetype(zyn::RecordFile::offset(3));
    for (int left = kTimes; left > 0; --left) {
        if (!replaceFile(path, backup))
            return EXIT_FAILURE;
        if (left == kTimes)
            role::sayReady();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly) || file.read(size) != backup.first(size))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

/// Adds calls until the given number of them was taken, whether or not the service is there all the time.
int addUntilTaken(const QStringList& arguments)
{
    for (int left = arguments.value(0).toInt(); left > 0;)
        left -= add(kAnswered).isEmpty() ? 1 : 0;
    return EXIT_SUCCESS;
}

} // namespace

class tst_RecentCallService : public QObject
{
    Q_OBJECT

private:
    std::optional<StoreFixture> m_files;
    ServiceProcess m_service;
    std::optional<QCopChannel> m_channel;
    QStringList m_heard; ///< what each announcement has found on disk

    void start(const QString& options = {}, const QString& before = {})
    {
        QVERIFY(m_service.start(ZYN_RECENTCALLD, options, before));
    }
    int stop(int signal = SIGTERM) { return m_service.stop(signal); }
    void restart(const QString& options = {}, const QString& before = {})
    {
        QCOMPARE(stop(), 0);
        start(options, before);
    }
    /// The slots on disk with a call that is read, or not.
    QString slotsOf(const Calls& calls, bool isRead) const
    {
        QStringList found;
        for (int slot = 0; slot < zyn::kRecordSlots; ++slot) {
            const PHONE_ENG_RecentCall call = m_files->recordIn(calls.list, slot);
            if (call.inUse != 0 && (call.readFlags != 0) == isRead)
                found += QString::number(slot);
        }
        return found.join(u' ');
    }
    void overwrite(RC_CALL_CATEGORY_T list, int slot, const QString& field, int32_t value) const
    {
        const size_t at =
            field == u"slot" ? offsetof(PHONE_ENG_RecentCall, slot) : offsetof(PHONE_ENG_RecentCall, category);
        QByteArray image = m_files->read(list);
        image.replace(qsizetype(zyn::RecordFile::offset(slot)) + qsizetype(at), 4, words({value}));
        QVERIFY(writeFile(m_files->file(list), image, QIODevice::ReadWrite));
    }
    void restore(RC_CALL_CATEGORY_T list, const QString& how, const QByteArray& image) const
    {
        const QString path = m_files->file(list);
        const auto overwriteFile = [&] { QVERIFY(writeFile(path, image, QIODevice::ReadWrite)); };
        if (how == u"renamed")
            QVERIFY(replaceFile(path, image));
        else if (how == u"anew")
            QVERIFY((!QFile::exists(path) || QFile::remove(path)) && writeFile(path, image));
        else if (how == u"over")
            overwriteFile();
        else if (how == u"over-with-its-time")
            changeKeepingTime(path, overwriteFile);
        else
            QFAIL(qPrintable(how));
    }
    void spoil(RC_CALL_CATEGORY_T list, const QString& with) const
    {
        const QString path = m_files->file(list);
        QVERIFY(QFile::remove(path) || QDir().rmdir(path));
        if (with == u"directory")
            QVERIFY(QDir().mkdir(path));
        else if (with == u"fifo")
            QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        else if (with == u"link-to-itself")
            QVERIFY(QFile::link(path, path));
    }
    scenario::Verbs verbs();

private Q_SLOTS:
    void init()
    {
        m_files.emplace();
        m_heard.clear();
        connect(&m_channel.emplace("/ZYN/recentcall"), &QCopChannel::received, this,
                [this](const QCString& message, const QByteArray& data) {
                    m_heard += QString::fromUtf8(message + data + ": ") + slotsOf(kMissed, false);
                });
        start();
    }
    void cleanup()
    {
        if (m_service.isRunning())
            QCOMPARE(stop(), 0);
        m_channel.reset();
        QVERIFY(!QFile::exists(kSocket) && !QFile::exists(kSocket + u".lock"_s));
    }

    void keepsTheCalls_data() { scenario::addRows(QFINDTESTDATA("data/recentcall_service.txt")); }
    void keepsTheCalls() { scenario::play(verbs()); }

    void tellsItsServiceManagerOnceItServes_data()
    {
        QTest::addColumn<QString>("mark");
        QTest::newRow("at a socket with a file") << QString();
        QTest::newRow("at a socket without one") << u"@"_s;
    }
    void tellsItsServiceManagerOnceItServes()
    {
        QFETCH(QString, mark);
        const QString name = mark + m_files->path() + u"/notify"_s;
        const UniqueFd manager(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        const auto address = zyn::posix::unixAddress(name.toLocal8Bit().replace('@', '\0'));
        QCOMPARE(::bind(manager.get(), address.get(), address.length), 0);
        restart({}, u"export NOTIFY_SOCKET='%1';"_s.arg(name));
        QByteArray message(32, '\0');
        QCOMPARE(::recv(manager.get(), message.data(), size_t(message.size()), 0), 7);
        QCOMPARE(message.first(7), "READY=1");
        QCOMPARE(::recv(manager.get(), message.data(), size_t(message.size()), 0), -1);
    }

    void servesUnderADeafServiceManager()
    {
        restart({}, u"export NOTIFY_SOCKET=/tmp/nobody;"_s);
        QCOMPARE(list(kAll), QString());
        QCOMPARE(m_service.log(),
                 "zyn-recentcalld: cannot notify the service manager at /tmp/nobody: No such file or directory\n");
    }

    void storesTheRecordAsItIs()
    {
        PHONE_ENG_RecentCall record = claim(kMissed);
        PHONE_RecentCall_AddRecord(record);
        QCOMPARE(list(kMissed), u"0"_s);
        record.uid = 0;
        record.slot = 0;
        record.inUse = 1;
        QCOMPARE(zyn::bytesOf(m_files->recordIn(kMissed.list, 0)), zyn::bytesOf(record));
    }

    void refusesToStartBesideALiveService()
    {
        QProcess second;
        for (const bool isLocked : {true, false}) {
            QVERIFY(isLocked || QFile::remove(kSocket + u".lock"_s));
            second.start(QStringLiteral(ZYN_RECENTCALLD), QStringList());
            QCOMPARE(role::finish(second), 1);
            QCOMPARE(second.readAllStandardError(),
                     "zyn-recentcalld: cannot listen on " + kSocket.toLatin1() + ": another service has it\n");
            QCOMPARE(list(kAll), QString());
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
        QCOMPARE(list(kAll), QString());
        QCOMPARE(m_service.log().count('\n'), 1);
    }

    void dropsClientsThatKeepItWaiting()
    {
        restart(u"--patience 3000"_s);
        add(kDialed, u"x50"_s);
        const UniqueFd silent = client({});
        const UniqueFd greetedOnly = client(kGreeting);
        const UniqueFd stalled = client(kGreeting + kAddMissed.chopped(1));
        const UniqueFd deaf = client(kGreeting + kListAll.repeated(100));
        QCOMPARE(list(kAll), u"49..0"_s);
        for (const UniqueFd* fd : {&silent, &greetedOnly, &stalled})
            QCOMPARE(sentBeforeClose(*fd), QByteArray());
        const qsizetype wholeAnswers = qsizetype{100} * (16 + 50 * 228);
        QVERIFY(sentBeforeClose(deaf).value_or(QByteArray(wholeAnswers, '\0')).size() < wholeAnswers);
        QCOMPARE(m_service.log().count("in time: connection closed"), 4);
    }

    void carriesOutWhatFollowsAnAnswerThatNobodyTakes()
    {
        add(kDialed, u"x50"_s);
        client(kGreeting + kListAll.repeated(100) + kAddMissed);
        QTRY_COMPARE(list(kMissed), u"50"_s);
    }

    void clientsWaitForTheirTurnWhenDescriptorsAreShort()
    {
        restart({}, u"ulimit -n 48;"_s);
        std::vector<UniqueFd> crowd(100);
        for (UniqueFd& fd : crowd)
            fd = client(kGreeting);
        QCOMPARE(add(kMissed), QString());
        // A client that has its turn is served in full meanwhile.
        for (int slot = 0; slot < 10; ++slot) {
            send(crowd.front(), kAddMissed);
            QTRY_COMPARE(m_files->recordIn(kMissed.list, slot).inUse, 1);
        }
        crowd.clear();
        QCOMPARE(list(kMissed), u"10..0"_s);
    }

    void carriesOutFirstWhatWasSentFirst()
    {
        const UniqueFd earlier = client(kGreeting);
        QCOMPARE(list(kMissed), QString());
        m_service.tell(SIGSTOP);
        send(earlier, kAddMissed);
        const UniqueFd later = client(kGreeting + kListAll);
        m_service.tell(SIGCONT);
        QCOMPARE(sizes(later), u"1 of 150"_s);
        // And before it ends all that was sent.
        m_service.tell(SIGSTOP);
        send(earlier, kAddMissed.repeated(4));
        QCOMPARE(add(kMissed, u"x4"_s), QString());
        m_service.tell(SIGTERM);
        m_service.tell(SIGCONT);
        QCOMPARE(m_service.finish(), 0);
        start();
        QCOMPARE(list(kMissed), u"8..0"_s);
    }

    void losesNoAddOfClientsThatCloseAtOnce()
    {
        constexpr int kEach = 500;
        std::vector<std::unique_ptr<QProcess>> adders(4);
        for (auto& adder : adders)
            adder = role::start(u"add"_s, {QString::number(kEach)});
        int own = 0;
        const auto isRunning = [](const auto& adder) { return adder->state() != QProcess::NotRunning; };
        while (std::ranges::any_of(adders, isRunning)) {
            QCoreApplication::processEvents();
            QCOMPARE(add(kMissed), QString());
            QCOMPARE(uids(kMissed).size(), std::min(++own, 50));
            if (own % 20 == 0)
                restart();
        }
        for (const auto& adder : adders)
            QCOMPARE(role::finish(*adder), 0);
        // Every add that was taken has used one uid.
        QCOMPARE(uids(kAll).value(0), int(adders.size()) * kEach + own - 1);
        QCOMPARE(uids(kAnswered).size(), 50);
    }

    void addsToABackupThatIsBeingWritten()
    {
        add(kMissed);
        QCOMPARE(list(kMissed), u"0"_s);
        QFile file(m_files->file(kMissed.list));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered));
        add(kMissed);
        file.write(imageOf(kMissed, {100, 101, 102}));
        QCOMPARE(list(kMissed), u"103..100"_s);
    }

    void losesNoCallOfABackupThatComesMeanwhile()
    {
        const auto restorer = role::start(u"restore"_s, {m_files->file(kMissed.list)});
        QVERIFY(role::waitReady(*restorer));
        while (restorer->state() != QProcess::NotRunning) {
            QCOMPARE(add(kMissed), QString());
            // The list must not become full: it would lose its oldest.
            for (const int uid : uids(kMissed)) {
                PHONE_ENG_RecentCall call = claim(kMissed, uid);
                if (uid > 102)
                    PHONE_RecentCall_DeleteRecord(call);
            }
            QCoreApplication::processEvents();
        }
        QCOMPARE(role::finish(*restorer), 0);
        add(kMissed);
        QCOMPARE(text(uids(kMissed).mid(uids(kMissed).size() - 3)), u"102..100"_s);
        QVERIFY(!m_service.log().contains("lost"));
    }
};

/// The words of the scenarios.
scenario::Verbs tst_RecentCallService::verbs()
{
    using Words = QStringList;
    const auto record = [](const Words& words) {
        return claim(callsOf(words), numbers(words.mid(1, 1)).first(), words.value(2, u"77"_s).toInt());
    };
    return {
        {u"start"_s, [this] { start(); }},
        {u"restart"_s, [this] { restart(); }},
        {u"stop"_s, [this] { return stop(); }},
        {u"interrupt"_s, [this] { return stop(SIGINT); }},
        {u"kill"_s, [this] { return stop(SIGKILL); }},
        {u"left-socket"_s, [] { return QFile::exists(kSocket) ? u"yes"_s : u"no"_s; }},
        {u"limits"_s,
         [this](const Words& limits) {
             m_files->setLimits(limits.at(0).toInt(), limits.at(1).toInt(), limits.at(2).toInt());
         }},
        {u"add"_s, [](const Words& words) { return add(callsOf(words), words.value(1)); }},
        {u"list"_s, [](const Words& words) { return list(callsOf(words)); }},
        {u"sizes"_s, [] { return sizes(client(kGreeting + kListAll)); }},
        {u"delete"_s,
         [=](const Words& words) {
             PHONE_ENG_RecentCall call = record(words);
             return PHONE_RecentCall_DeleteRecord(call);
         }},
        {u"clear"_s,
         [](const Words& words) { return PHONE_RecentCall_DeleteAll(callsOf(words).list, callsOf(words).type); }},
        {u"mark"_s, [=](const Words& words) { return int{rc::markRead(record(words))}; }},
        // What is on disk, and what others do to it.
        {u"file"_s, [this](const Words& words) { return text(m_files->uids(callsOf(words).list)); }},
        {u"read"_s, [this](const Words& words) { return slotsOf(callsOf(words), true); }},
        {u"unread"_s, [this](const Words& words) { return slotsOf(callsOf(words), false); }},
        {u"slots"_s,
         [this](const Words& words) {
             QList<int> named;
             for (int slot = 0; slot < zyn::kRecordSlots; ++slot)
                 named.prepend(m_files->recordIn(callsOf(words).list, slot).slot);
             return text(named);
         }},
        {u"put"_s,
         [this](const Words& words) {
             restore(callsOf(words).list, words.at(1), imageOf(callsOf(words), numbers(words.mid(2))));
         }},
        {u"cut"_s,
         [this](const Words& words) {
             const RC_CALL_CATEGORY_T list = callsOf(words).list;
             m_files->write(list, m_files->read(list).first(words.at(1).toInt())
                                      + QByteArray(words.value(2).toInt(), char(words.value(3).toInt())));
         }},
        {u"overwrite"_s,
         [this](const Words& words) {
             overwrite(callsOf(words).list, words.at(1).toInt(), words.at(2), words.at(3).toInt());
         }},
        {u"spoil"_s, [this](const Words& words) { spoil(callsOf(words).list, words.value(1)); }},
        {u"remove-directory"_s, [this] { return QDir(m_files->path() + u"/phone"_s).removeRecursively(); }},
        {u"last-dialed"_s,
         [] {
             QString number;
             StoreFixture::forgetSingletons();
             return RC_Interface().getLastDialedNumber(number) ? number : u"none"_s;
         }},
        {u"blank"_s,
         [this] { changeKeepingTime(m_files->file(kDialed.list), [] { StoreFixture::store().clearAllData(); }); }},
        // What others hear.
        {u"heard"_s,
         [this] { return u"%1 %2"_s.arg(m_heard.size()).arg(m_heard.value(m_heard.size() - 1)).trimmed(); }},
        {u"logged"_s, [this](const Words& words) { return m_service.logged().count(words.join(u' ').toUtf8()); }},
    };
}

int main(int argc, char** argv)
{
    return role::testMain<tst_RecentCallService>(argc, argv, {{u"add"_s, addUntilTaken}, {u"restore"_s, restoreOften}});
}

#include "tst_RecentCallService.moc"
