// What is kept from one process to the next: settings, speed dial and the states of the stand-in handset; and its time.
#include "platform/HandsetState_p.h"
#include "platform/UTIL_PhoneStatus.h"
#include "platform/UTIL_TimeConversion.h"
#include "support/Scenario.h"
#include "support/StoreFixture.h"
#include "utility/PHONE_Setup.h"
#include "utility/PHONE_SpeedDial.h"

#include <climits>
#include <cstdint>
#include <ctime>

using namespace Qt::StringLiterals;

namespace {

using Words = QStringList;

RecentCall_Setup& setup()
{
    return *RecentCall_Setup::instance();
}

bool isTrue(const Words& words)
{
    return words[0] == u"true"_s;
}

QString numbers(const QList<int>& values)
{
    QStringList texts;
    for (const int value : values)
        texts += QString::number(value);
    return texts.join(u' ');
}

/// The limits of the categories 0 to 5 and of one that is none, of frequent calls, and the view.
QString limits()
{
    QList<int> values;
    for (const int category : {0, 1, 2, 3, 4, 5, -1})
        values += setup().getMaxRecordSize(RC_CALL_CATEGORY_T(category));
    return numbers(values << setup().getMaxFrequent() << int(setup().getIdleSendView()));
}

/// The states of the handset, and the error of the question for fixed dialing; its answer is 9 when that fails.
QString states()
{
    TAPI_BOOL_STATUS_E state{9};
    const int error = TAPI_FIXDIALING_GetStatus(1, &state);
    return numbers({UTIL_GetSimCardStatus(), UTIL_GetKeypadLockStatus(), UTIL_GetPhoneSystemStatus(), state, error,
                    TAPI_FIXDIALING_GetStatus(1, nullptr)});
}

QString turboList()
{
    QStringList all{u"old"_s};
    PHONE_SpeedDial().getTurboDialingList(all);
    return all.join(u',');
}

} // namespace

class tst_Settings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // A zone of its own, with the clock changes of central Europe.
        qputenv("TZ", "XST-1XDT,M3.5.0,M10.5.0/3");
        ::tzset();
    }
    void init() { m_fixture.emplace(); }

    void keeps_data() { scenario::addRows(QFINDTESTDATA("data/settings.txt")); }
    void keeps();
    void takesNumbersAsTheyCome();
    void convertsToLocalTimeAndBack();

private:
    QString path(const QString& name) const { return m_fixture->path() + u"/setup/"_s + name; }
    QString isFixedDialingAvailable() const
    {
        StdoutCapture output;
        const bool isAvailable = setup().isFixedDialingAvailable();
        return scenario::lineOf(output.take()).replace(path({}), u"setup/"_s) + (isAvailable ? u"yes"_s : u"no"_s);
    }

    std::optional<StoreFixture> m_fixture;
};

