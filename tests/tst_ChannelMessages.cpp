// The messages of the channels: what requests send, byte by byte, and what becomes of those that come.
#include "platform/QuietTrace.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/Trace_p.h"
#include "support/Scenario.h"
#include "support/SignalRecorder.h"
#include "support/StoreFixture.h"
#include "support/Timeout.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/PHONE_Log_p.h"
#include "utility/PHONE_Ptt.h"
#include "utility/PHONE_Requests.h"
#include "utility/PHONE_VoiceCall.h"
#include "utility/PHONE_VoiceCallReceiver.h"
#include "utility/PHONE_VoiceCallSender.h"
#include "utility/message/Message_p.h"

#include <QtCore/QPointer>
#include <QtCore/QSet>

#include <limits>
#include <utility>
#include <vector>

#include <fcntl.h>

using namespace Qt::StringLiterals;
using scenario::Verbs;
using zyn::posix::UniqueFd;

namespace {

using Relay = PHONE_AsyncMsgReceiver;
using Screens = RecentCall_Msg;
using Words = QStringList;

/// An object that turns messages into signals.
struct Client
{
    QObject* (*start)();
    void (*end)(QObject* object);
};

constexpr void (*kDelete)(QObject* object) = [](QObject* object) { delete object; };
constexpr Client kPhone{[]() -> QObject* { return new PHONE_MsgClient; }, kDelete};
constexpr Client kRelay{[]() -> QObject* { return Relay::instance(); }, [](QObject*) { Relay::destruction(); }};
constexpr Client kScreens{[]() -> QObject* { return RecentCall_MsgClient::instance(); },
                          [](QObject*) { RecentCall_MsgClient::destruction(); }};
constexpr Client kCalls{[]() -> QObject* { return new PHONE_VoiceCallReceiver; }, kDelete};

QCopChannel* channelOf(QObject* object)
{
    auto* const channel = qobject_cast<QCopChannel*>(object);
    return channel ? channel : object->findChild<QCopChannel*>();
}

/// The bytes of a word; null when it says so.
QByteArray bytesOf(const QString& word)
{
    return word == u"null"_s ? QByteArray() : QByteArray::fromPercentEncoding(word.toLatin1());
}

QByteArray payloadOf(const Words& words)
{
    return QByteArray::fromHex(words.mid(1).join(QString()).toLatin1());
}

using Outcome = std::pair<QString, QByteArrayList>; // what is written, and emitted

/// What a client makes of a message; it ends in the middle of that, after @p last signals.
Outcome receive(const Client& client, const QCString& name, const QByteArray& payload, qsizetype last = -1)
{
    QObject* object = client.start();
    SignalRecorder recorder(object);
    recorder.onSignal = [&] {
        if (recorder.count() == last)
            client.end(std::exchange(object, nullptr));
    };
    StdoutCapture capture;
    channelOf(object)->receive(name, payload);
    const QString log = scenario::lineOf(capture.take());
    if (object)
        client.end(object);
    QByteArrayList emitted = recorder.take().split(' ');
    emitted.removeAll({});
    return {log, emitted};
}

/// What a client makes of a message, and as much of that as comes before its end.
Outcome receiveAndEnd(const Client& client, const Words& words)
{
    Outcome whole = receive(client, bytesOf(words[0]), payloadOf(words));
    for (qsizetype last = 1; last <= whole.second.size(); ++last) {
        if (receive(client, bytesOf(words[0]), payloadOf(words), last)
            != Outcome{whole.first, whole.second.first(last)})
            return {u"goes on after its end"_s, {}};
    }
    return whole;
}

QString shown(const Outcome& outcome)
{
    const QString emitted = QString::fromUtf8(outcome.second.join(' '));
    return outcome.first + u" -> "_s + (emitted.isEmpty() ? u"nothing"_s : emitted);
}

/// The first of the names of which @p client makes more than the line that it writes of each.
QString notIgnored(const Client& client, const QString& written, const Words& names)
{
    for (const QString& name : names) {
        const Outcome outcome = receiveAndEnd(client, {name, u"0101010101010101"_s});
        if (outcome != Outcome{QString(written).replace(u"NAME"_s, QString::fromLatin1(bytesOf(name).constData())), {}})
            return name + u": "_s + shown(outcome);
    }
    return {};
}

QByteArray nameOf(const QByteArray& signal)
{
    return signal.left(signal.indexOf('('));
}

/// The names of the relay's signals.
QSet<QByteArray> relayedSignals()
{
    QSet<QByteArray> names;
    for (const QByteArray& signature : signalsOf(Relay::staticMetaObject))
        names += nameOf(signature);
    return names;
}

/// What is emitted anew when more of the message is there, with the number of bytes from which on it is.
QString receiveCut(const Client& client, const Words& words)
{
    const QByteArray payload = payloadOf(words);
    QByteArrayList before;
    QByteArrayList all;
    for (qsizetype length = 0; length <= payload.size(); ++length) {
        const QByteArrayList emitted = receive(client, bytesOf(words[0]), payload.first(length)).second;
        if (emitted != before)
            all += QByteArray::number(length) + ':';
        for (const QByteArray& signal : emitted)
            all += before.contains(signal) ? QByteArrayList() : QByteArrayList{signal};
        before = emitted;
    }
    return QString::fromUtf8(all.join(' '));
}

/// A call to 77 and others, whose second texts are null.
PTT_CALL_INFO_T pttCall(const QString& count)
{
    PTT_CALL_INFO_T call = {{u"77"_s}, {}, static_cast<uint8_t>(count.toUInt()), -2, 3};
    std::fill(std::begin(call.firstList) + 1, std::end(call.firstList), u"1"_s);
    return call;
}

/// A call whose number may be null.
void makeCall(decltype(PHONE_MakeVoiceCall)* make, const Words& words)
{
    QByteArray number = bytesOf(words[0]);
    make(number.isNull() ? nullptr : number.data(), QString::fromLatin1(bytesOf(words[1])), words[2] == u"true"_s,
         PHONE_MAKE_CALL_CLIR_T{words[3].toInt()}, static_cast<signed char>(words[4].toInt()));
}

QString shown(const QCString& name)
{
    return name.isNull() ? u"null"_s : QString::fromLatin1(name);
}

/// What is printed when a text of each length and a number are put to an object of @p Lines, which keeps @p room bytes.
template<typename Lines>
bool printsAll(size_t room)
{
    std::vector<size_t> lengths{0, 3 * room};
    for (size_t length = room - 25; length < room + 15; ++length) // around what is kept until it is written
        lengths.push_back(length);
    for (const size_t length : lengths) {
        const QByteArray text(static_cast<qsizetype>(length), 'x');
        StdoutCapture output;
        {
            Lines lines;
            lines << "<" << text.constData() << std::numeric_limits<int32_t>::min() << text.constData() << ">";
        }
        if (output.take() != '<' + text + "-2147483648" + text + '>')
            return false;
    }
    return true;
}

/// The requests, each by its name.
Verbs requests(PHONE_MsgClient& client)
{
    using Phone = PHONE_Msg::PHONE_MSG_TYPE_T;
    using Screen = Screens::RECENTCALL_MSG_TYPE_T;
    return scenario::withOutput({
        {u"setRFMode"_s, [&](const Words& words) { client.setRFMode(words[0] == u"true"_s); }},
        {u"setFearureDBCurrLang"_s, [&](const Words& words) { client.setFearureDBCurrLang(words[0].toInt()); }},
        {u"resetTotalDuration"_s, [&](const Words& words) { client.resetTotalDuration(words[0] == u"true"_s); }},
        {u"getTotalByteAndConnectedDuration"_s, [&] { return client.getTotalByteAndConnectedDuration(); }},
        {u"send"_s, [&](const Words& w) { return client.send(Phone(w[0].toInt()), payloadOf(w)); }},
        {u"send-bare"_s, [&](const Words& words) { return client.send(Phone(words[0].toInt())); }},
        {u"name"_s, [&](const Words& words) { return shown(client.getMsg(Phone(words[0].toInt()))); }},
        {u"PHONE_SetRFMode"_s, [](const Words& words) { PHONE_SetRFMode(words[0] == u"true"_s); }},
        {u"PHONE_SetTAPILanguage"_s, [](const Words& words) { PHONE_SetTAPILanguage(words[0].toInt()); }},

        {u"screens-send"_s, [](const Words& w) { return Screens::send(Screen(w[0].toInt()), payloadOf(w)); }},
        {u"screens-send-bare"_s, [](const Words& words) { return Screens::send(Screen(words[0].toInt())); }},
        {u"screens-name"_s, [](const Words& words) { return shown(Screens::getMsg(Screen(words[0].toInt()))); }},
        {u"requestShowUI"_s, [](const Words& w) { return Screens::requestShowUI(RC_CALL_CATEGORY_T(w[0].toInt())); }},
        {u"requestShowPage"_s, [](const Words& w) { return Screens::requestShowPage(RC_PAGE_ID_T{w[0].toInt()}); }},
        {u"showRecordDetail"_s,
         [](const Words& w) { return Screens::showRecordDetail(w[0].toInt(), RC_CALL_CATEGORY_T(w[1].toInt())); }},
        {u"requestHideUI"_s, [] { return Screens::requestHideUI(); }},

        {u"PHONE_MakeVoiceCall"_s, [](const Words& words) { makeCall(&PHONE_MakeVoiceCall, words); }},
        {u"PHONE_VoiceCallInterfaceMakeVoiceCall"_s,
         [](const Words& words) { makeCall(&PHONE_VoiceCallInterfaceMakeVoiceCall, words); }},
        {u"PHONE_MakeVoiceCallDirectly"_s, [](const Words& words) { PHONE_MakeVoiceCallDirectly(bytesOf(words[0])); }},
        {u"PHONE_MakeVoiceCallPrependly"_s, [](const Words& w) { PHONE_MakeVoiceCallPrependly(bytesOf(w[0])); }},
        {u"nowhere"_s, [] { PHONE_MakeVoiceCallDirectly(nullptr), PHONE_MakeVoiceCallPrependly(nullptr); }},
        {u"sender"_s, [] { return PHONE_VoiceCallSender().makeCall("1", QLatin1String(""), true, -1, 7, 127); }},
        {u"sender-nowhere"_s, [] { return PHONE_VoiceCallSender().makeCall("", 0); }},
        {u"PHONE_EndVoiceCall"_s, [] { PHONE_EndVoiceCall(); }},
        {u"video"_s, [] { PHONE_MakeVideoCall("1"), PHONE_EndVTCall(); }},
        {u"PHONE_MakePttCall"_s, [](const Words& words) { return PHONE_MakePttCall(pttCall(words[0])); }},
        {u"PHONE_DropPttCall"_s, [] { return PHONE_DropPttCall(); }},
    });
}

} // namespace

