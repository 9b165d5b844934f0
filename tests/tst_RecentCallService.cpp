// The recent-call service, run as the process that it is, through the library and through bare sockets.
#include "platform/QCopChannel.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/support/Process.h"
#include "tests/support/Scenario.h"
#include "tests/support/SocketClient.h"
#include "tests/support/StoreFixture.h"
#include "tests/support/Timeout.h"

#include <algorithm>
#include <cstdio>

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

/// Bytes that clients send: "add", "list", "3:" and the data of such a frame, or what they are, each "**" some times.
QByteArray bytesOf(const QStringList& words)
{
    static const QMap<QString, QByteArray> names{
        {u"greet"_s, kGreeting}, {u"list"_s, kListAll}, {u"add"_s, kAddMissed}};
    QByteArray all;
    for (const QString& word : words) {
        const QString what = word.section(u"**"_s, 0, 0);
        const QByteArray bytes = what.contains(u':')
                                     ? frame(what.section(u':', 0, 0).toInt(), scenario::bytes(what.section(u':', 1)))
                                     : names.value(what, scenario::bytes(what));
        all += bytes.repeated(word.section(u"**"_s, 1).toInt() + (what == word ? 1 : 0));
    }
    return all;
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
bool changeKeepingTime(const QString& path, const std::function<bool()>& change)
{
    const QDateTime time = QFileInfo(path).lastModified();
    const bool isChanged = change();
    QFile file(path);
    return isChanged && file.open(QIODevice::ReadWrite) && file.setFileTime(time, QFileDevice::FileModificationTime);
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
    std::map<QString, UniqueFd> m_clients;
    UniqueFd m_manager;  ///< where a service manager hears
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
    bool restore(RC_CALL_CATEGORY_T list, const QString& how, const QByteArray& image) const
    {
        const QString path = m_files->file(list);
        const auto overwriteFile = [&] { return writeFile(path, image, QIODevice::ReadWrite); };
        if (how == u"renamed")
            return replaceFile(path, image);
        if (how == u"anew")
            return (!QFile::exists(path) || QFile::remove(path)) && writeFile(path, image);
        return how == u"over" ? overwriteFile()
                              : how == u"over-with-its-time" && changeKeepingTime(path, overwriteFile);
    }
    /// A service manager whose socket has a file, or none when @p mark is "@".
    bool startManager(const QString& mark)
    {
        const QByteArray name = QFile::encodeName(mark + m_files->path() + u"/notify"_s);
        const auto address = zyn::posix::unixAddress(QByteArray(name).replace('@', '\0'));
        m_manager = UniqueFd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        return qputenv("NOTIFY_SOCKET", name) && ::bind(m_manager.get(), address.get(), address.length) == 0;
    }
    QString heardByManager() const
    {
        QByteArray message(32, '\0');
        const ssize_t size = ::recv(m_manager.get(), message.data(), size_t(message.size()), 0);
        return QString::fromLatin1(message.first(std::max<qsizetype>(size, 0)));
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
        m_clients.clear();
        m_manager.reset();
        qunsetenv("NOTIFY_SOCKET");
        m_channel.reset();
        QVERIFY(!QFile::exists(kSocket) && !QFile::exists(kSocket + u".lock"_s));
    }

    void keepsTheCalls_data() { scenario::addRows(QFINDTESTDATA("data/recentcall_service.txt")); }
    void keepsTheCalls() { scenario::play(verbs()); }

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

    void dropsClientsThatKeepItWaiting()
    {
        restart(u"--patience 3000"_s);
        add(kDialed, u"x50"_s);
        const UniqueFd slow[] = {client({}), client(kGreeting), client(kGreeting + kAddMissed.chopped(1))};
        const UniqueFd deaf = client(kGreeting + kListAll.repeated(100));
        QCOMPARE(list(kAll), u"49..0"_s);
        for (const UniqueFd& fd : slow)
            QCOMPARE(sentBeforeClose(fd), QByteArray());
        const qsizetype wholeAnswers = qsizetype{100} * (16 + 50 * 228);
        QVERIFY(sentBeforeClose(deaf).value_or(QByteArray(wholeAnswers, '\0')).size() < wholeAnswers);
        QCOMPARE(m_service.log().count("in time: connection closed"), 4);
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
            ++own;
            // Behind all that the others have sent, an answer may take longer than a client waits for it.
            QTRY_COMPARE(uids(kMissed).size(), std::min(own, 50));
            if (own % 20 == 0)
                restart();
        }
        for (const auto& adder : adders)
            QCOMPARE(role::finish(*adder), 0);
        // Every add that was taken has used one uid.
        QCOMPARE(uids(kAll).value(0), int(adders.size()) * kEach + own - 1);
        QCOMPARE(uids(kAnswered).size(), 50);
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
    using Words = const QStringList&;
    const auto record = [](Words w) {
        return claim(callsOf(w), numbers(w.mid(1, 1)).first(), w.value(2, u"77"_s).toInt());
    };
    const auto inStore = [this](Words w) { return scenario::shell(m_files->path() + u"/phone"_s, w); };
    qputenv("RECENTCALLD", ZYN_RECENTCALLD);
    return {
        {u"start"_s, [this] { start(); }},
        {u"restart"_s, [this](Words w) { restart(w.join(u' ')); }},
        {u"stop"_s, [this] { return stop(); }},
        {u"interrupt"_s, [this] { return stop(SIGINT); }},
        {u"kill"_s, [this] { return stop(SIGKILL); }},
        {u"hang"_s, [this] { m_service.tell(SIGSTOP); }},
        {u"go-on"_s, [this] { m_service.tell(SIGCONT); }},
        {u"end"_s, [this] { m_service.tell(SIGTERM); }},
        {u"finish"_s, [this] { return m_service.finish(); }},
        {u"left-socket"_s, [] { return QFile::exists(kSocket) ? u"yes"_s : u"no"_s; }},
        {u"limits"_s, [this](Words w) { m_files->setLimits(w[0].toInt(), w[1].toInt(), w[2].toInt()); }},
        {u"add"_s, [](Words w) { return add(callsOf(w), w.value(1)); }},
        {u"list"_s, [](Words w) { return list(callsOf(w)); }},
        {u"delete"_s,
         [=](Words w) {
             PHONE_ENG_RecentCall call = record(w);
             return PHONE_RecentCall_DeleteRecord(call);
         }},
        {u"clear"_s, [](Words w) { return PHONE_RecentCall_DeleteAll(callsOf(w).list, callsOf(w).type); }},
        {u"mark"_s, [=](Words w) { return int{rc::markRead(record(w))}; }},
        // Bare clients, and the service manager.
        {u"client"_s, [this](Words w) { m_clients[w[0]] = client(bytesOf(w.mid(1))); }},
        {u"leave"_s, [this](Words w) { m_clients.erase(w[0]); }},
        {u"send"_s, [this](Words w) { send(m_clients.at(w[0]), bytesOf(w.mid(1))); }},
        {u"sizes"_s, [this](Words w) { return sizes(m_clients.at(w[0])); }},
        {u"closes"_s, [](Words w) { return sentBeforeClose(client(bytesOf(w) + kAddMissed)) == QByteArray(); }},
        {u"manager"_s, [this](Words w) { return startManager(w.value(0)); }},
        {u"hears"_s, [this] { return heardByManager(); }},
        {u"deaf-manager"_s, [](Words w) { return qputenv("NOTIFY_SOCKET", w[0].toLatin1()); }},
        // What is on disk, and what others do to it.
        {u"file"_s, [this](Words w) { return text(m_files->uids(callsOf(w).list)); }},
        {u"read"_s, [this](Words w) { return slotsOf(callsOf(w), true); }},
        {u"unread"_s, [this](Words w) { return slotsOf(callsOf(w), false); }},
        {u"slots"_s,
         [this](Words w) {
             QList<int> named;
             for (int slot = 0; slot < zyn::kRecordSlots; ++slot)
                 named.prepend(m_files->recordIn(callsOf(w).list, slot).slot);
             return text(named);
         }},
        {u"put"_s, [this](Words w) { return restore(callsOf(w).list, w[1], imageOf(callsOf(w), numbers(w.mid(2)))); }},
        {u"cut"_s,
         [this](Words w) {
             const QByteArray head = m_files->read(callsOf(w).list).first(w[1].toInt());
             m_files->write(callsOf(w).list, head + QByteArray(w.value(2).toInt(), char(w.value(3).toInt())));
         }},
        {u"overwrite"_s, [this](Words w) { overwrite(callsOf(w).list, w[1].toInt(), w[2], w[3].toInt()); }},
        {u"sh"_s, inStore},
        {u"last-dialed"_s,
         [] {
             QString number;
             StoreFixture::forgetSingletons();
             return RC_Interface().getLastDialedNumber(number) ? number : u"none"_s;
         }},
        {u"blank"_s,
         [this] {
             return changeKeepingTime(m_files->file(kDialed.list), [] { return StoreFixture::startAfresh(), true; });
         }},
        // What others hear.
        {u"heard"_s,
         [this] { return u"%1 %2"_s.arg(m_heard.size()).arg(m_heard.value(m_heard.size() - 1)).trimmed(); }},
        {u"logged"_s, [this](Words w) { return m_service.logged().count(scenario::bytes(w.join(u' '))); }},
    };
}

int main(int argc, char** argv)
{
    return role::testMain<tst_RecentCallService>(argc, argv, {{u"add"_s, addUntilTaken}, {u"restore"_s, restoreOften}});
}

#include "tst_RecentCallService.moc"
