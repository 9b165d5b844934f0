// The tool's live view of the phone, on a terminal.
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "support/StoreFixture.h"
#include "support/Terminal.h"
#include "support/Tool.h"
#include "utility/PHONE_VoiceCallSender.h"

#include <QtCore/QDirIterator>
#include <QtCore/QMap>

using namespace Qt::StringLiterals;

namespace {

const QString kTool = QStringLiteral(ZYN_TOOL);
constexpr char kEnter[] = "\033[?1049h\033[?25l";
constexpr char kLeave[] = "\033[?25h\033[?1049l";

/// What is written to each row, from 1, without styles.
QMap<int, QString> rowsIn(const QByteArray& output)
{
    static const QRegularExpression part(u"\033\\[(\\d+);\\d+H((?:[^\033]|\033\\[[\\d;]*m)*)"_s);
    static const QRegularExpression style(u"\033\\[[\\d;]*m"_s);
    QMap<int, QString> rows;
    for (const QRegularExpressionMatch& match : part.globalMatch(QString::fromUtf8(output)))
        rows[match.captured(1).toInt()] += match.captured(2).remove(style);
    return rows;
}

bool isStyled(const QByteArray& output)
{
    static const QRegularExpression style(u"\033\\[[\\d;]*[1-9]m"_s);
    return QString::fromUtf8(output).contains(style);
}

} // namespace

class ZynphoneTopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_store.emplace(); }
    void writesOnlyWhatChanges();
    void showsCallsAndFavourites();
    void showsHostileTextHarmlessly();
    void behavesAtAnySize();
    void givesTheTerminalBack_data();
    void givesTheTerminalBack();
    void stopsAndGoesOn();
    void endsWhereNothingIsTaken();
    void endsWithItsTerminal();
    void writesPlainLinesOnce();
    void usesColoursWhereTheyAreWelcome();

private:
    std::optional<StoreFixture> m_store;
};

void ZynphoneTopTest::writesOnlyWhatChanges()
{
    for (const bool inColour : {true, false}) {
        Terminal terminal(100, 45);
        terminal.start(kTool, {u"top"_s},
                       inColour ? QHash<QString, QString>{} : QHash<QString, QString>{{u"NO_COLOR"_s, u"1"_s}});
        QVERIFY(terminal.find(u"battery        \u2013"_s) > 0);
        QCOMPARE(tool::run("status battery-capacity 154"), u"sent\nexit 0"_s);
        const int row = terminal.find(u"battery        154"_s);
        QVERIFY(row > 0);
        QCOMPARE(isStyled(terminal.take()), inColour);
        QCOMPARE(tool::run("status battery-capacity 155"), u"sent\nexit 0"_s);
        QCOMPARE(terminal.find(u"battery        155"_s), row);
        const QByteArray output = terminal.take();
        QVERIFY2(output.contains("\033[" + QByteArray::number(row + 1) + ";18H"), output.toPercentEncoding());
        QMap<int, QString> rows = rowsIn(output);
        rows.remove(1); // has the time
        QCOMPARE(rows, (QMap<int, QString>{{row + 1, u"5"_s}}));
    }
}

void ZynphoneTopTest::showsCallsAndFavourites()
{
    StoreFixture::startAfresh();
    Terminal terminal(100, 45);
    terminal.start(kTool, {u"top"_s});
    QVERIFY(terminal.find(u"missed         0 unread"_s) > 0);
    PHONE_VoiceCallSender().makeCall("555", u"Ann"_s, false, 0, 0, 2);
    QVERIFY(terminal.find(u"call           asked for 555 Ann"_s) > 0);
    QCOMPARE(tool::run("status voice-call-changed"), u"sent\nexit 0"_s);
    QVERIFY(terminal.find(u"asked for 555 Ann, 1 change"_s) > 0);
    StoreFixture::add(RC_CALL_CATEGORY_MISSED, "777");
    StoreFixture::add(RC_CALL_CATEGORY_DIALED, "555");
    QCOMPARE(tool::run("status voice-call-changed"), u"sent\nexit 0"_s);
    QVERIFY(terminal.find(u"missed         1 unread, last 777"_s) > 0);
    QVERIFY(terminal.find(u"last logged    dialed 555, "_s) > 0);
    QVERIFY(terminal.find(u"call           none"_s) > 0);

    PHONE_ENG_ActivityLog entry;
    static_cast<PHONE_ENG_RecentCall&>(entry) = StoreFixture::call(RC_CALL_CATEGORY_MISSED, "5550001");
    ActivityLog_ENG_RecordStore* log = ActivityLog_ENG_RecordStore::instance();
    QVERIFY(log->revampTopPalsAvlStorage({}, u"5550001"_s) == 1 && log->addTopPalsAvlItem(entry) == 1);
    QVERIFY(terminal.find(u"5550001, 1 missed, 0 messages"_s) > 0);
    ActivityLog_ENG_RecordStore::destroy();
}

