// The recent-call settings.
#include "platform/HandsetState_p.h"
#include "support/StdoutCapture.h"
#include "support/StoreFixture.h"

using namespace Qt::StringLiterals;

class tst_RecentCall_Setup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(); }
    void cleanup() { m_fixture.reset(); }

    void readsTheStoredValues_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QList<int>>("limits"); // of the categories 0 to 5
        QTest::addColumn<int>("frequent");
        QTest::addColumn<int>("view");
        QTest::addColumn<QByteArray>("log");

        const QList<int> defaults{0, 50, 50, 50, 150, 0};
        QTest::newRow("nothing stored") << ""_ba << defaults << 5 << 3 << "RC settings: 50, 50,50,5,3"_ba;
        QTest::newRow("all stored") << "maxAnsweredCall=20\nmaxMissedCall=30\nmaxDialedCall=10\n"
                                       "maxFrequentCall=9\nviewFromIdleSend=1\n"_ba
                                    << QList<int>{0, 20, 30, 10, 60, 0} << 9 << 1 << "RC settings: 20, 30,10,9,1"_ba;
        QTest::newRow("limits that do not fit the files are held")
            << "maxAnsweredCall=51\nmaxMissedCall=-1\nmaxDialedCall=2147483647\nmaxFrequentCall=999\n"_ba
            << QList<int>{0, 50, 0, 50, 100, 0} << 999 << 3 << "RC settings: 50, 0,50,999,3"_ba;
        QTest::newRow("text where numbers belong")
            << "maxAnsweredCall=many\nviewFromIdleSend=\n"_ba << defaults << 5 << 3 << "RC settings: 50, 50,50,5,3"_ba;
        const std::pair<int, int> views[] = {{2, 2}, {3, 5}, {4, 4}, {0, 3}, {7, 3}, {-1, 3}};
        for (const auto& [setting, view] : views) {
            QTest::addRow("view %d", setting) << "viewFromIdleSend=" + QByteArray::number(setting) << defaults << 5
                                              << view << "RC settings: 50, 50,50,5," + QByteArray::number(view);
        }
    }

    void readsTheStoredValues()
    {
        QFETCH(const QByteArray, stored);
        QFETCH(const QList<int>, limits);
        QFETCH(const QByteArray, log);
        writeFile("zyn_app4.cfg", "[RECENTCALL_SET]\n" + stored);

        StdoutCapture output;
        const RecentCall_Setup& setup = *RecentCall_Setup::instance();
        QCOMPARE(output.take(), log);
        for (int category = 0; category < limits.size(); ++category)
            QCOMPARE(setup.getMaxRecordSize(RC_CALL_CATEGORY_T(category)), limits[category]);
        QCOMPARE(setup.getMaxRecordSize(RC_CALL_CATEGORY_T(-1)), 0);
        QTEST(setup.getMaxFrequent(), "frequent");
        QTEST(int(setup.getIdleSendView()), "view");
    }

    void keepsTheLimitsWhileItLives()
    {
        QCOMPARE(RecentCall_Setup::instance()->getMaxRecordSize(RC_CALL_CATEGORY_MISSED), 50);
        writeFile("zyn_app4.cfg", "[RECENTCALL_SET]\nmaxMissedCall=3\n");
        QCOMPARE(RecentCall_Setup::instance()->getMaxRecordSize(RC_CALL_CATEGORY_MISSED), 50);
        RecentCall_Setup::destroy();
        RecentCall_Setup::destroy();
        QCOMPARE(RecentCall_Setup::instance()->getMaxRecordSize(RC_CALL_CATEGORY_MISSED), 3);
    }

    void storesTheTwoLineView()
    {
        RecentCall_Setup& setup = *RecentCall_Setup::instance();
        QVERIFY(!setup.getTwoLineView());
        QVERIFY(setup.setTwoLineView(true));
        QVERIFY(setup.getTwoLineView());
        writeFile("zyn_app4.cfg", "[RECENTCALL_SET]\ntwoLineView=false\n");
        QVERIFY(!setup.getTwoLineView());

        // A file stands where the settings directory would be.
        const QByteArray nowhere = QFile::encodeName(m_fixture->path()) + "/setup/zyn_app4.cfg";
        qputenv("ZYN_APP_WRITE_PATH", nowhere);
        StdoutCapture output;
        QVERIFY(!setup.setTwoLineView(true));
        QCOMPARE(output.take(), "unable to set setupvalue"_ba);
    }

    void knowsWhetherFixedDialingIsAvailable_data()
    {
        QTest::addColumn<QByteArray>("flex"); // what the feature-switch file holds; null for no file
        QTest::addColumn<QByteArray>("states");
        QTest::addColumn<bool>("available");

        QTest::newRow("enabled, no switch file") << QByteArray() << "FixedDialingStatus=1\n"_ba << true;
        QTest::newRow("enabled, switch on") << "1"_ba
                                            << "FixedDialingStatus=1\n"_ba << true;
        QTest::newRow("switch off") << "false"_ba
                                    << "FixedDialingStatus=1\n"_ba << false;
        QTest::newRow("not enabled") << QByteArray() << "FixedDialingStatus=0\n"_ba << false;
        QTest::newRow("another state") << QByteArray() << "FixedDialingStatus=2\n"_ba << false;
        QTest::newRow("phone system not ready")
            << QByteArray() << "FixedDialingStatus=1\nPhoneSystemStatus=4\n"_ba << false;
        QTest::newRow("the question fails")
            << QByteArray() << "FixedDialingStatus=1\nFixedDialingError=9\n"_ba << false;
    }

    void knowsWhetherFixedDialingIsAvailable()
    {
        QFETCH(const QByteArray, flex);
        QFETCH(const QByteArray, states);
        if (!flex.isNull())
            writeFile("zyn_fixeddial.cfg", "[Fixed Dial]\nFeat_8998=" + flex + "\n");
        writeFile("zyn_handset.cfg", "[Handset]\n" + states);

        RecentCall_Setup& setup = *RecentCall_Setup::instance();
        StdoutCapture output;
        QTEST(setup.isFixedDialingAvailable(), "available");
        const QByteArray file = QFile::encodeName(m_fixture->path()) + "/setup/zyn_fixeddial.cfg";
        QCOMPARE(output.take(),
                 "******** fixed dial flex: " + file + " ********\n" + (flex == "false" ? "FDN flex is off" : ""));
    }

    void readsTheFavouritesLimitAfresh()
    {
        RecentCall_Setup& setup = *RecentCall_Setup::instance();
        QCOMPARE(setup.getMaxTopPalsAvlItems(), 15U);
        const std::pair<QByteArray, unsigned int> stored[] = {
            {"10", 10}, {"4294967295", 4294967295U}, {"-1", 15}, {"x", 15}};
        for (const auto& [text, items] : stored) {
            writeFile("zyn_toppals.cfg", "[TopPals-UI]\nMaxItemsToLog=" + text + "\n");
            QCOMPARE(setup.getMaxTopPalsAvlItems(), items);
        }
    }

private:
    /// Writes a settings file by hand.
    void writeFile(const char* name, const QByteArray& text)
    {
        QDir(m_fixture->path()).mkdir(u"setup"_s);
        QFile file(m_fixture->path() + QLatin1String("/setup/") + QLatin1String(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    std::optional<StoreFixture> m_fixture;
};

QTEST_GUILESS_MAIN(tst_RecentCall_Setup)
#include "tst_RecentCall_Setup.moc"
