// The tool's doctor: a desk on which nothing is wrong, and each fault planted on it.
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "support/ServiceProcess.h"
#include "support/StoreFixture.h"
#include "support/Terminal.h"
#include "support/Tool.h"

#include <QtCore/QDirIterator>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr uid_t kNobody = 65534;
constexpr char kPhoneSocket[] = "/tmp/zynphonecom/voicecall_interface";

/// A desk in directories of its own, with its services.
class Desk
{
public:
    Desk()
    {
        qputenv("ZYN_QCOP_PATH", path("channels"));
        QDir().mkpath(m_store.path() + u"/setup"_s);
        StoreFixture::startAfresh();
        isSound = recentCalls.start(ZYN_RECENTCALLD) && phone.start(ZYN_PHONED);
    }

    QByteArray path(const char* name = "") const { return QFile::encodeName(m_store.path()) + '/' + name; }
    void write(const QByteArray& name, const QByteArray& bytes) const
    {
        QFile file(QFile::decodeName(path(name.constData())));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
    }
    /// A socket that was listened to until its process ended.
    static void leaveDeadSocket(const QByteArray& path)
    {
        ::mkdir(path.first(path.lastIndexOf('/')).constData(), 0700);
        zyn::posix::listenUnix(path, 0600);
    }

    ServiceProcess recentCalls;
    ServiceProcess phone;
    bool isSound = false;

private:
    StoreFixture m_store;
};

using Plant = void (*)(Desk& desk);

/// Whether the fault could be planted.
bool isDone = true;

} // namespace
Q_DECLARE_METATYPE(Plant)

class ZynphoneDoctorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsNothingOnASoundDesk();
    void findsEachFault_data();
    void findsEachFault();
    void findsAnotherUsersService();
    void changesNothing();
    void writesJson();
    void usesColoursWhereTheyAreWelcome();
};

void ZynphoneDoctorTest::findsNothingOnASoundDesk()
{
    const Desk desk;
    QVERIFY(desk.isSound);
    Desk::leaveDeadSocket(desk.path("channels/%2FZYN%2Fphone/999999-1")); // which the next message removes
    const QString report = tool::run("doctor");
    QVERIFY(report.contains(u"999999-1: a dead socket: "));
    QVERIFY2(report.endsWith(u"Nothing is wrong.\nexit 0"), qPrintable(report));
    QVERIFY(!report.contains(u"\nwrong"));
    QVERIFY(report.contains(u"channels     /ZYN/phone: heard by process "_s) && report.contains(u"(zyn-phoned)"));
    QVERIFY(report.contains(u"\nok     switches     fixed dialing: on\n"));
}

