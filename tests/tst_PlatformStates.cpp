// The platform's time conversion and the states of the stand-in handset.
#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "platform/UTIL_PhoneStatus.h"
#include "platform/UTIL_TimeConversion.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <climits>
#include <cstdint>
#include <ctime>

using namespace Qt::StringLiterals;

class tst_PlatformStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // A zone of its own, with the clock changes of central Europe.
        qputenv("TZ", "XST-1XDT,M3.5.0,M10.5.0/3");
        ::tzset();
        qputenv("ZYN_APP_WRITE_PATH", QFile::encodeName(m_directory.path()));
    }
    void convertsToSeconds_data();
    void convertsToSeconds();
    void convertsBackToLocalTime();
    void keepsEverySecondAcrossClockChanges();
    void readsStatesAtEveryCall_data();
    void readsStatesAtEveryCall();

private:
    QTemporaryDir m_directory;
};

void tst_PlatformStates::convertsToSeconds_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<qlonglong>("seconds");

    const auto utc = [](const char* text) { return QDateTime::fromString(QLatin1String(text), Qt::ISODate); };
    QTest::newRow("the epoch") << utc("1970-01-01T00:00:00Z") << 0LL;
    QTest::newRow("before the epoch") << utc("1969-12-31T23:59:59Z") << -1LL;
    QTest::newRow("local time in summer") << utc("2026-07-01T12:00:00") << 1782900000LL;
    QTest::newRow("local time in winter") << utc("2026-01-01T12:00:00") << 1767265200LL;
    QTest::newRow("time of another zone") << utc("2026-01-01T12:00:00+05:30") << 1767249000LL;
    QTest::newRow("the last second") << utc("2038-01-19T03:14:07Z") << 2147483647LL;
    QTest::newRow("the second after it") << utc("2038-01-19T03:14:08Z") << 2147483647LL;
    QTest::newRow("far ahead") << utc("9999-12-31T23:59:59Z") << 2147483647LL;
    QTest::newRow("the first second") << utc("1901-12-13T20:45:52Z") << -2147483648LL;
    QTest::newRow("the second before it") << utc("1901-12-13T20:45:51Z") << -2147483648LL;
    QTest::newRow("long ago") << utc("0001-01-01T00:00:00Z") << -2147483648LL;
    QTest::newRow("no time") << QDateTime() << 0LL;
    QTest::newRow("a date that does not exist") << QDateTime(QDate(2026, 2, 30), QTime(1, 1)) << 0LL;
}

void tst_PlatformStates::convertsToSeconds()
{
    QFETCH(const QDateTime, time);
    QTEST(qlonglong(UTIL_TimeConversion::toUTC(time)), "seconds");
}

void tst_PlatformStates::convertsBackToLocalTime()
{
    const QDateTime summer = UTIL_TimeConversion::fromUTC(1782900000);
    QCOMPARE(summer.timeSpec(), Qt::LocalTime);
    QCOMPARE(summer.toString(Qt::ISODate), QLatin1String("2026-07-01T12:00:00"));
    QCOMPARE(UTIL_TimeConversion::fromUTC(-1).toSecsSinceEpoch(), -1);
    QCOMPARE(UTIL_TimeConversion::fromUTC(LONG_MAX).toSecsSinceEpoch(), INT32_MAX);
    QCOMPARE(UTIL_TimeConversion::fromUTC(LONG_MIN).toSecsSinceEpoch(), INT32_MIN);
}

void tst_PlatformStates::keepsEverySecondAcrossClockChanges()
{
    for (const long change : {1774746000L, 1792890000L}) { // 2026-03-29 and 2026-10-25, 01:00 UTC
        QVERIFY(UTIL_TimeConversion::fromUTC(change).isDaylightTime() !=
                UTIL_TimeConversion::fromUTC(change - 1).isDaylightTime());
        for (long seconds = change - 7200; seconds <= change + 7200; seconds += 599)
            QCOMPARE(UTIL_TimeConversion::toUTC(UTIL_TimeConversion::fromUTC(seconds)), seconds);
    }
}

void tst_PlatformStates::readsStatesAtEveryCall_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("fixedDialing"); // in the one byte that the question has for it

    QTest::newRow("a state") << u"1"_s << 1 << 1;
    QTest::newRow("another of the same length") << u"4"_s << 4 << 4;
    QTest::newRow("more than a byte holds is not 1") << u"257"_s << 257 << 255;
    QTest::newRow("less than a byte holds is not 1") << u"-255"_s << -255 << 0;
    QTest::newRow("no number") << u"locked"_s << 0 << 0;
    QTest::newRow("too large a number") << u"4294967297"_s << 0 << 0;
    QTest::newRow("no text") << u""_s << 0 << 0;
}

void tst_PlatformStates::readsStatesAtEveryCall()
{
    QFETCH(const QString, text);
    QFETCH(const int, value);
    QFETCH(const int, fixedDialing);
    SETUP_SET_Manager settings(zyn::handset::stateFile(), false);
    const auto states = [] {
        TAPI_BOOL_STATUS_E state{9};
        const int error = TAPI_FIXDIALING_GetStatus(1, &state);
        return QList<int>{UTIL_GetSimCardStatus(), UTIL_GetKeypadLockStatus(), UTIL_GetPhoneSystemStatus(), state,
                          error};
    };
    QFile::remove(zyn::handset::stateFile());
    QList<int> expected{0, 0, 0, 0, 0};
    QCOMPARE(states(), expected);
    for (qsizetype i = 0; i < expected.size(); ++i) {
        QVERIFY(settings.setSettingInfo(u"Handset"_s, QLatin1String(zyn::handset::kStates[size_t(i)].key), text));
        expected[i] = value;
        if (i == 3)
            expected[i] = fixedDialing;
        if (i == 4 && value != 0)
            expected[3] = 9; // untouched by a question that fails
        QCOMPARE(states(), expected);
    }
    QCOMPARE(TAPI_FIXDIALING_GetStatus(1, nullptr), value);
}

QTEST_APPLESS_MAIN(tst_PlatformStates)
#include "tst_PlatformStates.moc"
