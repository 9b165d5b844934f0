// The message channels: who gets which message, in which order, and what other processes can do about it.
#include "platform/QCopChannel.h"
#include "platform/posix/UnixSocket_p.h"
#include "tests/support/Descriptors.h"
#include "tests/support/Role.h"
#include "tests/support/Timeout.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QEventLoop>
#include <QtCore/QScopeGuard>
#include <QtCore/QSemaphore>
#include <QtCore/QTemporaryDir>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include <poll.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char kChannel[] = "/ZYN/test";
constexpr qsizetype kLimit = qsizetype{16} * 1024 * 1024;

/// A payload that tells its sender and its place among the sender's messages.
QByteArray numbered(const QByteArray& sender, int number, qsizetype size = 0)
{
    return (sender + ':' + QByteArray::number(number) + ':').leftJustified(size, '.');
}

/// A listener that checks that each sender's messages are in order, without a gap.
class Inbox : public QCopChannel
{
public:
    explicit Inbox(const QCString& channel = kChannel)
        : QCopChannel(channel)
    {}

    void receive(const QCString& message, const QByteArray& data) override
    {
        names.append(message);
        payloads.append(data.first(std::min<qsizetype>(data.size(), 16)));
        const QList<QByteArray> parts = data.split(':');
        isInOrder = isInOrder && (parts.size() < 3 || parts[1].toInt() == counts[parts[0]]++);
        QCopChannel::receive(message, data);
    }

    QList<QCString> names;
    QList<QByteArray> payloads;
    std::map<QByteArray, int> counts;
    bool isInOrder = true;
};

/// Runs @p body in an event loop, as its one turn, and leaves the loop at once.
void inOneTurn(const std::function<void()>& body)
{
    QEventLoop loop;
    QTimer::singleShot(0, &loop, [&] {
        body();
        loop.quit();
    });
    loop.exec();
}

/// What has come over a connection that is only a socket.
QByteArray receiveBare(const zyn::posix::UniqueFd& connection)
{
    QByteArray bytes(100, '\0');
    return bytes.first(std::max<qsizetype>(::recv(connection.get(), bytes.data(), 100, MSG_DONTWAIT), 0));
}