void ZynphoneDoctorTest::findsEachFault_data()
{
    QTest::addColumn<Plant>("plant");
    QTest::addColumn<QString>("finding"); // DESK stands for its directory
    QTest::addColumn<QString>("remedy");
    const auto row = [](const char* name, Plant plant, const char* finding, const char* remedy) {
        QTest::newRow(name) << plant << QString::fromUtf8(finding) << QString::fromUtf8(remedy);
    };
    row(
        "relative channel path", [](Desk&) { qputenv("ZYN_QCOP_PATH", "channels"); },
        "environment  ZYN_QCOP_PATH: it holds no absolute path", "export ZYN_QCOP_PATH=/an/absolute/path");
    row(
        "channel path without a parent", [](Desk& desk) { qputenv("ZYN_QCOP_PATH", desk.path("none/channels")); },
        "environment  ZYN_QCOP_PATH: nobody can make the directory DESK/none/channels", "mkdir -p DESK/none");
    row(
        "channel path below a file", [](Desk& desk) { qputenv("ZYN_QCOP_PATH", desk.path("phone/rc_a/channels")); },
        "environment  ZYN_QCOP_PATH: nobody can make the directory DESK/phone/rc_a/channels: above it, it is no",
        "mv DESK/phone/rc_a DESK/phone/rc_a.old");
    row(
        "channels of another user",
        [](Desk& desk) { isDone = ::chown(desk.path("channels").constData(), kNobody, kNobody) == 0; },
        "channels     DESK/channels: it belongs to user 65534", "name a directory of your own");
    row(
        "channels open to others", [](Desk& desk) { ::chmod(desk.path("channels").constData(), 0755); },
        "channels     DESK/channels: its mode is 0755, not 0700", "chmod 700 DESK/channels\n");
    row(
        "no runtime directory",
        [](Desk&) {
            qunsetenv("ZYN_QCOP_PATH");
            qputenv("XDG_RUNTIME_DIR", "/tmp/it's gone");
        },
        "environment  XDG_RUNTIME_DIR: no channel can be used with /tmp/it's gone: it does not exist",
        "mkdir -m 700 '/tmp/it'\\''s gone', or unset");
    row(
        "no data directory", [](Desk& desk) { qputenv("ZYN_LOCAL_APP_WRITE_PATH", desk.path("none")); },
        "environment  ZYN_LOCAL_APP_WRITE_PATH: no store can be made in DESK/none: it does not exist",
        "mkdir -p DESK/none\n");
    row(
        "settings path that is a file", [](Desk& desk) { qputenv("ZYN_APP_WRITE_PATH", desk.path("phone/rc_a")); },
        "environment  ZYN_APP_WRITE_PATH: no settings can be kept in DESK/phone/rc_a: of DESK/phone/rc_a, it is no",
        "export ZYN_APP_WRITE_PATH=");
    row(
        "nobody listens", [](Desk& desk) { desk.phone.stop(); }, "channels     /ZYN/phone: nobody listens",
        "start an application with a PHONE_MsgClient");
    row(
        "dead listener where nobody else listens",
        [](Desk& desk) {
            desk.phone.stop();
            Desk::leaveDeadSocket(desk.path("channels/%2FZYN%2Fphone/999999-1"));
        },
        "channels     DESK/channels/%2FZYN%2Fphone/999999-1: a dead socket: process 999999 ended",
        "start that program again");
    row(
        "stopped listener", [](Desk& desk) { desk.phone.tell(SIGSTOP); }, "channels     DESK/channels/%2FZYN%2Fphone/",
        "kill -CONT ");
    row(
        "stopped service", [](Desk& desk) { desk.phone.tell(SIGSTOP); },
        "services     /tmp/zynphonecom/voicecall_interface: the phone server, process ", "kill -CONT ");
    row(
        "service whose directory is a file",
        [](Desk& desk) {
            desk.phone.stop();
            isDone = ::rename("/tmp/zynphonecom", desk.path("moved").constData()) == 0
                     && QFile::copy(QFile::decodeName(desk.path("phone/rc_a")), u"/tmp/zynphonecom"_s);
        },
        "services     /tmp/zynphonecom: it is no directory", "mv /tmp/zynphonecom /tmp/zynphonecom.old\n");
    row(
        "channel that is a link",
        [](Desk& desk) {
            const QByteArray path = desk.path("channels/%2FZYN%2Fphone");
            isDone = ::rename(path.constData(), desk.path("moved").constData()) == 0
                     && ::symlink(desk.path("moved").constData(), path.constData()) == 0;
        },
        "channels     DESK/channels/%2FZYN%2Fphone: it is a symbolic link", "name the directory");
    row(
        "service that does not run", [](Desk& desk) { desk.recentCalls.stop(); },
        "services     /tmp/zynrecentcallcom/recentcall_interface: the recent-call service does not run",
        "start the recent-call service: zyn-recentcalld &");
    row(
        "service that died", [](Desk& desk) { desk.recentCalls.stop(SIGKILL); },
        "services     /tmp/zynrecentcallcom/recentcall_interface: nobody serves this socket: no call is logged",
        "start the recent-call service");
    row(
        "service whose place is taken",
        [](Desk& desk) {
            desk.phone.stop();
            isDone = QFile::copy(QFile::decodeName(desk.path("phone/rc_a")), QLatin1String(kPhoneSocket));
        },
        "services     /tmp/zynphonecom/voicecall_interface: it is no socket",
        "mv /tmp/zynphonecom/voicecall_interface");
    row(
        "store that is a file",
        [](Desk& desk) {
            desk.write("file", {});
            qputenv("ZYN_LOCAL_APP_WRITE_PATH", desk.path("file"));
        },
        "environment  ZYN_LOCAL_APP_WRITE_PATH: no store can be made in DESK/file: it is no directory",
        "mv DESK/file DESK/file.old\n");
    row(
        "record file of another version",
        [](Desk& desk) { desk.write("phone/rc_m", QByteArray("\xD0\xC0\xB0\xA0\4", 5).leftJustified(11'408, '\0')); },
        "store        DESK/phone/rc_m: damaged: the version is 4, not 5", "zynphone inspect --repair DESK/phone, ");
    row(
        "record file cut short", [](Desk& desk) { ::truncate(desk.path("phone/rc_d").constData(), 100); },
        "store        DESK/phone/rc_d: damaged: the size is 100 bytes, not 11408", "keeps a copy");
    row(
        "contact's file cut short", [](Desk& desk) { desk.write("phone/5550001", "x"); },
        "store        DESK/phone/5550001: damaged", "zynphone inspect DESK/phone/5550001");
    row(
        "favourites' file cut short", [](Desk& desk) { desk.write("phone/topPalsDetails", "x"); },
        "store        DESK/phone/topPalsDetails: damaged", "zynphone inspect");
    row(
        "settings not understood",
        [](Desk& desk) { desk.write("setup/zyn_app4.cfg", "[a]\nb=c\n# d\n\nrubbish\n\xFF=1\n"); },
        "settings     DESK/setup/zyn_app4.cfg: passed over: line 5, 6,", "correct or remove it");
    row(
        "settings too long", [](Desk& desk) { desk.write("setup/zyn_handset.cfg", QByteArray(2'000'000, '\n')); },
        "settings     DESK/setup/zyn_handset.cfg: it is too long", "shorten it to 1 MiB");
    row(
        "settings below a file", [](Desk& desk) { qputenv("ZYN_APP_WRITE_PATH", desk.path("phone/rc_a/none")); },
        "settings     DESK/phone/rc_a: it is no directory", "mv DESK/phone/rc_a DESK/phone/rc_a.old");
    row(
        "settings that are a directory",
        [](Desk& desk) { QDir().mkpath(QFile::decodeName(desk.path("setup/zyn_toppals.cfg"))); },
        "settings     DESK/setup/zyn_toppals.cfg: it is no regular file",
        "mv DESK/setup/zyn_toppals.cfg DESK/setup/zyn_toppals.cfg.old");
}

void ZynphoneDoctorTest::findsEachFault()
{
    QFETCH(Plant, plant);
    QFETCH(QString, finding);
    QFETCH(QString, remedy);
    const auto runtime = qgetenv("XDG_RUNTIME_DIR");
    Desk desk;
    QVERIFY(desk.isSound);
    isDone = true;
    plant(desk);
    const auto clean = qScopeGuard([&desk] {
        desk.phone.tell(SIGCONT);
        QFile::remove(QLatin1String(kPhoneSocket));
        QFile::remove(u"/tmp/zynphonecom"_s); // where it is no directory
    });
    if (!isDone)
        QSKIP("only root can give a directory away");
    const QString report = tool::run("doctor").replace(QFile::decodeName(desk.path()).chopped(1), u"DESK"_s);
    qputenv("XDG_RUNTIME_DIR", runtime);
    const qsizetype place = report.indexOf(u"wrong  "_s + finding);
    QVERIFY2(place >= 0, qPrintable(report));
    const QString next = report.mid(report.indexOf(u'\n', place) + 1).section(u'\n', 0, 0) + u'\n';
    QVERIFY2(next.startsWith(u"       do: "_s) && next.contains(remedy), qPrintable(next));
    QVERIFY(report.endsWith(u"exit 1"));
}

void ZynphoneDoctorTest::findsAnotherUsersService()
{
    Desk desk;
    QCOMPARE(desk.recentCalls.stop(), 0);
    if (::seteuid(kNobody) != 0)
        QSKIP("only root can play another user");
    const auto listener = zyn::posix::listenUnix(zyn::recentcall::kSocketPath, 0666);
    QCOMPARE(::seteuid(0), 0);
    QVERIFY(listener.isValid());
    const QString report = tool::run("doctor");
    QFile::remove(QLatin1String(zyn::recentcall::kSocketPath));
    QVERIFY2(report.contains(u"the recent-call service there belongs to user 65534"), qPrintable(report));
}

void ZynphoneDoctorTest::changesNothing()
{
    const StoreFixture empty;
    const auto setQcop = qScopeGuard([] { qunsetenv("ZYN_QCOP_PATH"); });
    qputenv("ZYN_QCOP_PATH", QFile::encodeName(empty.path() + u"/channels"_s));
    QVERIFY(tool::run("doctor").endsWith(u"3 things to mend.\nexit 1"));
    QVERIFY(QDir(empty.path()).isEmpty());
}

void ZynphoneDoctorTest::writesJson()
{
    const Desk desk;
    desk.write("phone/rc_m", {});
    const QString report = tool::run("doctor --json");
    QJsonArray wrong;
    for (const QJsonValue finding : QJsonDocument::fromJson(report.section(u'\n', 0, 0).toUtf8()).array()) {
        if (finding[u"level"] == u"wrong"_s)
            wrong += finding;
    }
    QVERIFY(report.endsWith(u"exit 1"));
    QCOMPARE(wrong.size(), 1);
    const QJsonObject finding = wrong.first().toObject();
    QCOMPARE(finding.keys(), QStringList({u"level"_s, u"remedy"_s, u"subject"_s, u"text"_s, u"topic"_s}));
    QCOMPARE(finding[u"subject"].toString(), QFile::decodeName(desk.path("phone/rc_m")));
}

void ZynphoneDoctorTest::usesColoursWhereTheyAreWelcome()
{
    const StoreFixture empty;
    for (const char* noColour : {"", "1"}) {
        Terminal terminal(80, 24);
        terminal.start(QStringLiteral(ZYN_TOOL), {u"doctor"_s}, {{u"NO_COLOR"_s, QLatin1String(noColour)}});
        QCOMPARE(role::finish(terminal.process), 1);
        const QByteArray report = terminal.take();
        QVERIFY(report.contains("to mend"));
        QCOMPARE(report.contains("\033[31mwrong"), *noColour == '\0');
        QCOMPARE(report.contains('\033'), *noColour == '\0');
    }
}

QTEST_GUILESS_MAIN(ZynphoneDoctorTest)
#include "tst_zynphone_doctor.moc"
