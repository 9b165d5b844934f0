// Names and requests on the phone channel, and the payload encoding.
#include "support/StdoutCapture.h"
#include "support/Timeout.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

namespace {

constexpr PHONE_Msg::PHONE_MSG_TYPE_T type(int value)
{
    return static_cast<PHONE_Msg::PHONE_MSG_TYPE_T>(value);
}

} // namespace

class tst_PHONE_Msg : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void namesTheTypesAndSendsNothingWithoutAName();
    void sendsRequests();
    void writesEveryKindOfField();
};

void tst_PHONE_Msg::namesTheTypesAndSendsNothingWithoutAName()
{
    PHONE_Msg message(nullptr, "it");
    QCOMPARE(message.objectName(), QStringLiteral("it"));
    QCOMPARE(message.metaObject()->className(), "QCopChannel");
    QCOMPARE(message.getMsg(type(0)), "PHONE_MSG_0");
    QCOMPARE(message.getMsg(type(54)), "PHONE_MSG_54");
    QVERIFY(message.getMsg(type(-1)).isEmpty() && !message.getMsg(type(55)).isNull());

    QSignalSpy received(&message, &QCopChannel::received);
    StdoutCapture capture;
    const bool sent[] = {message.send(type(55)), message.send(type(-1), "x"), message.send(type(7), "x")};
    const QString log = QString::fromLatin1(capture.take());
    QVERIFY(!sent[0] && !sent[1] && sent[2]);
    const QString pattern = QStringLiteral("@ \n@ \nError in getting message@ \n")
                                .replace(u'@', QStringLiteral("utility/PHONE_Msg,send,\\d+"));
    QVERIFY2(QRegularExpression(QRegularExpression::anchoredPattern(pattern)).match(log).hasMatch(), qPrintable(log));
    QTRY_COMPARE(received.size(), 1);
    QCOMPARE(received[0], (QVariantList{QByteArray("PHONE_MSG_7"), QByteArray("x")}));
}

void tst_PHONE_Msg::sendsRequests()
{
    PHONE_MsgClient client;
    QCopChannel server("/ZYN/phone");
    QByteArray requests;
    connect(&server, &QCopChannel::received, this,
            [&](const QCString& name, const QByteArray& data) { requests += name + ' ' + data.toHex() + ", "; });
    StdoutCapture capture;
    client.setRFMode(true);
    client.setRFMode(false);
    client.setFearureDBCurrLang(-2);
    client.resetTotalDuration(true);
    client.resetTotalDuration(false);
    const bool sent = client.getTotalByteAndConnectedDuration();

    QVERIFY(capture.take().contains("\nutility/PHONE_MsgClient,getTotalByteAndConnectedDuration,"));
    QVERIFY(sent);
    QTRY_COMPARE(requests, "PHONE_MSG_24 00000001, PHONE_MSG_24 00000000, PHONE_MSG_25 fffffffe, "
                           "PHONE_MSG_35 00000000, PHONE_MSG_35 00000001, PHONE_MSG_54 , ");
}

void tst_PHONE_Msg::writesEveryKindOfField()
{
    static constexpr zyn::Message kAll{.channel = "",
                                       .name = "",
                                       .fields = {{zyn::FieldKind::Int, ""},
                                                  {zyn::FieldKind::Byte, ""},
                                                  {zyn::FieldKind::Char, ""},
                                                  {zyn::FieldKind::Raw, "", 4},
                                                  {zyn::FieldKind::Text, ""},
                                                  {zyn::FieldKind::Text, ""},
                                                  {zyn::FieldKind::Text, ""}}};
    const QByteArray payload =
        zyn::encode(kAll, {-2, 0xC8, -1, QByteArray("\1\2\3"), QString(), QStringLiteral(""), QStringLiteral("AB")});
    QCOMPARE(payload.toHex(), "fffffffec8ff01020300ffffffff000000000000000400410042");
}

QTEST_GUILESS_MAIN(tst_PHONE_Msg)
#include "tst_PHONE_Msg.moc"