/// Listens on channels until "end" comes on each: NAME [COUNT]. Fails when a sender's messages have gaps or are not as
/// many as it says.
int listenRole(const QStringList& arguments)
{
    std::vector<std::unique_ptr<Inbox>> inboxes;
    QEventLoop loop;
    const int count = arguments.value(1, u"1"_s).toInt();
    int left = count;
    for (int i = 0; i < count; ++i) {
        inboxes.push_back(std::make_unique<Inbox>(arguments[0].toLatin1() + (i > 0 ? QByteArray::number(i) : "")));
        QObject::connect(inboxes.back().get(), &QCopChannel::received,
                         [&](const QCString& name) { name == "end" && --left == 0 ? loop.quit() : void(); });
    }
    role::sayReady();
    loop.exec();
    const auto isWhole = [](const auto& inbox) {
        return inbox->isInOrder && inbox->counts["test"] == inbox->payloads.last().toInt();
    };
    return std::ranges::all_of(inboxes, isWhole) ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Sends numbered messages, and as many again when it is destroyed if @p again is set.
struct Sender
{
    QByteArray name;
    int count;
    int size;
    bool again;
    int next = 0;
    bool isSent = true;

    Sender(const QStringList& arguments, bool sendsAgain)
        : name(arguments[0].toLatin1())
        , count(arguments[1].toInt())
        , size(arguments[2].toInt())
        , again(sendsAgain)
    {}
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    ~Sender() { again ? send() : void(); }
    void send()
    {
        for (const int end = next + count; next < end; ++next)
            isSent &= QCopChannel::send(kChannel, "n", numbered(name, next, size));
        role::sayReady();
    }
};

/// Ends the process in the way @p end says; "exit" does nothing.
void endProcess(const QString& end)
{
    if (end == u"SIGTERM")
        ::raise(SIGTERM);
    if (end == u"abort")
        ::raise(SIGABRT);
    if (end == u"exec")
        ::execl("/bin/true", "true", nullptr);
    if (end == u"fork" && ::fork() == 0) { // the child stays
        ::close(STDOUT_FILENO);            // who waits for the parent waits for its end
        ::close(STDERR_FILENO);
        ::alarm(role::kTimeout / 1000);
        ::pause();
    }
    if (end != u"exit")
        ::_exit(EXIT_SUCCESS);
}

/// Sends numbered messages: NAME COUNT SIZE WHERE END.
int sendRole(const QStringList& arguments)
{
    const rlimit none = {0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    const QString& where = arguments[3];
    if (where == u"static object") {
        static Sender sender(arguments, true);
        sender.send();
        return EXIT_SUCCESS;
    }
    if (where == u"object of a thread") {
        // Who waits for a QThread does not wait for these objects.
        std::thread([&] {
            static thread_local Sender sender(arguments, true);
            sender.send();
        }).join();
        return EXIT_SUCCESS;
    }
    Sender sender(arguments, false);
    const auto send = [&] {
        sender.send();
        endProcess(arguments[4]);
    };
    const std::unique_ptr<QThread> thread(QThread::create(send));
    if (where == u"thread")
        thread->start();
    else
        where == u"turn" ? inOneTurn(send) : send();
    thread->wait();
    std::exit(sender.isSent ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// Listens, and forks in a turn of its loop in which it has gathered messages. One child goes back to the loop and then
/// ends as programs do, one sends and stays.
int forkRole(const QStringList&)
{
    auto listener = std::make_unique<Inbox>();
    pid_t returning = -1;
    inOneTurn([&] {
        for (int i = 0; i < 3; ++i)
            QCopChannel::send(kChannel, "n", numbered("parent", i));
        returning = ::fork();
        if (returning == 0 || ::fork() != 0)
            return;
        ::alarm(role::kTimeout / 1000);
        for (int i = 0; i < 3; ++i)
            QCopChannel::send("/pid", QByteArray::number(::getpid()), numbered("child", i));
        ::pause();
    });
    QCoreApplication::processEvents();
    if (returning == 0) {
        listener.reset();
        std::exit(EXIT_SUCCESS);
    }
    ::waitpid(returning, nullptr, 0);
    role::sayReady();
    return ::pause();
}

} // namespace

class tst_QCopChannel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void handsEveryMessageToEveryListenerOnce();
    void refusesWhatIsNoMessage();
    void givesALateListenerNothingSentBefore();
    void writesAHandfulOfATurnAtOnceAndGathersABurst();
    void movesWhatWaitsOnOneChannelWithMessagesOnOthers();
    void losesNothingAndKeepsEachSendersOrder_data();
    void losesNothingAndKeepsEachSendersOrder();
    void keepsOrderOnMoreChannelsThanStayOpen_data();
    void keepsOrderOnMoreChannelsThanStayOpen();
    void isFoundAgainWhenItsSocketIsRemoved_data();
    void isFoundAgainWhenItsSocketIsRemoved();
    void listensLaterWhereItMayNotYet();
    void showsWhoCleansUpThatItLives();
    void removesTheSocketOfADeadListenerOnly();
    void removesWhatAKilledListenerLeavesOnAChannelThatNobodyUses();
    void listsOtherListenersSeldomWhenItHasMany();
    void losesNothingAcceptedForAStoppedListener();
    void tellsWhenDescriptorsAreTooFew();
    void connectsLaterToAListenerThatAcceptsNobody();
    void servesOthersWhenAListenerIsDestroyed();
    void deliversInANestedLoop();
    void servesEachThreadInItsLoop();
    void refusesADirectoryThatIsNotTheUsersAlone_data();
    void refusesADirectoryThatIsNotTheUsersAlone();
    void findsItsDirectory();
    void closesAConnectionThatSendsGarbage();
    void survivesForks();
    void losesASenderWhoseChildLives();

private:
    QByteArray root() const { return m_folder->path().toLocal8Bit() + "/qcop"; }
    QByteArray socketPath(const QByteArray& name) const { return root() + "/%2FZYN%2Ftest/" + name; }
    QStringList sockets() const
    {
        return QDir(QString::fromLocal8Bit(socketPath({}))).entryList(QDir::System | QDir::Hidden);
    }
    /// A listener that is only a socket, named "bare".
    zyn::posix::UniqueFd listenBare() const
    {
        ::mkdir(root().constData(), 0700);
        ::mkdir(socketPath({}).constData(), 0700);
        auto socket = zyn::posix::listenUnix(socketPath(".bare"), 0600);
        ::rename(socketPath(".bare").constData(), socketPath("bare").constData());
        return socket;
    }
    int pid(const QProcess& process) const { return static_cast<int>(process.processId()); }

    std::unique_ptr<QTemporaryDir> m_folder;
    qsizetype m_descriptors = 0;
};

void tst_QCopChannel::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("ZYN_QCOP_PATH", root() + "-unused");
    QVERIFY(QCopChannel::send("warm", "up") && QCopChannel("warm").isListening());
    m_descriptors = openDescriptors();
    qputenv("ZYN_QCOP_PATH", root());
}

void tst_QCopChannel::cleanup()
{
    QCOMPARE(sockets(), QStringList());
    // A sender lets go of the old connections when it sends in another place.
    qputenv("ZYN_QCOP_PATH", root() + "-unused");
    QVERIFY(QCopChannel::send("cool", "down"));
    QTRY_COMPARE(openDescriptors(), m_descriptors); // a thread's go a little after it is done
}

void tst_QCopChannel::handsEveryMessageToEveryListenerOnce()
{
    Inbox first;
    QCopChannel second(kChannel, nullptr, "second");
    QCOMPARE(second.objectName(), u"second"_s);
    QCOMPARE(second.channel(), QCString(kChannel));
    QCopChannel other("/zyn/TEST"), longName(QCString(300, 'c')), dots("..");
    QSignalSpy spy(&second, &QCopChannel::received), otherSpy(&other, &QCopChannel::received);
    QSignalSpy longSpy(&longName, &QCopChannel::received), dotSpy(&dots, &QCopChannel::received);
    const QByteArray binary("\0\xff\0", 3), large(qsizetype{1024} * 1024, 'L');

    QVERIFY(QCopChannel::send(kChannel, "empty"));
    QVERIFY(QCopChannel::send(kChannel, "binary \xe4 name", binary));
    QVERIFY(QCopChannel::send(kChannel, QCString("large\0cut", 9), large));
    QVERIFY(QCopChannel::send(QCString(300, 'c'), "long"));
    QVERIFY(QCopChannel::send("..", "dots"));
    QCOMPARE(spy.size(), 0); // never inside send

    QTRY_COMPARE(spy.size(), 3);
    QTRY_COMPARE(first.names, QList<QCString>({"empty", "binary \xe4 name", "large"}));
    QCOMPARE(spy[1], QVariantList({QByteArray("binary \xe4 name"), binary}));
    QCOMPARE(spy[2], QVariantList({QByteArray("large"), large}));
    QTRY_COMPARE(longSpy.size(), 1);
    QTRY_COMPARE(dotSpy.size(), 1);
    QCOMPARE(otherSpy.size(), 0);
    QCOMPARE(QCopChannel::channels(), QList<QCString>({"..", kChannel, "/zyn/TEST"}));
}

void tst_QCopChannel::refusesWhatIsNoMessage()
{
    Inbox inbox;
    for (const QCString& nameless : {QCString(), QCString("\0n", 2)})
        QVERIFY(!QCopChannel::send(nameless, "m") && !QCopChannel::send(kChannel, nameless));
    QVERIFY(!QCopChannel::send(kChannel, "m", QByteArray(kLimit, 'x')));
    QVERIFY(QCopChannel::send(kChannel, "m", QByteArray(kLimit - 1, 'x')));
    QTRY_COMPARE(inbox.names, QList<QCString>({"m"}));
}

void tst_QCopChannel::givesALateListenerNothingSentBefore()
{
    Inbox early;
    std::unique_ptr<Inbox> late;
    inOneTurn([&] {
        for (int i = 0; i < 3; ++i)
            QVERIFY(QCopChannel::send(kChannel, "before"));
        late = std::make_unique<Inbox>();
        QVERIFY(QCopChannel::send(kChannel, "after"));
    });
    QTRY_COMPARE(early.names.size(), 4);
    QTRY_COMPARE(late->names, QList<QCString>({"after"}));
}

void tst_QCopChannel::writesAHandfulOfATurnAtOnceAndGathersABurst()
{
    const auto listener = listenBare();
    zyn::posix::UniqueFd sender;
    QByteArrayList early;
    inOneTurn([&] {
        for (int i = 0; i < 20; ++i) {
            QVERIFY(QCopChannel::send(kChannel, "n", QByteArray(1, char('a' + i))));
            if (i == 0)
                sender = zyn::posix::acceptConnection(listener.get());
            early.append(receiveBare(sender));
        }
    });
    // The other dispatchers do not tell the end of a loop's last turn.
    const bool isGathered = QAbstractEventDispatcher::instance()->inherits("QEventDispatcherGlib");
    for (int i = 0; i < 20; ++i) {
        const QByteArray frame("\1\0\0\0\1\0\0\0n", 9);
        QCOMPARE(early[i], isGathered && i >= 16 ? QByteArray() : frame + char('a' + i));
    }
    QCOMPARE(receiveBare(sender).size(), isGathered ? 4 * 10 : 0);
    ::unlink(socketPath("bare").constData());
}

void tst_QCopChannel::movesWhatWaitsOnOneChannelWithMessagesOnOthers()
{
    const auto listener = listenBare();
    const QByteArray block(100'000, 'x');
    qsizetype sent = 0;
    qsizetype received = 0;
    while (sent < 10) // more than the socket takes
        sent += QCopChannel::send(kChannel, "n", block) ? 1 : 0;
    const auto sender = zyn::posix::acceptConnection(listener.get());
    for (int i = 0; i < 100; ++i) { // no event loop runs meanwhile
        QByteArray bytes(block.size(), '\0');
        for (ssize_t n = 1; n > 0; received += std::max<ssize_t>(n, 0))
            n = ::recv(sender.get(), bytes.data(), size_t(bytes.size()), MSG_DONTWAIT);
        QVERIFY(QCopChannel::send("other", "n"));
    }
    QCOMPARE(received, sent * (block.size() + 9));
    ::unlink(socketPath("bare").constData());
}

void tst_QCopChannel::losesNothingAndKeepsEachSendersOrder_data()
{
    QTest::addColumn<int>("count"); // of each of three senders
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QString>("end");
    for (const int size : {0, 1000}) { // a socket does not take all of the larger ones
        for (const QString& where : {u"main"_s, u"turn"_s, u"thread"_s})
            QTest::addRow("%d bytes each, sent in: %s", size, qPrintable(where)) << 1000 << size << where << u"exit"_s;
    }
    for (const QString& end : {u"SIGTERM"_s, u"abort"_s, u"exec"_s, u"_exit"_s})
        QTest::addRow("in a turn that ends with: %s", qPrintable(end)) << 3 << 0 << u"turn"_s << end;
    // More than is read at once, and then as much from a destructor; a socket takes all of it.
    for (const QString& where : {u"static object"_s, u"object of a thread"_s})
        QTest::addRow("by the last: %s", qPrintable(where)) << 40 << 1000 << where << u"exit"_s;
}

void tst_QCopChannel::losesNothingAndKeepsEachSendersOrder()
{
    QFETCH(int, count);
    QFETCH(int, size);
    QFETCH(QString, where);
    QFETCH(QString, end);
    Inbox inbox;
    std::vector<std::unique_ptr<QProcess>> senders;
    for (const QString& sender : {u"a"_s, u"b"_s, u"c"_s})
        senders.push_back(role::start(u"send"_s, {sender, QString::number(count), QString::number(size), where, end}));
    for (const auto& sender : senders)
        QVERIFY(role::waitReady(*sender)); // all is sent before anything is read
    const bool isEnded = count < 1000;
    for (const auto& sender : senders)
        QVERIFY(!isEnded || role::finish(*sender) == (end == u"SIGTERM" || end == u"abort" ? -1 : EXIT_SUCCESS));
    QTRY_COMPARE(inbox.names.size(), qsizetype{where.contains(u"object") ? 6 : 3} * count);
    QVERIFY(inbox.isInOrder);
    for (const auto& sender : senders)
        QVERIFY(isEnded || role::finish(*sender) == EXIT_SUCCESS);
}

void tst_QCopChannel::keepsOrderOnMoreChannelsThanStayOpen_data()
{
    QTest::addColumn<bool>("isSlow");
    QTest::newRow("a listener that has received nothing when it is given up") << true;
    QTest::newRow("a listener that receives all at once") << false;
}

void tst_QCopChannel::keepsOrderOnMoreChannelsThanStayOpen()
{
    QFETCH(bool, isSlow);
    constexpr int kChannels = 100;
    constexpr int kRounds = 4;
    rlimit usual = {};
    ::getrlimit(RLIMIT_NOFILE, &usual);
    const auto restore = qScopeGuard([&] { ::setrlimit(RLIMIT_NOFILE, &usual); });
    const auto process = role::start(u"listen"_s, {u"many"_s, QString::number(kChannels)});
    QVERIFY(role::waitReady(*process));
    const rlimit low = {256, usual.rlim_max}; // of which connections get a part
    ::setrlimit(RLIMIT_NOFILE, &low);
    if (isSlow)
        ::kill(pid(*process), SIGSTOP);
    for (int i = 0; i <= kRounds; ++i) {
        for (int channel = 0; channel < kChannels; ++channel) {
            const QByteArray name = channel > 0 ? "many" + QByteArray::number(channel) : "many";
            QVERIFY(i < kRounds
                        ? QCopChannel::send(name, "n", numbered("test", i, i == 0 ? 60'000 : 0)) // several reads
                        : QCopChannel::send(name, "end", QByteArray::number(kRounds)));
        }
    }
    if (isSlow)
        ::kill(pid(*process), SIGCONT);
    else
        QVERIFY(openDescriptors() < 200);
    QTRY_COMPARE(process->state(), QProcess::NotRunning);
    QCOMPARE(role::finish(*process), EXIT_SUCCESS);
}

void tst_QCopChannel::isFoundAgainWhenItsSocketIsRemoved_data()
{
    QTest::addColumn<QByteArray>("removed");
    QTest::newRow("the socket") << QByteArray("/qcop/%2FZYN%2Ftest/*");
    QTest::newRow("the channel's directory") << QByteArray("/qcop/%2FZYN%2Ftest");
    QTest::newRow("the directory of all channels") << QByteArray("/qcop");
    QTest::newRow("the one above, which is made again") << QByteArray();
    QTest::newRow("the one above, moved elsewhere") << QByteArray("moved");
}

void tst_QCopChannel::isFoundAgainWhenItsSocketIsRemoved()
{
    QFETCH(QByteArray, removed);
    const int times = removed == "moved" ? 1 : 3; // each at once after the one before
    const QByteArray base = m_folder->path().toLocal8Bit() + "/base";
    QCOMPARE(::mkdir(base.constData(), 0700), 0);
    qputenv("ZYN_QCOP_PATH", base + "/qcop");
    const auto remove = [&] {
        const bool isMoved = removed == "moved";
        const QByteArray command = isMoved ? "mv " + base + ' ' + base + "-moved" : "rm -r " + base + removed;
        return std::system(command.constData()) == 0;
    };
    {
        Inbox inbox, other;
        QVERIFY(QCopChannel::send(kChannel, "n", numbered("warm", 0)));
        QTRY_COMPARE(inbox.names.size(), 1);
        for (int i = 0; i < times; ++i) {
            QVERIFY(remove());
            QVERIFY(!inbox.isListening());
            if (!QFile::exists(QString::fromLocal8Bit(base))) {
                QCoreApplication::processEvents(); // finds nothing to make it in
                QCOMPARE(::mkdir(base.constData(), 0700), 0);
            }
            QVERIFY(QCopChannel::send(kChannel, "n", numbered("warm", 1 + i))); // by the connection that it has
            QTRY_VERIFY(inbox.isListening() && other.isListening());
        }
        QVERIFY(QCopChannel::send(kChannel, "n", numbered("warm", 1 + times)));
        const std::unique_ptr<QThread> cold(
            QThread::create([] { QCopChannel::send(kChannel, "n", numbered("cold", 0)); }));
        cold->start();
        QVERIFY(cold->wait(role::kTimeout));
        QTRY_COMPARE(inbox.names.size(), times + 3);
        QTRY_COMPARE(other.names.size(), times + 3);
        QVERIFY(inbox.isInOrder && other.isInOrder);
    }
    QVERIFY(!QFile::exists(QString::fromLocal8Bit(base + "/qcop/%2FZYN%2Ftest")));
}

void tst_QCopChannel::listensLaterWhereItMayNotYet()
{
    QCOMPARE(::mkdir(root().constData(), 0755), 0);
    QTest::ignoreMessage(QtWarningMsg, "QCopChannel: no listener on \"/ZYN/test\" in \"" + root() + '"');
    Inbox inbox;
    QVERIFY(!inbox.isListening());
    QCOMPARE(::chmod(root().constData(), 0700), 0);
    QTRY_VERIFY(inbox.isListening());
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QTRY_COMPARE(inbox.names.size(), 1);
}

void tst_QCopChannel::showsWhoCleansUpThatItLives()
{
    const Inbox inbox;
    QFile list(u"/proc/net/unix"_s);
    QVERIFY(list.open(QIODevice::ReadOnly));
    QVERIFY(list.readAll().contains(' ' + socketPath(sockets().at(0).toLocal8Bit()) + '\n'));
}

void tst_QCopChannel::removesTheSocketOfADeadListenerOnly()
{
    Inbox living;
    const auto dead = role::start(u"listen"_s, {QString::fromLatin1(kChannel)});
    QVERIFY(role::waitReady(*dead));
    // Of a process that has another number where it lives, and that does not listen yet.
    const QByteArray elsewhere = socketPath("2147483647-1");
    const auto young = zyn::posix::unixSocket();
    const auto address = zyn::posix::unixAddress(elsewhere);
    QCOMPARE(::fchmod(young.get(), 0200), 0);
    QCOMPARE(::bind(young.get(), address.get(), address.length), 0);
    QVERIFY(QCopChannel::send(kChannel, "n"));
    dead->kill();
    QCOMPARE(role::finish(*dead), -1);
    QCOMPARE(sockets().size(), 3);

    QVERIFY(QCopChannel::send(kChannel, "n"));
    QCOMPARE(sockets().size(), 2);
    QTRY_COMPARE(living.names.size(), 2);
    QVERIFY(sockets().contains(u"2147483647-1"_s));
    QVERIFY(::listen(young.get(), 1) == 0 && ::chmod(elsewhere.constData(), 0600) == 0);
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QCOMPARE(receiveBare(zyn::posix::acceptConnection(young.get())), QByteArray("\1\0\0\0\0\0\0\0n", 9));
    ::unlink(elsewhere.constData());
}

void tst_QCopChannel::removesWhatAKilledListenerLeavesOnAChannelThatNobodyUses()
{
    const auto dead = role::start(u"listen"_s, {QString::fromLatin1(kChannel)});
    QVERIFY(role::waitReady(*dead));
    dead->kill();
    QCOMPARE(role::finish(*dead), -1);
    QCOMPARE(sockets().size(), 1);
    const auto other = role::start(u"listen"_s, {u"many"_s});
    QVERIFY(role::waitReady(*other));
    QVERIFY(!QFile::exists(QString::fromLocal8Bit(socketPath({}))));
    other->terminate();
    role::finish(*other);
    QVERIFY(QCopChannel::send("many", "removes the other's"));
}

void tst_QCopChannel::listsOtherListenersSeldomWhenItHasMany()
{
    const Inbox first;
    const zyn::posix::UniqueFd watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    QVERIFY(::inotify_add_watch(watch.get(), socketPath({}).constData(), IN_OPEN) >= 0);
    std::vector<std::unique_ptr<Inbox>> many;
    int lists = 0;
    while (many.size() < 200) {
        many.push_back(std::make_unique<Inbox>());
        std::array<char, 4096> events = {};
        lists += ::read(watch.get(), events.data(), events.size()) > 0 ? 1 : 0;
    }
    QVERIFY(lists < 100);
}

void tst_QCopChannel::losesNothingAcceptedForAStoppedListener()
{
    const auto process = role::start(u"listen"_s, {QString::fromLatin1(kChannel)});
    QVERIFY(role::waitReady(*process));
    int sent = 0;
    while (sent < 4000 && QCopChannel::send(kChannel, "n", numbered("test", sent, 8000))) {
        if (++sent == 100)
            ::kill(pid(*process), SIGSTOP);
    }
    QVERIFY2(qsizetype{sent} * 8000 >= kLimit - 8000 && sent < 4000, QByteArray::number(sent));
    Inbox other;
    QVERIFY(!QCopChannel::send(kChannel, "n", QByteArray(8000, 'x'))); // too much waits for the first
    QTRY_COMPARE(other.names.size(), 1);
    qputenv("ZYN_QCOP_PATH", root() + "-unused");
    QVERIFY(QCopChannel::send(kChannel, "elsewhere"));
    qputenv("ZYN_QCOP_PATH", root());

    ::kill(pid(*process), SIGCONT);
    QTRY_VERIFY(QCopChannel::send(kChannel, "end", QByteArray::number(sent)));
    QTRY_COMPARE(process->state(), QProcess::NotRunning);
    QCOMPARE(role::finish(*process), EXIT_SUCCESS);
}

void tst_QCopChannel::tellsWhenDescriptorsAreTooFew()
{
    rlimit usual = {};
    ::getrlimit(RLIMIT_NOFILE, &usual);
    for (size_t spare = 0; spare < 6; ++spare) {
        Inbox late; // the sender does not know it yet
        std::vector<zyn::posix::UniqueFd> held;
        while (held.size() < 64)
            held.emplace_back(::dup(STDERR_FILENO));
        const rlimit low = {static_cast<rlim_t>(held.back().get()) + 1, usual.rlim_max};
        held.resize(held.size() - spare);
        ::setrlimit(RLIMIT_NOFILE, &low);
        const bool isSent = QCopChannel::send(kChannel, "n");
        ::setrlimit(RLIMIT_NOFILE, &usual);
        QVERIFY(QCopChannel::send(kChannel, "n"));
        QTRY_COMPARE(late.names.size(), isSent ? 2 : 1);
    }
}

void tst_QCopChannel::connectsLaterToAListenerThatAcceptsNobody()
{
    const auto busy = listenBare();
    QCOMPARE(::listen(busy.get(), 0), 0);
    const auto intruder = zyn::posix::connectUnixAtOnce(socketPath("bare"));
    QVERIFY(intruder.isValid());
    QVERIFY(QCopChannel::send(kChannel, "n", "waits"));
    QCoreApplication::processEvents();

    QVERIFY(zyn::posix::acceptConnection(busy.get()).isValid());
    pollfd waiting = {busy.get(), POLLIN, 0};
    QTRY_COMPARE(::poll(&waiting, 1, 0), 1);
    const auto sender = zyn::posix::acceptConnection(busy.get());
    QCOMPARE(receiveBare(sender), QByteArray("\1\0\0\0\5\0\0\0nwaits", 14));
    ::unlink(socketPath("bare").constData());
}

void tst_QCopChannel::servesOthersWhenAListenerIsDestroyed()
{
    std::array<std::unique_ptr<Inbox>, 4> inboxes;
    int received = 0;
    for (size_t i = 0; i < inboxes.size(); ++i) {
        inboxes[i] = std::make_unique<Inbox>();
        const auto destroyTwo = [&, i] {
            if (++received == 1) {
                inboxes[(i + 1) % inboxes.size()].reset();
                inboxes[i].reset();
            }
        };
        connect(inboxes[i].get(), &QCopChannel::received, this, destroyTwo);
    }
    inOneTurn([] {
        for (int i = 0; i < 100; ++i)
            QVERIFY(QCopChannel::send(kChannel, "n", numbered("test", i)));
    });
    QTRY_COMPARE(received, 1 + 2 * 100);
}

void tst_QCopChannel::deliversInANestedLoop()
{
    Inbox inbox;
    int depth = 0;
    QList<int> depths;
    const auto waitForAll = [&] {
        depths.append(depth++);
        if (inbox.names.size() < 3) // waits, as for an answer, for messages that have been read already
            QTRY_COMPARE(inbox.names.size(), 3);
        --depth;
    };
    connect(&inbox, &QCopChannel::received, this, waitForAll);
    inOneTurn([] {
        for (int i = 0; i < 3; ++i)
            QVERIFY(QCopChannel::send(kChannel, "n", numbered("test", i)));
    });
    QTRY_COMPARE(depths, QList<int>({0, 1, 2}));
    QVERIFY(inbox.isInOrder);
}

void tst_QCopChannel::servesEachThreadInItsLoop()
{
    QSemaphore isListening;
    QThread* receivedIn = nullptr;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        Inbox there;
        QEventLoop loop;
        connect(&there, &QCopChannel::received, &loop, &QEventLoop::quit);
        connect(&there, &QCopChannel::received, &there, [&] { receivedIn = QThread::currentThread(); });
        isListening.release();
        loop.exec();
    }));
    thread->start();
    QVERIFY(isListening.tryAcquire(1, role::kTimeout));
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QVERIFY(thread->wait(role::kTimeout));
    QCOMPARE(receivedIn, thread.get());
}

void tst_QCopChannel::refusesADirectoryThatIsNotTheUsersAlone_data()
{
    QTest::addColumn<QByteArray>("below");
    QTest::addColumn<QByteArray>("damage");
    for (const QByteArray below : {"", "/%2FZYN%2Ftest"}) {
        for (const QByteArray damage : {"open to others", "somebody else's", "a link"})
            QTest::addRow("%s: %s", below.isEmpty() ? "root" : "channel", damage.constData()) << below << damage;
    }
}

void tst_QCopChannel::refusesADirectoryThatIsNotTheUsersAlone()
{
    QFETCH(QByteArray, below);
    QFETCH(QByteArray, damage);
    const QByteArray path = root() + below, moved = root() + "-moved";
    QVERIFY(::mkdir(root().constData(), 0700) == 0 && ::mkdir(socketPath({}).constData(), 0700) == 0);
    QVERIFY(QCopChannel::send(kChannel, "n")); // knows them, and looks again when they change
    if (damage == "open to others")
        QCOMPARE(::chmod(path.constData(), 0710), 0);
    else if (damage == "a link")
        QVERIFY(::rename(path.constData(), moved.constData()) == 0
                && ::symlink(moved.constData(), path.constData()) == 0);
    else if (::chown(path.constData(), 65534, 65534) != 0)
        QSKIP("only root can give a directory away");
    QVERIFY(!QCopChannel::send(kChannel, "n"));
    QTest::ignoreMessage(QtWarningMsg, "QCopChannel: no listener on \"/ZYN/test\" in \"" + root() + '"');
    Inbox deaf;
}

void tst_QCopChannel::findsItsDirectory()
{
    const QByteArray folder = m_folder->path().toLocal8Bit();
    const auto oldRuntime = qScopeGuard([old = qgetenv("XDG_RUNTIME_DIR")] { qputenv("XDG_RUNTIME_DIR", old); });
    qunsetenv("ZYN_QCOP_PATH");
    qputenv("XDG_RUNTIME_DIR", folder + "/late/");
    QVERIFY(!QCopChannel::send(kChannel, "n")); // who comes later must not look elsewhere
    QCOMPARE(::mkdir((folder + "/late").constData(), 0700), 0);
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QVERIFY(QFile::exists(m_folder->filePath(u"late/zynqcop"_s)));
    qunsetenv("XDG_RUNTIME_DIR");
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QVERIFY(QFile::exists(u"/tmp/zynqcop-%1"_s.arg(::geteuid())));
    qputenv("ZYN_QCOP_PATH", "relative");
    QVERIFY(!QCopChannel::send(kChannel, "n"));
    qputenv("ZYN_QCOP_PATH", root() + QByteArray(100, 'l')); // longer than the address of a socket
    Inbox inbox;
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QTRY_COMPARE(inbox.names.size(), 1);
}

void tst_QCopChannel::closesAConnectionThatSendsGarbage()
{
    const QByteArray garbage[] = {{"\0\0\0\0\1\0\0\0x", 9},    // no name
                                  {"\2\0\0\0\0\0\0\0\0n", 10}, // a name with a NUL
                                  {"\1\0\0\1\0\0\0\0", 8},     // a name too long
                                  {"\1\0\0\0\0\0\0\1", 8},     // a payload too long
                                  {"\1\0\0\0\xff\xff\xff\xff", 8}};
    for (const QByteArray& bytes : garbage) {
        Inbox inbox;
        const auto hostile = zyn::posix::connectUnixAtOnce(socketPath(sockets().at(0).toLatin1()));
        for (const char byte : QByteArray("\3\0\0\0\4\0\0\0onedata\2\0\0\0\0\0\0\0hi", 25)) {
            QCOMPARE(::write(hostile.get(), &byte, 1), 1);
            QCoreApplication::processEvents();
        }
        QCOMPARE(::write(hostile.get(), bytes.constData(), size_t(bytes.size())), bytes.size());
        char none = 0;
        QTRY_COMPARE(::recv(hostile.get(), &none, 1, MSG_DONTWAIT), 0); // the end
        QVERIFY(QCopChannel::send(kChannel, "after"));
        QTRY_COMPARE(inbox.names, QList<QCString>({"one", "hi", "after"}));
        QCOMPARE(inbox.payloads, QList<QByteArray>({"data", "", ""}));
    }
}

void tst_QCopChannel::survivesForks()
{
    Inbox inbox;
    QCopChannel pids("/pid");
    QSignalSpy children(&pids, &QCopChannel::received);
    const auto process = role::start(u"fork"_s);
    QVERIFY(role::waitReady(*process));
    QTRY_COMPARE(children.size(), 3);
    QTRY_COMPARE(inbox.counts["parent"], 3);
    QVERIFY(inbox.isInOrder);
    QCOMPARE(sockets().size(), 2); // the first child left its parent's alone
    process->kill();
    QCOMPARE(role::finish(*process), -1);
    QVERIFY(QCopChannel::send(kChannel, "n"));
    QCOMPARE(sockets().size(), 1); // the second does not keep its parent's alive
    QTRY_COMPARE(inbox.names.size(), 4);
    QCOMPARE(::kill(children[0][0].toInt(), SIGKILL), 0);
}

void tst_QCopChannel::losesASenderWhoseChildLives()
{
    Inbox inbox;
    const qsizetype before = openDescriptors();
    const auto process = role::start(u"send"_s, {u"parent"_s, u"1"_s, u"0"_s, u"main"_s, u"fork"_s});
    QCOMPARE(role::finish(*process), EXIT_SUCCESS);
    process->close();
    QTRY_COMPARE(inbox.names.size(), 1);
    QTRY_COMPARE(openDescriptors(), before); // no connection is left
}

int main(int argc, char** argv)
{
    return role::testMain<tst_QCopChannel>(
        argc, argv, {{u"listen"_s, &listenRole}, {u"send"_s, &sendRole}, {u"fork"_s, &forkRole}});
}

#include "tst_QCopChannel.moc"
