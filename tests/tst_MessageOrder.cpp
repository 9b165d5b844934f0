// The order of messages of several connections: by when they were sent, whenever they come.
#include "tests/support/Timeout.h"
#include "tools/recording/MessageOrder.h"

#include <QtTest/QTest>

#include <chrono>

using zyn::tool::MessageOrder;
using zyn::tool::ReceivedMessage;

namespace {

uint64_t now()
{
    return static_cast<uint64_t>(std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
}

ReceivedMessage message(const QByteArray& name, qsizetype size = 0)
{
    return {{}, "/a", name, QByteArray(size, 'x')};
}

} // namespace

class tst_MessageOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passesOnInTheOrderOfSending_data()
    {
        QTest::addColumn<QByteArrayList>("sent"); // each name is followed by when it was sent, in nanoseconds
        QTest::addColumn<QByteArray>("passedOn");
        QTest::newRow("as it came") << QByteArrayList{"a1", "b2", "c3"} << QByteArray("abc");
        QTest::newRow("the answer first") << QByteArrayList{"b2", "a1"} << QByteArray("ab");
        QTest::newRow("at one moment, as it came") << QByteArrayList{"b1", "a1", "c1"} << QByteArray("bac");
        QTest::newRow("late") << QByteArrayList{"a1", "c3", "!", "b2", "d4"} << QByteArray("acb*d");
    }
    void passesOnInTheOrderOfSending()
    {
        QFETCH(QByteArrayList, sent);
        QFETCH(QByteArray, passedOn);
        QByteArray names;
        MessageOrder order([&](const ReceivedMessage& given) { names += given.name + (given.isLate ? "*" : ""); });
        const uint64_t start = now();
        for (const QByteArray& step : sent) {
            if (step == "!")
                order.flush();
            else
                order.add(message(step.first(1)), start + step.mid(1).toULongLong());
        }
        QVERIFY(names.size() < passedOn.size());
        QTRY_COMPARE(names, passedOn);
    }

    void holdsBackNoMoreThanFits()
    {
        qsizetype count = 0;
        MessageOrder order([&](const ReceivedMessage&) { ++count; });
        const uint64_t later = now() + 3'600'000'000'000U;
        for (size_t i = 0; i < MessageOrder::kMostHeld + 5; ++i)
            order.add(message("m"), later);
        QCOMPARE(count, 5);
        order.flush();
        count = 0;
        for (int i = 0; i < 3; ++i)
            order.add(message("m", MessageOrder::kMostBytes / 2), later + 1);
        QCOMPARE(count, 1);
    }
};

QTEST_GUILESS_MAIN(tst_MessageOrder)
#include "tst_MessageOrder.moc"