class tst_ChannelMessages : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    /// @{ The service provider, under both names of its type.
    void take(SERVICE_PROVIDER_DATA_S provider) { m_providers += u"a "_s + provider.name; }
    void takeRelayed(PHONE_SERVICE_PROVIDER_DATA_S provider) { m_providers += u"b "_s + provider.name; }
    /// @}

private Q_SLOTS:
    void hasSignalsThatCanBeQueuedByName(); // before anything else makes their types known
    void takesNames();
    void speaksTheMessages_data() { scenario::addRows(QFINDTESTDATA("data/channel_messages.txt")); }
    void speaksTheMessages();
    void handsOutTheNetworkList();
    void deliversTheProviderUnderEitherName();
    void startsTheRelayAgain();
    void printsTextsOfAnyLength();
    void keepsTheTraceFromStandardOutput_data();
    void keepsTheTraceFromStandardOutput();

private:
    QStringList m_providers;
};

void tst_ChannelMessages::hasSignalsThatCanBeQueuedByName()
{
    for (const Client& client : {kPhone, kRelay, kScreens, kCalls}) {
        QObject* const object = client.start();
        for (const QByteArray& signature : signalsOf(*object->metaObject())) {
            const bool isQueued = !signature.contains('['); // an array is not
            const QByteArray signal = "2" + signature;
            if (!isQueued)
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"Cannot queue arguments of type"_s));
            QCOMPARE(bool(connect(object, signal, object, signal, Qt::QueuedConnection)), isQueued);
        }
        client.end(object);
    }
}

