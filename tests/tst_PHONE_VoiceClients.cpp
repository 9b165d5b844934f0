// The two clients of the phone server against a server that does as it likes.
#include "support/Descriptors.h"
#include "support/ScriptedService.h"
#include "support/Timeout.h"
#include "utility/PHONE_VoiceJava.h"
#include "utility/PHONE_VoiceSTK.h"

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <functional>
#include <vector>

namespace {

using End = ScriptedService::End;
using Codes = std::vector<int>;

constexpr char kSocketPath[] = "/tmp/zynphonecom/voicecall_interface";

Codes g_replies;
std::function<void()> g_onReply;

void onReply(int code)
{
    g_replies.push_back(code);
    g_onReply();
}

void onJavaReply(char code)
{
    onReply(static_cast<unsigned char>(code));
}

QByteArray frame(int code, const QByteArray& data = {})
{
    return ScriptedService::frame(code, data);
}

/// Either client, as a test sees it.
struct Client
{
    explicit Client(bool isJava)
        : java(isJava)
    {
        exists = java ? PHONE_VoiceCall_Java_Init(&onJavaReply) == 1 : (stk = PHONE_VoiceSTK_Init()) != nullptr;
        if (stk)
            QObject::connect(stk, &PHONE_VoiceSTK::MessageReceived, stk, &onReply);
    }
    int call() const
    {
        PHONE_VoiceSTK_PARAMETER parameter = {{1, 2, 3}};
        return java ? PHONE_VoiceCall_Java_MakeCall(1, "1\xe9", -2) : PHONE_VOICESTK_MakeCall(stk, &parameter);
    }
    void end() const { java ? PHONE_VoiceCall_Java_DeInit(1) : PHONE_VoiceSTK_DeInit(stk); }
    QByteArray greeting() const { return frame(0, QByteArray(1, java ? 1 : 0).leftJustified(4, '\0')); }
    QByteArray callFrame() const
    {
        return frame(2, java ? QByteArray("\xfe\xff\xff\xff\61\xe9").leftJustified(48, '\0')
                             : QByteArray("\1\2\3").leftJustified(108, '\0'));
    }

    bool java;
    bool exists;
    PHONE_VoiceSTK* stk = nullptr;
};

} // namespace

class tst_PHONE_VoiceClients : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        g_replies.clear();
        g_onReply = [] {};
        QCoreApplication::processEvents();
        m_descriptors = openDescriptors();
        QVERIFY(!Client(false).exists && !Client(true).exists); // no server yet; makes the directory
    }
    void cleanup() { QCOMPARE(openDescriptors(), m_descriptors); }

    void takesWhatTheServerSends_data();
    void takesWhatTheServerSends();
    void mayBeEndedByItsReply();
    void isLostWhenARequestWentOutInPart();
    void keepsToOneJavaConnection();

private:
    qsizetype m_descriptors = 0;
};

void tst_PHONE_VoiceClients::takesWhatTheServerSends_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<End>("end");
    QTest::addColumn<bool>("lost");
    QTest::addColumn<Codes>("replies");

    const QByteArray largest(qsizetype{1024} * 1024, 'x');
    // clang-format off
    QTest::newRow("replies") << frame(2) + frame(3, "data") + frame(4) << End::ReadOn << false << Codes{2, 3, 4};
    QTest::newRow("codes 0 and 1, which are no replies") << frame(0) + frame(1, "data") + frame(5) << End::ReadOn
                                                         << false << Codes{5};
    QTest::newRow("codes beyond a byte") << frame(258) + frame(-1) << End::ReadOn << false << Codes{258, -1};
    QTest::newRow("the largest frame") << frame(6, largest) << End::ReadOn << false << Codes{6};
    QTest::newRow("a frame above the limit") << frame(6) + frame(7, largest + 'x') << End::ReadOn << true << Codes{6};
    QTest::newRow("a negative length") << QByteArray::fromHex("07000000ffffffff") + frame(6) << End::ReadOn << true << Codes();
    QTest::newRow("a flood") << frame(7, "flood").repeated(3000) << End::ReadOn << false << Codes(3000, 7);
    QTest::newRow("a frame that stalls") << frame(2, "data").chopped(1) << End::ReadOn << true << Codes();
    QTest::newRow("an end") << QByteArray() << End::Close << true << Codes();
    QTest::newRow("an end behind a reply") << frame(2) << End::Close << true << Codes{2};
    QTest::newRow("an end within the header") << frame(2).chopped(1) << End::Close << true << Codes();
    QTest::newRow("an end within the data") << frame(2, "data").chopped(1) << End::Close << true << Codes();
    // clang-format on
}

void tst_PHONE_VoiceClients::takesWhatTheServerSends()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const End, end);
    QFETCH(const bool, lost);
    QFETCH(const Codes, replies);
    for (const bool java : {false, true}) {
        Codes expected;
        for (const int code : replies)
            expected.push_back(java ? code & 0xFF : code);
        g_replies.clear();
        ScriptedService service(kSocketPath, answer, 1, end);
        const Client client(java);
        QVERIFY(client.exists);
        QTRY_COMPARE(g_replies, expected);
        if (lost) {
            QTRY_VERIFY(service.isDone());
            QTRY_COMPARE(openDescriptors(), m_descriptors + 1); // the listener's
        }
        QCOMPARE(client.call(), lost ? -1 : 0);
        client.end();
        QCOMPARE(service.received(), client.greeting() + (lost ? QByteArray() : client.callFrame() + frame(1)));
        QCOMPARE(g_replies, expected);
    }
}

void tst_PHONE_VoiceClients::mayBeEndedByItsReply()
{
    for (const bool java : {false, true}) {
        g_replies.clear();
        ScriptedService service(kSocketPath, frame(2) + frame(3), 1, End::ReadOn);
        const Client client(java);
        g_onReply = [&] { client.end(); };
        QTRY_VERIFY(service.isDone());
        QCOMPARE(g_replies, Codes{2});
        QCOMPARE(service.received(), client.greeting() + frame(1));
    }
}

void tst_PHONE_VoiceClients::isLostWhenARequestWentOutInPart()
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

void tst_PHONE_VoiceClients::keepsToOneJavaConnection()
{
    const auto refuses = [](int handle) {
        return PHONE_VoiceCall_Java_MakeCall(handle, "1", 0) == -1 && PHONE_VoiceCall_Java_EndCall(handle) == -1
               && PHONE_VoiceCall_Java_DialExtension(handle, '5') == -1;
    };
    const QByteArray longest(41, '1');
    QVERIFY(refuses(1));
    PHONE_VoiceCall_Java_DeInit(1);
    ScriptedService service(kSocketPath, frame(9), 1, End::ReadOn);
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
             frame(0, QByteArray("\1\0\0", 4)) + frame(2, call) + frame(4, "#") + frame(3) + frame(1));
}

QTEST_GUILESS_MAIN(tst_PHONE_VoiceClients)
#include "tst_PHONE_VoiceClients.moc"
