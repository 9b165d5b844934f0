// The clients of the recent-call service and of the phone server, against services that do as they like.
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/PHONE_RecentCallInterface.h"
#include "recentcall/utility/RC_Interface.h"
#include "support/Scenario.h"
#include "support/ScriptedService.h"
#include "support/StoreFixture.h"
#include "support/Timeout.h"
#include "utility/PHONE_VoiceJava.h"
#include "utility/PHONE_VoiceSTK.h"

#include <QtCore/QtEndian>

#include <vector>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

using End = ScriptedService::End;
using Words = QStringList;
using Wrapper = RC_RecordInterfaceImpl;

constexpr char kRecentCalls[] = "/tmp/zynrecentcallcom/recentcall_interface";
constexpr char kPhone[] = "/tmp/zynphonecom/voicecall_interface";

/// A record that no reader may take for one of its own kind.
class OtherRecord : public RC_RecordInterface
{
public:
    void setCategory(RC_CALL_CATEGORY_T) override {}
    RC_CALL_CATEGORY_T getCategory() const override { return RC_CALL_CATEGORY_NONE; }
    void setPhoneNumber(const QString&) override {}
    QString getPhoneNumber() const override { return {}; }
    void setStartDateTime(const QDateTime&) override {}
    QDateTime getStartDateTime() const override { return {}; }
    void setDuration(int) override {}
    int getDuration() const override { return 0; }
    void setCompletedStatus(bool) override {}
    bool getCompletedStatus() const override { return false; }
    bool isRead() const override { return false; }
    int getUID() const override { return 0; }
    RC_CALL_TYPE_T getCallType() const override { return RC_CALL_TYPE_VOICE; }
};

PHONE_ENG_RecentCall record(int uid = 9)
{
    PHONE_ENG_RecentCall call(u"112"_s, QDateTime::fromSecsSinceEpoch(1), 2);
    call.uid = uid;
    return call;
}

template<typename Request>
int with(Request request)
{
    PHONE_ENG_RecentCall call = record();
    return request(call);
}

/// The requests to the recent-call service, each with its result.
constexpr int (*kRequests[])() = {
    [] { return with(&PHONE_RecentCall_AddRecord); },
    [] { return with(&PHONE_RecentCall_DeleteRecord); },
    [] { return PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE); },
    [] { return RC_Interface().addRecord(Wrapper(new PHONE_ENG_RecentCall(record()))); },
    [] { return RC_Interface().deleteRecord(Wrapper(new PHONE_ENG_RecentCall(record()))); },
    [] { return RC_Interface().deleteRecordAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_PTT2); },
    [] { return PHONE_RecentCall_Interface().rc_add(record()); },
    [] { return PHONE_RecentCall_Interface().rc_delete(record()); },
    [] { return PHONE_RecentCall_Interface().rc_deleteAll(RC_CALL_CATEGORY_MISSED); },
};

/// Data in pieces: "#" is for a number, "@" for the record of a uid; "-" takes away the last byte.
QByteArray dataOf(const QString& pieces)
{
    QByteArray data;
    for (const QString& piece : pieces.split(u',', Qt::SkipEmptyParts)) {
        const int32_t number = qToLittleEndian(piece.mid(1).toInt());
        if (piece == u"-"_s)
            data.chop(1);
        else if (piece.startsWith(u'#'))
            data.append(reinterpret_cast<const char*>(&number), sizeof number);
        else
            data += piece.startsWith(u'@') ? zyn::bytesOf(record(number)).toByteArray() : scenario::bytes(piece);
    }
    return data;
}

/// Frames, each a code and its data behind a colon; "-" takes away the last byte, "x9" makes nine of all so far, and
/// "%" begins bytes as they are.
QByteArray framesOf(const Words& words)
{
    QByteArray frames;
    for (const QString& word : words) {
        if (word == u"-"_s)
            frames.chop(1);
        else if (word.startsWith(u'x'))
            frames = frames.repeated(word.mid(1).toInt());
        else if (word.startsWith(u'%'))
            frames += scenario::bytes(word);
        else
            frames += ScriptedService::frame(word.section(u':', 0, 0).toInt(), dataOf(word.section(u':', 1)));
    }
    return frames;
}

