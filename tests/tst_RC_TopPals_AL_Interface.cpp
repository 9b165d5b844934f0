// The public face of the activity log: what it sends, prints and counts.
#include "platform/QCopChannel.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "support/ActivityLogFixture.h"
#include "support/Role.h"
#include "support/StdoutCapture.h"
#include "support/Timeout.h"

using namespace Qt::StringLiterals;
using namespace activity;

namespace {

/// The result and the counts: of missed calls, and of messages.
QList<int> unread(const QString& number)
{
    TopPals_Missed_Details details = {number, 77, 77};
    const int result = RC_TopPals_AL_Interface::instance()->getUnreadCount(details);
    return {result, details.missedCallCount, details.unreadMsgCount};
}

void logEntry(RC_CALL_CATEGORY_T category, int msgType, int readFlags)
{
    PHONE_ENG_ActivityLog record = entry(u"1234567"_s);
    record.category = category;
    record.msgType = msgType;
    record.readFlags = static_cast<uint8_t>(readFlags);
    log().addTopPalsAvlItem(record);
}

/// Logs a missed call each time that a line comes.
int logWhenAsked(const QStringList&)
{
    while (std::getchar() != EOF) {
        logEntry(RC_CALL_CATEGORY_MISSED, 0, 0);
        role::sayReady();
    }
    return EXIT_SUCCESS;
}

} // namespace

class tst_RC_TopPals_AL_Interface : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void announcesAFavourite()
    {
        QCopChannel channel("ACTIVITY_LOG_CHANNEL");
        QByteArray received;
        connect(&channel, &QCopChannel::received, this, [&](const QCString& message, const QByteArray& data) {
            received += message + ' ' + data.toHex() + '\n';
        });
        StdoutCapture output;
        const TopPals_Details_T details = {u"N\u00e9"_s, u"12"_s, QString(), -2};
        const bool isSent = RC_TopPals_AL_Interface::instance()->modifyTopPalsContactDetails(u""_s, details);
        const QByteArray told = output.take();
        QVERIFY(isSent);
        QTRY_COMPARE(received, "MODIFY_TOPPAL_DETAILS 00000000"
                               "0000000400310032"
                               "00000004004e00e9"
                               "ffffffff"
                               "fffffffe\n");
        const QByteArray line = "TP5_AVL: RC_TopPals_AL_Interface:modifyTopPalsContactDetails: ";
        QCOMPARE(told, "\nTP5_AVL: ENTER: RC_TopPals_AL_Interface::modifyTopPalsContactDetails\n" + line + "oldnum = \n"
                           + line + "num = 12\n" + line + "nam = N\xE9\n" + line + "imageloc = \n" + line
                           + "contactId = -2\n"
                             "TP5_AVL:EXIT: RC_TopPals_AL_Interface::modifyTopPalsContactDetails: returns = 1\n");

        qputenv("ZYN_QCOP_PATH", "relative");
        QVERIFY(!RC_TopPals_AL_Interface::instance()->modifyTopPalsContactDetails({}, {}));
        qunsetenv("ZYN_QCOP_PATH");
        RC_TopPals_AL_Interface::destruction();
    }

    void countsWhatIsUnread()
    {
        const ActivityLogFixture fixture;
        StdoutCapture output;
        QCOMPARE(unread(u"0015551234567"_s), (QList{0, 0, 0}));
        revamp({}, u"1234567"_s);
        QCOMPARE(unread(u"1234567"_s), (QList{1, 0, 0}));
        for (const int readFlags : {0, 1, 2, 3}) { // unread is the lowest bit alone
            logEntry(RC_CALL_CATEGORY_MISSED, 0, readFlags);
            logEntry(RC_CALL_CATEGORY_ANSWERED, 0, readFlags);
            logEntry(RC_CALL_CATEGORY_DIALED, -1, readFlags);
        }
        logEntry(RC_CALL_CATEGORY_MISSED, 4, 0); // counts as both
        QCOMPARE(unread(u"0015551234567"_s), (QList{1, 3, 3}));
        // A file that ends too early counts for nothing, nor does a number without a file.
        fixture.write(u"1234567"_s, fixture.read(u"1234567"_s).chopped(1));
        for (const QString& number : {u"1234567"_s, u"234567"_s, u"hone/.."_s, QString()})
            QCOMPARE(unread(number), (QList{0, 0, 0}));
        const QByteArray told = output.take();
        QVERIFY(told.startsWith("\nEntering RC_TopPals_AL_Interface::getUnreadCount()TP5_AVL:RC Store: ENTER: init"));
        QVERIFY(told.endsWith(" returns = 0\n\nExiting RC_TopPals_AL_Interface::getUnreadCount()"));
    }

    void countsWhatAnotherProcessLogs()
    {
        const ActivityLogFixture fixture;
        revamp({}, u"1234567"_s);
        const auto owner = role::start(u"owner"_s);
        for (int count = 1; count <= 3; ++count) {
            owner->write("\n");
            QVERIFY(role::waitReady(*owner));
            QCOMPARE(unread(u"1234567"_s), (QList{1, count, 0}));
        }
        owner->closeWriteChannel();
        QCOMPARE(role::finish(*owner), 0);
    }
};

int main(int argc, char** argv)
{
    return role::testMain<tst_RC_TopPals_AL_Interface>(argc, argv, {{u"owner"_s, logWhenAsked}});
}
#include "tst_RC_TopPals_AL_Interface.moc"