void tst_Settings::keeps()
{
    scenario::Verbs verbs = scenario::withOutput({
        {u"write"_s,
         [this](const Words& words) {
             QDir(m_fixture->path()).mkdir(u"setup"_s);
             QFile file(path(words[0]));
             return file.open(QIODevice::WriteOnly) && file.write(scenario::bytes(words[1]).replace('|', '\n')) >= 0;
         }},
        {u"file"_s,
         [this](const Words& words) {
             QFile file(path(words[0]));
             return file.open(QIODevice::ReadOnly) ? scenario::lineOf(file.readAll()) : u"none"_s;
         }},
        {u"nowhere"_s, [this] { return qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(path(u"zyn_app4.cfg"_s))); }},
        {u"through"_s,
         [this](const Words& words) {
             const QString link = path(u"../"_s + QString::fromUtf8(scenario::bytes(words[0])));
             return QFile::link(m_fixture->path(), link) && qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(link));
         }},
        {u"start"_s, [] { RecentCall_Setup::destroy(), RecentCall_Setup::destroy(), RecentCall_Setup::instance(); }},
        {u"limits"_s, limits},
        {u"two-line"_s, [](const Words& words) { return setup().setTwoLineView(isTrue(words)); }},
        {u"is-two-line"_s, [] { return int(setup().getTwoLineView()); }},
        {u"favourites-limit"_s, [] { return setup().getMaxTopPalsAvlItems(); }},
        {u"fixed-dialing"_s, [this] { return isFixedDialingAvailable(); }},

        {u"prepend"_s, [](const Words& words) { return PHONE_Setup().setPrepend(isTrue(words)); }},
        {u"is-prepend"_s, [] { return int(PHONE_Setup().isPrepend()); }},
        {u"turbo"_s, [](const Words& w) { return PHONE_SpeedDial().setTurboDialing(w[0].toInt(), w[1]); }},
        {u"turbo-all"_s,
         [](const Words& words) {
             return PHONE_SpeedDial().setTurboDialing(QString::fromUtf8(scenario::bytes(words[0])).split(u','));
         }},
        {u"turbo-of"_s,
         [](const Words& words) {
             const QString number = Phone_GetTurboDialingByIndex(words[0].toInt());
             return PHONE_SpeedDial().getTurboDialing(words[0].toInt()) == number ? number : u"two numbers"_s;
         }},
        {u"turbo-list"_s, turboList},
        {u"turbo-free"_s, [] { return PHONE_SpeedDial().getFirstAvailableTurboDialingIndex(); }},

        {u"states"_s, states},
        {u"set"_s,
         [](const Words& words) {
             return SETUP_SET_Manager(zyn::handset::stateFile(), false)
                 .setSettingInfo(u"Handset"_s, words[0], words[1]);
         }},
        {u"seconds"_s,
         [](const Words& w) {
             return qlonglong(UTIL_TimeConversion::toUTC(QDateTime::fromString(w[0], Qt::ISODate)));
         }},
        {u"time"_s,
         [](const Words& words) { return UTIL_TimeConversion::fromUTC(words[0].toLong()).toString(Qt::ISODate); }},
    });
    verbs.emplace(u"elsewhere"_s, [&](const Words& words) {
        return inAnotherProcess([&] { return verbs.at(words[0])(words.mid(1)).isEmpty(); });
    });
    scenario::play(verbs);
}

void tst_Settings::takesNumbersAsTheyCome()
{
    const QStringList all{u"1\n2=3"_s, u"\r"_s, QString(QChar(0xD83D)), u"\uFEFF112"_s, u"\\n\n"_s, u"\\n"_s, u" "_s};
    QVERIFY(PHONE_SpeedDial().setTurboDialing(all));
    QCOMPARE(turboList(), all.join(u',') + u",,"_s);
    for (int index = 1; index <= all.size(); ++index) {
        QVERIFY(PHONE_SpeedDial().setTurboDialing(index, all.at(all.size() - index)));
        QCOMPARE(Phone_GetTurboDialingByIndex(index), all.at(all.size() - index));
    }
}

void tst_Settings::convertsToLocalTimeAndBack()
{
    QCOMPARE(UTIL_TimeConversion::fromUTC(LONG_MAX).toSecsSinceEpoch(), INT32_MAX);
    QCOMPARE(UTIL_TimeConversion::fromUTC(LONG_MIN).toSecsSinceEpoch(), INT32_MIN);
    for (const long change : {1774746000L, 1792890000L}) { // 2026-03-29 and 2026-10-25, 01:00 UTC
        QVERIFY(UTIL_TimeConversion::fromUTC(change).isDaylightTime()
                != UTIL_TimeConversion::fromUTC(change - 1).isDaylightTime());
        for (long seconds = change - 7200; seconds <= change + 7200; seconds += 599)
            QCOMPARE(UTIL_TimeConversion::toUTC(UTIL_TimeConversion::fromUTC(seconds)), seconds);
    }
}

QTEST_GUILESS_MAIN(tst_Settings)
#include "tst_Settings.moc"