/// A recent-call service that answers with frames, unless it is said to be none.
std::unique_ptr<ScriptedService> serve(const Words& frames)
{
    return frames == Words{u"none"_s} ? nullptr : std::make_unique<ScriptedService>(kRecentCalls, framesOf(frames));
}

/// The result of each request, or what it sends; there the record reads as one word.
QString askAll(const Words& frames, bool showsSent)
{
    QStringList all;
    for (const auto& request : kRequests) {
        const auto service = serve(frames);
        const QString result = QString::number(request());
        const auto sent = [&] { return service->received().toHex().replace(dataOf(u"@9"_s).toHex(), "RECORD"); };
        all += showsSent ? QString::fromLatin1(sent()) : result;
    }
    return all.join(u' ');
}

/// What becomes of a list that has an old record: the result, and the uids.
QString fetched(const Words& frames)
{
    const auto service = serve(frames);
    QPtrList<RC_RecordInterface> list;
    list.append(new Wrapper(u"old"_s, {}, 0));
    QString shown = QString::number(RC_Interface().getRecordList(list, RC_CALL_CATEGORY_DIALED, RC_CALL_TYPE_PTT1));
    shown += (list.autoDelete() ? u":"_s : u" not owned:"_s);
    for (const RC_RecordInterface* item : list)
        shown += u' ' + (item->getPhoneNumber() == u"old"_s ? u"old"_s : QString::number(item->getUID()));
    list.setAutoDelete(true);
    return shown + (service && list.isEmpty() ? u' ' + QString::fromLatin1(service->received().toHex()) : QString());
}

using Codes = std::vector<int>;

Codes g_replies;
char g_firstByte; ///< of the latest reply's data
std::function<void()> g_onReply;

/// Codes with commas between them: "7x9" is nine times 7.
Codes codesOf(const QString& word, bool java)
{
    Codes codes;
    for (const QString& text : word.split(u',', Qt::SkipEmptyParts)) {
        const int code = text.section(u'x', 0, 0).toInt();
        codes.insert(codes.end(), std::max<size_t>(text.section(u'x', 1).toUInt(), 1), java ? code & 0xFF : code);
    }
    return codes;
}

void onReply(int code)
{
    g_replies.push_back(code);
    g_onReply();
}

void onJavaReply(char code)
{
    onReply(static_cast<unsigned char>(code));
}

/// Either client of the phone server, as a test sees it.
struct VoiceClient
{
    explicit VoiceClient(bool isJava)
        : java(isJava)
    {
        exists = java ? PHONE_VoiceCall_Java_Init(&onJavaReply) == 1 : (stk = PHONE_VoiceSTK_Init()) != nullptr;
        if (stk)
            QObject::connect(stk, &PHONE_VoiceSTK::MessageReceived, stk, [](int code, const char* data) {
                g_firstByte = data ? *data : '\0';
                onReply(code);
            });
    }
    int call() const
    {
        PHONE_VoiceSTK_PARAMETER parameter = {{1, 2, 3}};
        return java ? PHONE_VoiceCall_Java_MakeCall(1, "1\xe9", -2) : PHONE_VOICESTK_MakeCall(stk, &parameter);
    }
    void end() const { java ? PHONE_VoiceCall_Java_DeInit(1) : PHONE_VoiceSTK_DeInit(stk); }
    QByteArray greeting() const { return framesOf({java ? u"0:#1"_s : u"0:#0"_s}); }
    QByteArray callFrame() const
    {
        return ScriptedService::frame(2, java ? QByteArray("\xfe\xff\xff\xff\61\xe9").leftJustified(48, '\0')
                                              : QByteArray("\1\2\3").leftJustified(108, '\0'));
    }

    bool java;
    bool exists;
    PHONE_VoiceSTK* stk = nullptr;
};

} // namespace

class tst_ServiceClients : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        g_replies.clear();
        g_onReply = [] {};
        QCoreApplication::processEvents();
        m_descriptors = openDescriptors();
        RecentCall_dataDir();
        QVERIFY(!VoiceClient(false).exists && !VoiceClient(true).exists); // no server yet; makes the directory
    }
    void cleanup() { QCOMPARE(openDescriptors(), m_descriptors); }

    void makesTheSocketDirectoryOpenToAll();
    void takesEveryAnswer_data() { scenario::addRows(QFINDTESTDATA("data/service_clients.txt")); }
    void takesEveryAnswer();
    void trustsOnlyItsOwnUsersServices();
    void readsTheLastDialedNumber();
    void mayBeEndedByItsReply();
    void isLostWhenARequestWentOutInPart();
    void keepsToOneJavaConnection();