void tst_ChannelMessages::takesNames()
{
    const RecentCall_Msg screens(this, "b");
    QVERIFY(screens.parent() == this);
    QCOMPARE(PHONE_Msg(nullptr, "a").objectName() + screens.objectName()
                 + PHONE_VoiceCallReceiver(nullptr, "c").objectName(),
             u"abc"_s);
}

void tst_ChannelMessages::speaksTheMessages()
{
    QSet<QByteArray> missing = relayedSignals();
    QStringList heard;
    std::vector<std::unique_ptr<QCopChannel>> listeners;
    for (const char* channel : {zyn::kPhoneChannel, zyn::kVoiceCallChannel, zyn::kPttChannel, "/ZYN/recentcall"}) {
        const auto& listener = listeners.emplace_back(std::make_unique<QCopChannel>(channel));
        connect(listener.get(), &QCopChannel::received, this,
                [&, channel](const QCString& name, const QByteArray& data) {
                    heard += QString::fromLatin1(QByteArray(channel) + ' ' + name + ' ' + data.toHex());
                });
    }

    PHONE_MsgClient client;
    Verbs verbs = requests(client);
    verbs.merge(Verbs{
        {u"phone"_s,
         [&](const Words& words) {
             const Outcome own = receiveAndEnd(kPhone, words);
             Outcome relayed = own;
             relayed.second.removeIf([](const QByteArray& one) { return !relayedSignals().contains(nameOf(one)); });
             for (const QByteArray& one : relayed.second)
                 missing -= nameOf(one);
             const Outcome relay = receiveAndEnd(kRelay, words);
             return relay == relayed ? shown(own) : u"relayed: "_s + shown(relay);
         }},
        {u"screens"_s, [](const Words& words) { return shown(receiveAndEnd(kScreens, words)); }},
        {u"phone-ignores"_s,
         [](const Words& names) {
             return notIgnored(kPhone, u"<receive>"_s, names) + notIgnored(kRelay, u"<receive>"_s, names);
         }},
        {u"screens-ignores"_s, [](const Words& names) { return notIgnored(kScreens, u"get message: NAME"_s, names); }},
        {u"calls"_s, [](const Words& words) { return shown(receiveAndEnd(kCalls, words)); }},
        {u"phone-cut"_s, [](const Words& words) { return receiveCut(kPhone, words); }},
        {u"screens-cut"_s, [](const Words& words) { return receiveCut(kScreens, words); }},
        {u"calls-cut"_s, [](const Words& words) { return receiveCut(kCalls, words); }},
        {u"never-relayed"_s, [&] { return QString::fromLatin1(missing.values().join(' ')); }},
        {u"heard"_s, [&] { return heard.join(u" | "); }},
    });
    scenario::play(verbs);
}