void ZynphoneTopTest::showsHostileTextHarmlessly()
{
    Terminal terminal(90, 45);
    terminal.start(kTool, {u"top"_s});
    QVERIFY(terminal.find(u"service name   \u2013"_s) > 0);
    QCOMPARE(tool::run({u"status"_s, u"service-name"_s, u"a\033[2J\u202Eb"_s}), u"sent\nexit 0"_s);
    QVERIFY(terminal.find(u"a\\u001b[2J\\u202eb"_s) > 0);
    QCOMPARE(tool::run({u"status"_s, u"service-name"_s, u"\u65E5\u672C"_s + QString(99, u'x')}), u"sent\nexit 0"_s);
    QVERIFY(terminal.find(u"x\u2026"_s) > 0);
    QVERIFY(terminal.find(u"connected"_s) > 0); // beside it, in the second column
}

void ZynphoneTopTest::behavesAtAnySize()
{
    Terminal terminal(100, 45);
    terminal.start(kTool, {u"top"_s});
    QVERIFY(terminal.find(u"UMA icon"_s) > 0);
    terminal.resize(10, 3);
    QCOMPARE(terminal.find(u"too small\u2026"_s), 0);
    QCOMPARE(terminal.row(1) + terminal.row(2), QString(20, u' '));
    terminal.resize(30, 12);
    QCOMPARE(terminal.find(u"q ends; 34 lines below"_s), 11);
    QVERIFY(terminal.find(u"favourite 4"_s) > 0); // the calls come first
    terminal.type("\033[B\033OB");                // down twice
    QCOMPARE(terminal.find(u"q ends; 2 lines above, 32 lin"_s), 11);
    QCOMPARE(terminal.find(u"connected"_s), 1);
    terminal.type("\033[F"); // to the end, and no further
    QCOMPARE(terminal.find(u"q ends; 34 lines above"_s), 11);
    terminal.type("j\033[5~"); // a page up
    QCOMPARE(terminal.find(u"q ends; 25 lines above"_s), 11);
    terminal.type("x\033[Zk\033[6~ "); // one line up, two pages down
    QCOMPARE(terminal.find(u"q ends; 34 lines above"_s), 11);
    terminal.type("\033[H");
    QCOMPARE(terminal.find(u"q ends; 34 lines below"_s), 11);
    terminal.resize(80, 24);
    QVERIFY(terminal.find(u"UMA icon"_s) > 0);
    QCOMPARE(terminal.find(u"q ends"_s), 23);
    QCOMPARE(terminal.row(23).trimmed(), u"q ends"_s); // everything is there
    terminal.resize(1, 1);
    QCOMPARE(terminal.find(u"\u2026"_s), 0);
    terminal.resize(100, 45);
    QVERIFY(terminal.find(u"UMA icon"_s) > 0);
    QCOMPARE(terminal.find(u"zynphone top"_s), 0);
}

void ZynphoneTopTest::givesTheTerminalBack_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QByteArray>("keys");
    QTest::newRow("SIGTERM") << SIGTERM << QByteArray();
    QTest::newRow("SIGINT") << 0 << QByteArray("\x03");
    QTest::newRow("SIGQUIT") << 0 << QByteArray("\x1C");
    QTest::newRow("SIGHUP") << SIGHUP << QByteArray();
    QTest::newRow("q") << 0 << QByteArray("xq");
}