private:
    void voice(const Words& words, bool lost, End end = End::ReadOn) const;

    qsizetype m_descriptors = 0;
};

void tst_ServiceClients::makesTheSocketDirectoryOpenToAll()
{
    const QString name = u"/tmp/zynrecentcallcom"_s;
    const auto mode = [](const QString& directory) {
        struct stat status = {};
        return ::stat(QFile::encodeName(directory).constData(), &status) == 0 ? status.st_mode & 07777U : 0;
    };
    QVERIFY(QDir().rmdir(name));
    const mode_t oldMask = ::umask(077);
    QCOMPARE(RecentCall_dataDir(), name + u'/');
    ::umask(oldMask);
    QCOMPARE(mode(name), 0777U);

    // A link of that name is nobody's leave to open another directory.
    const QTemporaryDir elsewhere;
    QVERIFY(QDir().rmdir(name) && QFile::link(elsewhere.path(), name));
    RecentCall_dataDir();
    QCOMPARE(mode(elsewhere.path()), 0700U);
    QVERIFY(QFile::remove(name));
}

void tst_ServiceClients::takesEveryAnswer()
{
    scenario::play({
        {u"sent"_s, [] { return askAll({u"0"_s}, true); }},
        {u"results"_s, [](const Words& frames) { return askAll(frames, false); }},
        {u"fetched"_s, fetched},
        {u"add-other"_s, [] { return RC_Interface().addRecord(OtherRecord()); }},
        {u"delete-other"_s, [] { return RC_Interface().deleteRecord(OtherRecord()); }},
        {u"leave-socket"_s, [] { return zyn::posix::listenUnix(kRecentCalls, 0600).isValid(); }},
        {u"remove-socket"_s, [] { return QFile::remove(QLatin1String(kRecentCalls)); }},
        {u"voice"_s, [this](const Words& words) { voice(words, false); }},
        {u"voice-lost"_s, [this](const Words& words) { voice(words, true); }},
        {u"voice-ended"_s, [this](const Words& words) { voice(words, true, End::Close); }},
    });
}

/// Both clients of the phone server get the replies of the first word out of the frames of the others.
void tst_ServiceClients::voice(const Words& words, bool lost, End end) const
{
    for (const bool java : {false, true}) {
        const Codes expected = codesOf(words[0], java);
        g_replies.clear();
        ScriptedService service(kPhone, framesOf(words.mid(1)), 1, end);
        const VoiceClient client(java);
        QVERIFY(client.exists);
        QTRY_COMPARE(g_replies, expected);
        if (lost) {
            QTRY_VERIFY(service.isDone());
            QTRY_COMPARE(openDescriptors(), m_descriptors + 1); // the listener's
        }
        if (client.stk)
            client.stk->ReadData(STDERR_FILENO); // is not its socket
        QCOMPARE(client.call(), lost ? -1 : 0);
        client.end();
        QCOMPARE(service.received(),
                 client.greeting() + (lost ? QByteArray() : client.callFrame() + framesOf({u"1"_s})));
        QCOMPARE(g_replies, expected);
    }
}

void tst_ServiceClients::trustsOnlyItsOwnUsersServices()
{
    constexpr uid_t kNobody = 65534;
    // The service's user is the one that it began to listen as.
    if (::seteuid(kNobody) != 0)
        QSKIP("only root can play another user");
    ScriptedService service(kRecentCalls, ScriptedService::frame(0));
    QCOMPARE(::seteuid(0), 0);
    QCOMPARE(with(&PHONE_RecentCall_DeleteRecord), 2);
    QCOMPARE(service.received(), QByteArray());
}

void tst_ServiceClients::readsTheLastDialedNumber()
{
    StdoutCapture output;
    const StoreFixture fixture;
    QString number = u"unchanged"_s;
    QVERIFY(!RC_Interface().getLastDialedNumber(number));
    QCOMPARE(number, u"unchanged"_s);
    fixture.add(RC_CALL_CATEGORY_DIALED, "111");
    fixture.add(RC_CALL_CATEGORY_DIALED, "222");
    QVERIFY(RC_Interface().getLastDialedNumber(number));
    QCOMPARE(number, u"222"_s);
    QVERIFY(PHONE_RecentCall_Interface().getLastDialedNumber(number));
    QVERIFY(PHONE_RecentCallInterface().getLastDialedNumber(number));
    fixture.write(RC_CALL_CATEGORY_DIALED, "damaged");
    QVERIFY(!PHONE_RecentCallInterface().getLastDialedNumber(number));
}