void tst_ChannelMessages::handsOutTheNetworkList()
{
    using List = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;
    PHONE_MsgClient client;
    const void* place = nullptr;
    QByteArray record;
    connect(&client, &PHONE_MsgClient::signalnetworkListGotten, this, [&](PHONE_UI_NETWORKLIST_TYPE_T, List* list) {
        place = list;
        record = QByteArray(reinterpret_cast<const char*>(list), sizeof(List));
    });
    const QByteArray whole(sizeof(List) + 1, 'x');
    client.receive("PHONE_MSG_38", whole);
    QCOMPARE(place, static_cast<const void*>(whole.constData()));
    client.receive("PHONE_MSG_39", whole.first(sizeof(List) - 1));
    QCOMPARE(record, whole.first(sizeof(List) - 1) + '\0');
    client.receive("PHONE_MSG_38", QByteArray::fromRawData(whole.constData() + 1, sizeof(List)));
    QCOMPARE(reinterpret_cast<quintptr>(place) % alignof(List), size_t{0});
    QCOMPARE(record, whole.first(sizeof(List)));
}

void tst_ChannelMessages::deliversTheProviderUnderEitherName()
{
    Relay relay;
    auto* const client = relay.findChild<PHONE_MsgClient*>();
    for (const char* signal : {SIGNAL(signalSpnNameExtend(SERVICE_PROVIDER_DATA_S)),
                               SIGNAL(signalSpnNameExtend(PHONE_SERVICE_PROVIDER_DATA_S))}) {
        for (const Qt::ConnectionType type : {Qt::DirectConnection, Qt::QueuedConnection}) {
            QVERIFY(connect(&relay, signal, this, SLOT(take(SERVICE_PROVIDER_DATA_S)), type));
            QVERIFY(connect(&relay, signal, this, SLOT(takeRelayed(PHONE_SERVICE_PROVIDER_DATA_S)), type));
            QVERIFY(connect(client, signal, this, SLOT(take(SERVICE_PROVIDER_DATA_S)), type));
        }
    }
    connect(&relay, &Relay::signalSpnNameExtend, this, &tst_ChannelMessages::takeRelayed);
    client->receive("PHONE_MSG_15", QByteArray::fromHex("00000002 0041 07"));
    QCOMPARE(m_providers.size(), 7);
    QCoreApplication::sendPostedEvents(this);
    QCOMPARE(m_providers.count(u"a A"_s), 8);
    QCOMPARE(m_providers.count(u"b A"_s), 5);
}