void ZynphoneTopTest::givesTheTerminalBack()
{
    QFETCH(int, signal);
    QFETCH(QByteArray, keys);
    Terminal terminal(80, 24);
    const tcflag_t keyboard = terminal.keyboard();
    terminal.start(kTool, {u"top"_s});
    QVERIFY(terminal.find(u"zynphone top"_s) == 0);
    QCOMPARE(terminal.keyboard(), keyboard & ~tcflag_t{ICANON | ECHO});
    if (signal != 0)
        terminal.tell(signal);
    terminal.type(keys.constData());
    QCOMPARE(role::finish(terminal.process), 0);
    QCOMPARE(terminal.keyboard(), keyboard);
    const QByteArray output = terminal.take();
    QCOMPARE(output.count(kEnter), 1);
    QVERIFY(output.endsWith(kLeave));
}

void ZynphoneTopTest::stopsAndGoesOn()
{
    Terminal terminal(80, 24);
    terminal.start(u"/bin/sh"_s, {u"-mc"_s, kTool + u" top; echo stopped; fg; echo over"_s});
    QCOMPARE(terminal.find(u"q ends"_s), 23); // what is drawn last
    terminal.take();
    terminal.type("\x1A");
    QByteArray output;
    QVERIFY(QTest::qWaitFor([&] { return (output += terminal.take()).contains("q ends"); }, role::kTimeout));
    const qsizetype left = output.indexOf(kLeave);
    const qsizetype stopped = output.indexOf("stopped");
    QVERIFY(left >= 0 && left < stopped && stopped < output.indexOf(kEnter));
    terminal.type("q");
    QVERIFY(QTest::qWaitFor([&] { return (output += terminal.take()).contains("over"); }, role::kTimeout));
}

void ZynphoneTopTest::endsWhereNothingIsTaken()
{
    for (const bool isShown : {false, true}) {
        Terminal terminal(80, 24);
        const tcflag_t keyboard = terminal.keyboard();
        if (!isShown)
            terminal.stopOutput();
        terminal.start(kTool, {u"top"_s});
        QVERIFY(QTest::qWaitFor([&] { return terminal.keyboard() != keyboard; }, role::kTimeout));
        if (isShown)
            QCOMPARE(terminal.find(u"q ends"_s), 23);
        terminal.stopOutput();
        terminal.tell(SIGTERM);
        QCOMPARE(role::finish(terminal.process), 0);
    }
}

void ZynphoneTopTest::endsWithItsTerminal()
{
    Terminal terminal(80, 24);
    terminal.start(kTool, {u"top"_s});
    QVERIFY(terminal.find(u"zynphone top"_s) == 0);
    terminal.hangUp();
    QVERIFY(role::finish(terminal.process) >= 0);
}

void ZynphoneTopTest::writesPlainLinesOnce()
{
    QCOMPARE(tool::run("top"), u"zynphone: standard output is not a terminal; --once writes plain lines\nexit 1"_s);
    qputenv("ZYN_QCOP_PATH", QFile::encodeName(m_store->path() + u"/channels"_s));
    const QString state = tool::run("top --once");
    const QString object = tool::run("top --once --json");
    qunsetenv("ZYN_QCOP_PATH");
    QVERIFY2(object.contains(u"\"battery\":null,"_s) && object.contains(u"\"missed\":\"0 unread\""_s)
                 && object.endsWith(u"}}\nexit 0"_s),
             qPrintable(object));
    QVERIFY2(state.contains(u"\nbattery        \u2013\n") && state.contains(u"\nmissed         0 unread\n")
                 && !state.contains(u'\033') && state.endsWith(u"exit 0"),
             qPrintable(state));
    QVERIFY(!QFile::exists(m_store->path() + u"/phone"_s)); // it makes nothing
    QVERIFY(!QDirIterator(m_store->path(), QDir::Files | QDir::System | QDir::Hidden, QDirIterator::Subdirectories)
                 .hasNext());
}

void ZynphoneTopTest::usesColoursWhereTheyAreWelcome()
{
    for (const char* noColour : {"", "1"}) {
        Terminal terminal(80, 24);
        terminal.start(kTool, {u"doctor"_s}, {{u"NO_COLOR"_s, QLatin1String(noColour)}});
        QCOMPARE(role::finish(terminal.process), 1);
        const QByteArray report = terminal.take();
        QVERIFY(report.contains("to mend"));
        QCOMPARE(report.contains("\033[31mwrong"), *noColour == '\0');
        QCOMPARE(report.contains('\033'), *noColour == '\0');
    }
}

QTEST_GUILESS_MAIN(ZynphoneTopTest)
#include "tst_zynphone_top.moc"