void tst_ServiceClients::mayBeEndedByItsReply()
{
    for (const bool java : {false, true}) {
        g_replies.clear();
        ScriptedService service(kPhone, framesOf({u"2:data"_s, u"3"_s}), 1, End::ReadOn);
        const VoiceClient client(java);
        g_onReply = [&] { client.end(); };
        QTRY_VERIFY(service.isDone());
        QCOMPARE(g_replies, Codes{2});
        QVERIFY(java || g_firstByte == 'd');
        QCOMPARE(service.received(), client.greeting() + framesOf({u"1"_s}));
    }
}

void tst_ServiceClients::isLostWhenARequestWentOutInPart()
{
    int ends[2];
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const zyn::posix::UniqueFd server(ends[1]);
    PHONE_VoiceSTK client(ends[0], -1);
    PHONE_VoiceSTK_PARAMETER parameter = {};
    while (PHONE_VOICESTK_MakeCall(&client, &parameter) == 0) {
    }
    // The server takes everything at last; the frame that began must not be followed by another.
    std::array<std::byte, 4096> buffer;
    while (zyn::posix::receiveSome(server.get(), buffer) > 0) {
    }
    QCOMPARE(PHONE_VOICESTK_MakeCall(&client, &parameter), -1);
    QCOMPARE(zyn::posix::receiveSome(server.get(), buffer), 0);
    QTRY_COMPARE(openDescriptors(), m_descriptors + 1);
    client.ReadData(ends[0]); // a number that is nobody's
    QVERIFY(PHONE_VOICESTK_MakeCall(nullptr, &parameter) == -1 && PHONE_VOICESTK_MakeCall(&client, nullptr) == -1);
    PHONE_VoiceSTK_DeInit(nullptr);
}

void tst_ServiceClients::keepsToOneJavaConnection()
{
    const auto refuses = [](int handle) {
        return PHONE_VoiceCall_Java_MakeCall(handle, "1", 0) == -1 && PHONE_VoiceCall_Java_EndCall(handle) == -1
               && PHONE_VoiceCall_Java_DialExtension(handle, '5') == -1;
    };
    const QByteArray longest(41, '1');
    QVERIFY(refuses(1));
    PHONE_VoiceCall_Java_DeInit(1);
    ScriptedService service(kPhone, framesOf({u"9"_s}), 1, End::ReadOn);
    QCOMPARE(PHONE_VoiceCall_Java_Init(nullptr), 0);
    QCOMPARE(PHONE_VoiceCall_Java_Init(&onJavaReply), 1);
    QCOMPARE(PHONE_VoiceCall_Java_Init([](char) {}), 0);
    QTRY_COMPARE(g_replies, Codes{9}); // to the first callback
    QVERIFY(refuses(0) && refuses(2));
    PHONE_VoiceCall_Java_DeInit(2);
    QVERIFY(PHONE_VoiceCall_Java_MakeCall(1, nullptr, 0) == -1 && PHONE_VoiceCall_Java_MakeCall(1, "", 0) == -1);
    QCOMPARE(PHONE_VoiceCall_Java_MakeCall(1, (longest + '1').constData(), 0), -1);
    QCOMPARE(PHONE_VoiceCall_Java_MakeCall(1, longest.constData(), 0), 0);
    QCOMPARE(PHONE_VoiceCall_Java_DialExtension(1, '#'), 0);
    QCOMPARE(PHONE_VoiceCall_Java_EndCall(1), 0);
    PHONE_VoiceCall_Java_DeInit(1);
    QVERIFY(refuses(1));
    const QByteArray call = QByteArray(4, '\0') + longest + QByteArray(3, '\0');
    QCOMPARE(service.received(),
             framesOf({u"0:#1"_s}) + ScriptedService::frame(2, call) + framesOf({u"4:%23"_s, u"3"_s, u"1"_s}));
}

QTEST_GUILESS_MAIN(tst_ServiceClients)
#include "tst_ServiceClients.moc"