void tst_ChannelMessages::startsTheRelayAgain()
{
    const QPointer<Relay> first = Relay::instance();
    QCOMPARE(Relay::instance(), first);
    Relay::destruction();
    Relay::destruction();
    QVERIFY(!first);
    SignalRecorder recorder(Relay::instance());
    QVERIFY(QCopChannel::send(zyn::kPhoneChannel, "PHONE_MSG_23"));
    QTRY_COMPARE(recorder.count(), 1);
    QCOMPARE(recorder.take(), "signalLowBattery()");
    Relay::destruction();
}

void tst_ChannelMessages::printsTextsOfAnyLength()
{
    QVERIFY(printsAll<zyn::LogText>(1024));
    QVERIFY(printsAll<zyn::Trace>(16384));
    StdoutCapture output;
    for (const int level : {0, kSilentLogLevel - 1, kSilentLogLevel})
        zyn::logEntry(level, "source", "function", level);
    QCOMPARE(output.take(), "source,function,0 \nsource,function,7 \n");
}

void tst_ChannelMessages::keepsTheTraceFromStandardOutput_data()
{
    QTest::addColumn<QByteArray>("place"); // of the trace
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QByteArray>("traced");
    QTest::newRow("discarded") << QByteArray() << QByteArray("own") << QByteArray();
    QTest::newRow("a file") << QByteArray("trace") << QByteArray("own") << QByteArray("debug");
    QTest::newRow("a descriptor") << QByteArray("2") << QByteArray("own") << QByteArray("debug");
    QTest::newRow("no place") << QByteArray("none/trace") << QByteArray("debug") << QByteArray();
}

void tst_ChannelMessages::keepsTheTraceFromStandardOutput()
{
    QFETCH(const QByteArray, place);
    const QTemporaryDir folder;
    std::fflush(nullptr);
    QVERIFY(inAnotherProcess([&] {
        const auto lead = [](const char* name, int descriptor) {
            const UniqueFd file(::open(name, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, S_IRUSR | S_IWUSR));
            return ::dup2(file.get(), descriptor) == descriptor;
        };
        if (!QDir::setCurrent(folder.path()) || !lead("written", STDOUT_FILENO) || !lead("trace", STDERR_FILENO))
            return false;
        const auto trace = place == "2" ? std::make_unique<QuietTrace>(STDERR_FILENO)
                                        : std::make_unique<QuietTrace>(place.isEmpty() ? nullptr : place.constData());
        zyn::LogText() << "debug";
        if (trace->output())
            return std::fputs("own", trace->output()) >= 0 && std::fflush(trace->output()) == 0;
        return std::fflush(stdout) == 0;
    }));
    const auto read = [&](const QString& name) {
        QFile file(folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : "missing";
    };
    QTEST(read(u"written"_s), "written");
    QTEST(read(u"trace"_s), "traced");
}

QTEST_GUILESS_MAIN(tst_ChannelMessages)
#include "tst_ChannelMessages.moc"
