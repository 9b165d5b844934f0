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
    void convertsToSeconds();
    void convertsBackToLocalTime();
    void readsStatesAtEveryCall();

private:
    QTemporaryDir m_directory;
};

void tst_PlatformStates::convertsToSeconds()
{
    const std::pair<const char*, long> times[] = {
        {"1969-12-31T23:59:59Z", -1},
        {"2026-07-01T12:00:00", 1782900000}, // local time in summer
        {"2026-01-01T12:00:00", 1767265200}, // and in winter
        {"2026-01-01T12:00:00+05:30", 1767249000},
        {"2038-01-19T03:14:07Z", INT32_MAX},
        {"2038-01-19T03:14:08Z", INT32_MAX},
        {"9999-12-31T23:59:59Z", INT32_MAX},
        {"1901-12-13T20:45:52Z", INT32_MIN},
        {"0001-01-01T00:00:00Z", INT32_MIN},
    };
    for (const auto& [text, seconds] : times)
        QCOMPARE(UTIL_TimeConversion::toUTC(QDateTime::fromString(QLatin1String(text), Qt::ISODate)), seconds);
    QCOMPARE(UTIL_TimeConversion::toUTC(QDateTime(QDate(2026, 2, 30), QTime(1, 1))), 0L); // no such date
}

void tst_PlatformStates::convertsBackToLocalTime()
{
    const QDateTime summer = UTIL_TimeConversion::fromUTC(1782900000);
    QCOMPARE(summer.timeSpec(), Qt::LocalTime);
    QCOMPARE(summer.toString(Qt::ISODate), QLatin1String("2026-07-01T12:00:00"));
    QCOMPARE(UTIL_TimeConversion::fromUTC(LONG_MAX).toSecsSinceEpoch(), INT32_MAX);
    QCOMPARE(UTIL_TimeConversion::fromUTC(LONG_MIN).toSecsSinceEpoch(), INT32_MIN);
    for (const long change : {1774746000L, 1792890000L}) { // 2026-03-29 and 2026-10-25, 01:00 UTC
        QVERIFY(UTIL_TimeConversion::fromUTC(change).isDaylightTime()
                != UTIL_TimeConversion::fromUTC(change - 1).isDaylightTime());
        for (long seconds = change - 7200; seconds <= change + 7200; seconds += 599)
            QCOMPARE(UTIL_TimeConversion::toUTC(UTIL_TimeConversion::fromUTC(seconds)), seconds);
    }
}

void tst_PlatformStates::readsStatesAtEveryCall()
{
    struct Row
    {
        QString text;
        int value;
        int fixedDialing; // in the one byte that the question has for it
    };
    // Values of one length; more and less than a byte holds, which are not 1; and what is no number.
    const Row rows[] = {{u"1"_s, 1, 1},       {u"4"_s, 4, 4},      {u"257"_s, 257, 255},
                        {u"-255"_s, -255, 0}, {u"locked"_s, 0, 0}, {u"4294967297"_s, 0, 0}};
    const auto states = [] {
        TAPI_BOOL_STATUS_E state{9};
        const int error = TAPI_FIXDIALING_GetStatus(1, &state);
        return QList<int>{UTIL_GetSimCardStatus(), UTIL_GetKeypadLockStatus(), UTIL_GetPhoneSystemStatus(), state,
                          error};
    };
    SETUP_SET_Manager settings(zyn::handset::stateFile(), false);
    for (const auto& [text, value, fixedDialing] : rows) {
        QFile::remove(zyn::handset::stateFile());
        QList<int> expected{0, 0, 0, 0, 0};
        QCOMPARE(states(), expected);
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QVERIFY(settings.setSettingInfo(u"Handset"_s, QLatin1String(zyn::handset::kStates[size_t(i)].key), text));
            expected[i] = i == 3 ? fixedDialing : value;
            if (i == 4 && value != 0)
                expected[3] = 9; // untouched by a question that fails
            QCOMPARE(states(), expected);
        }
        QCOMPARE(TAPI_FIXDIALING_GetStatus(1, nullptr), value);
    }
}

QTEST_APPLESS_MAIN(tst_PlatformStates)
#include "tst_PlatformStates.moc"
