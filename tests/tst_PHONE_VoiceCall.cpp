// The requests that place and end calls: their bytes on the channels, their way back into signals, their symbols.
#include "support/SignalRecorder.h"
#include "support/StdoutCapture.h"
#include "support/Timeout.h"
#include "utility/PHONE_Ptt.h"
#include "utility/PHONE_Requests.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/PHONE_VoiceCallReceiver.h"
#include "utility/PHONE_VoiceCallSender.h"
#include "utility/message/Message_p.h"

#include <QtTest/QTest>

#include <algorithm>

#include <dlfcn.h>

namespace {

constexpr char kEnd[] = "end of the test's messages";

/// A call to 77 and others, whose second texts are null.
PTT_CALL_INFO_T pttCall(int count)
{
    PTT_CALL_INFO_T call = {{QStringLiteral("77")}, {}, static_cast<uint8_t>(count), -2, 3};
    std::fill(std::begin(call.firstList) + 1, std::end(call.firstList), QStringLiteral("1"));
    return call;
}

struct Request
{
    const char* title;
    const char* channel;
    int (*send)(); // gives the result, 0 when there is none
    int result;
    QByteArray message; // the name and the payload in hexadecimal; empty when nothing is sent
};

char g_number[] = "555";
char g_noNumber[] = "";
const QString kAnn = QStringLiteral("Ann");
constexpr auto kClir = PHONE_MAKE_CALL_CLIR_T{1};

// clang-format off
const Request kRequests[] = {
    {"a call", zyn::kVoiceCallChannel, [] { PHONE_MakeVoiceCall(g_number, kAnn, true, kClir, 0); return 0; }, 0,
     "MakeCall 00000006003500350035" "000000060041006e006e" "000000010000000100000000" "00"},
    {"by its plain name", zyn::kVoiceCallChannel,
     [] { PHONE_VoiceCallInterfaceMakeVoiceCall(g_number, QString(), false, kClir, -1); return 0; }, 0,
     "MakeCall 00000006003500350035" "ffffffff" "000000000000000100000000" "ff"},
    {"directly", zyn::kVoiceCallChannel, [] { PHONE_MakeVoiceCallDirectly("1\xe9"); return 0; }, 0,
     "MakeCall 00000004003100e9" "ffffffff" "000000000000000000000001" "02"},
    {"with the prefix", zyn::kVoiceCallChannel, [] { PHONE_MakeVoiceCallPrependly("1"); return 0; }, 0,
     "MakeCall 000000020031" "ffffffff" "000000000000000000000002" "02"},
    {"through the sender", zyn::kVoiceCallChannel,
     [] { return int(PHONE_VoiceCallSender().makeCall("1", QLatin1String(""), true, -1, 7, 127)); }, 1,
     "MakeCall 000000020031" "00000000" "00000001ffffffff00000007" "7f"},
    {"an empty number", zyn::kVoiceCallChannel,
     [] { PHONE_MakeVoiceCall(g_noNumber, kAnn, true, kClir, 0); return int(PHONE_VoiceCallSender().makeCall("", 0)); },
     0, ""},
    {"no number", zyn::kVoiceCallChannel,
     [] { PHONE_MakeVoiceCall(nullptr, kAnn, true, kClir, 0); PHONE_MakeVoiceCallDirectly(nullptr);
          PHONE_MakeVoiceCallPrependly(nullptr); return 0; }, 0, ""},
    {"the end of a call", zyn::kVoiceCallChannel, [] { PHONE_EndVoiceCall(); return 0; }, 0, "DropCall "},
    {"video calls", zyn::kVoiceCallChannel, [] { PHONE_MakeVideoCall("1"); PHONE_EndVTCall(); return 0; }, 0, ""},
    {"push-to-talk, two parties", zyn::kPttChannel, [] { return PHONE_MakePttCall(pttCall(2)); }, 1,
     "makePttCall 00000002" "0000000400370037000000020031" "ffffffffffffffff" "fffffffe00000003"},
    {"push-to-talk, 25 parties", zyn::kPttChannel, [] { return PHONE_MakePttCall(pttCall(25)); }, 1,
     "makePttCall 00000019" "0000000400370037" + QByteArray("000000020031").repeated(24)
         + QByteArray("ffffffff").repeated(25) + "fffffffe00000003"},
    {"push-to-talk, nobody and too many", zyn::kPttChannel,
     [] { return PHONE_MakePttCall(pttCall(0)) + PHONE_MakePttCall(pttCall(26)); }, 0, ""},
    {"the end of push-to-talk", zyn::kPttChannel, [] { return PHONE_DropPttCall(); }, 1, "dropPttCall "},
    {"radio on and off", zyn::kPhoneChannel, [] { PHONE_SetRFMode(true); PHONE_SetRFMode(false); return 0; }, 0,
     "PHONE_MSG_24 00000001|PHONE_MSG_24 00000000"},
    {"language", zyn::kPhoneChannel, [] { PHONE_SetTAPILanguage(-3); return 0; }, 0, "PHONE_MSG_25 fffffffd"},
};
// clang-format on

const QByteArray kCall = QByteArray::fromHex("00000002003100000002004100000007ffffffff00000002fe00");

} // namespace

class tst_PHONE_VoiceCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sendsToTheByte_data();
    void sendsToTheByte();
    void logsPushToTalk();
    void receives_data();
    void receives();
    void offersPlainSymbols();
};

void tst_PHONE_VoiceCall::sendsToTheByte_data()
{
    QTest::addColumn<const Request*>("request");
    for (const Request& request : kRequests)
        QTest::newRow(request.title) << &request;
}

void tst_PHONE_VoiceCall::sendsToTheByte()
{
    QFETCH(const Request* const, request);
    QByteArrayList messages;
    const QCopChannel listener(request->channel);
    connect(&listener, &QCopChannel::received, this,
            [&](const QCString& message, const QByteArray& data) { messages += message + ' ' + data.toHex(); });
    QCOMPARE(request->send(), request->result);
    QVERIFY(QCopChannel::send(request->channel, kEnd));
    QTRY_VERIFY(messages.contains(QByteArray(kEnd) + ' '));
    messages.removeLast();
    QCOMPARE(messages.join('|'), request->message);
}

void tst_PHONE_VoiceCall::logsPushToTalk()
{
    StdoutCapture output;
    for (const int count : {0, 1, 26})
        PHONE_MakePttCall(pttCall(count));
    PHONE_DropPttCall();
    QCOMPARE(output.take(), QByteArray("send msg to ptt:makePttCall number:77send msg to ptt:dropPttCall "));
}

void tst_PHONE_VoiceCall::receives_data()
{
    QTest::addColumn<QCString>("message");
    QTest::addColumn<qsizetype>("length"); // of the payload, of which the call has 25 bytes
    QTest::addColumn<QByteArray>("emitted");

    const auto add = [](const char* title, const QCString& message, qsizetype length, const QByteArray& emitted) {
        QTest::newRow(title) << message << length << emitted;
    };
    add("a call; any flag is true", "MakeCall", 25, "signalMakeCall(\"1\",\"A\",true,-1,2,-2) ");
    add("bytes behind the call", "MakeCall", 26, "signalMakeCall(\"1\",\"A\",true,-1,2,-2) ");
    add("no line", "MakeCall", 24, "signalMakeCall(\"1\",\"A\",true,-1,2,0) ");
    add("cut within the dial mode", "MakeCall", 23, "signalMakeCall(\"1\",\"A\",true,-1,0,0) ");
    add("cut within the name", "MakeCall", 11, "signalMakeCall(\"1\",null,false,0,0,0) ");
    add("nothing", "MakeCall", 0, "signalMakeCall(null,null,false,0,0,0) ");
    add("the end, with a payload", "DropCall", 25, "sigDropCall() ");
    add("the end in small letters", "dropCall", 0, "");
    add("more than a name", "MakeCalls", 25, "");
}

void tst_PHONE_VoiceCall::receives()
{
    QFETCH(const QCString, message);
    QFETCH(const qsizetype, length);
    QFETCH(const QByteArray, emitted);
    const PHONE_VoiceCallReceiver receiver(nullptr, "receiver");
    QCOMPARE(receiver.objectName(), QStringLiteral("receiver"));
    SignalRecorder recorder(&receiver);
    QVERIFY(QCopChannel::send("/ZYN/Phone/LocalPath", message, kCall.first(length)));
    QVERIFY(QCopChannel::send("/ZYN/Phone/LocalPath", "DropCall"));
    QTRY_COMPARE(recorder.count(), emitted.isEmpty() ? 1 : 2);
    QCOMPARE(recorder.take(), emitted + "sigDropCall()");
}

void tst_PHONE_VoiceCall::offersPlainSymbols()
{
    void* const library = ::dlopen("libzynphone.so.1", RTLD_NOW | RTLD_NOLOAD);
    QVERIFY(library);
    for (const char* name :
         {"PHONE_VoiceCallInterfaceMakeVoiceCall", "PHONE_VoiceCall_Java_Init", "PHONE_VoiceCall_Java_MakeCall",
          "PHONE_VoiceCall_Java_EndCall", "PHONE_VoiceCall_Java_DialExtension", "PHONE_VoiceCall_Java_DeInit"})
        QVERIFY2(::dlsym(library, name), name);
    ::dlclose(library);
}

QTEST_GUILESS_MAIN(tst_PHONE_VoiceCall)
#include "tst_PHONE_VoiceCall.moc"
