// The activity log of five favourites on disk.
#include "support/ActivityLogFixture.h"
#include "support/ScopedFileSizeLimit.h"

#include <limits>
#include <map>
#include <random>

using namespace Qt::StringLiterals;
using namespace activity;

namespace {

using Records = QList<PHONE_ENG_ActivityLog*>;

constexpr int kLargest = std::numeric_limits<int>::max();
const QByteArray kHeader = QByteArray::fromHex("d0c0b0a005000000");
const QByteArray kFreePlace = QByteArray::fromHex("ffffffff").leftJustified(24, '\0');
const QString kDetails = u"topPalsDetails"_s;

QByteArray place(char own, const QByteArray& number)
{
    return own + QByteArray(3, '\0') + number.leftJustified(20, '\0');
}

/// The favourites' numbers, a comma behind each of the first four.
QString favourites()
{
    QStringList names(5);
    return log().getCurrentTopPalsFileNames(names.data()) ? names.join(u',') : QString();
}

/// The parts of a file of test data that begin with @p mark.
QStringList parts(const QString& name, const QString& mark)
{
    QFile file(QFINDTESTDATA(u"data/"_s + name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no %s", qPrintable(name));
    return QString::fromLatin1('\n' + file.readAll().chopped(1)).split(u'\n' + mark).mid(1);
}

/// The newest of @p v first, by a selection sort in its plainest form.
Records selectionSort(Records v)
{
    const auto isOlder = [](auto* left, auto* right) { return left->getStartDateTime() < right->getStartDateTime(); };
    for (qsizetype i = 0; i < v.size() && i < 15; ++i)
        v.swapItemsAt(i, std::max_element(v.begin() + i, v.end(), isOlder) - v.begin());
    return v.first(std::min<qsizetype>(v.size(), 15));
}

} // namespace

class tst_ActivityLog_ENG_RecordStore : public StoreTest<ActivityLogFixture>
{
    Q_OBJECT

private Q_SLOTS:
    // While the size of files is limited, what is printed must not have to be written.
    void initTestCase() { std::setvbuf(stdout, nullptr, _IOFBF, 65'536); }
    void init() { begin(); }
    void cleanup() { end(); }

    void keepsItsFilesByteForByte()
    {
        QByteArray contact = kHeader + blankSlot().repeated(15);
        QCOMPARE(revamp({}, u"5551234"_s), 1);
        QCOMPARE(m_fixture->read(u"5551234"_s), contact);
        QCOMPARE(revamp({}, u"*#1"_s), 1);
        QCOMPARE(revamp(u"5551234"_s, u"0123456789012345678"_s), 1);
        QCOMPARE(m_fixture->read(kDetails),
                 kHeader + place(0, "01234567890123456") + place(1, "*#1") + kFreePlace.repeated(3));
        QCOMPARE(m_fixture->files(), u"*#1 0123456789012345678 topPalsDetails"_s);
        QCOMPARE(log().getTopPalFileItem(u"0123456789012345678"_s), -1);

        PHONE_ENG_ActivityLog record = entry(u"*#1"_s);
        for (const int slot : {0, 1, 2}) {
            QCOMPARE(log().addTopPalsAvlItem(record), 1);
            QCOMPARE(record.topPalsAvlPos, slot);
            contact.replace(8 + 300 * slot, 300, bytes(record));
        }
        record.setMsgString(u"hello"_s);
        QCOMPARE(log().modifyTopPalsAvlItem(record), 1);
        contact.replace(608, 300, bytes(record));
        record.topPalsAvlPos = 1;
        QCOMPARE(log().removeTopPalsAvlItem(record), 1);
        QCOMPARE(m_fixture->read(u"*#1"_s), contact.replace(308, 300, blankSlot()));
        QCOMPARE(add(u"*#1"_s), 1);

        qunsetenv("ZYN_LOCAL_APP_WRITE_PATH");
        QCOMPARE(log().getStoreFileName(u"5551234"_s), u"/tmp/phone/5551234"_s);
        QVERIFY(QDir().rmdir(u"/tmp/phone"_s));
    }

    void knowsUsedSlotsOfAFileOfAnyLength_data()
    {
        QTest::addColumn<int>("length"); // of a file whose slots 0, 1, 3 and 4 of 5 are in use
        QTest::addColumn<int>("slots");
        QTest::addColumn<QList<int>>("added"); // in one process, which reads nothing
        QTest::addColumn<int>("grown");        // in the same process, when the number of slots has grown
        QTest::newRow("as many slots as ever") << 1508 << 5 << QList{2, -1} << 5;
        QTest::newRow("more slots than before") << 1508 << 7 << QList{2, 5, 6, -1} << 7;
        QTest::newRow("fewer slots, one of them free") << 1508 << 4 << QList{2, -1} << 5;
        QTest::newRow("fewer slots, all in use") << 1508 << 2 << QList{-1} << 2;
        QTest::newRow("no slots") << 1508 << 0 << QList{-1} << 2;
        QTest::newRow("the most slots") << 1508 << 32'767 << QList{2, 5, 6} << 7;
        QTest::newRow("a byte short of its last slot") << 1507 << 5 << QList{2, 4, -1} << 5;
        QTest::newRow("a byte longer") << 1509 << 5 << QList{2, -1} << 5;
        QTest::newRow("the in-use byte of a slot at its end") << 8 + 300 + 65 << 3 << QList{1, 2, -1} << 3;
        QTest::newRow("one slot") << 308 << 3 << QList{1, 2, -1} << 3;
        QTest::newRow("a header alone") << 8 << 2 << QList{0, 1, -1} << 2;
        QTest::newRow("longer than any") << 9'830'108 + 301 << 6 << QList{2, 5, -1} << 6;
    }

    void knowsUsedSlotsOfAFileOfAnyLength()
    {
        QFETCH(int, length);
        QFETCH(int, slots);
        QFETCH(QList<int>, added);
        m_fixture->setSlots(u"5"_s);
        revamp({}, u"1"_s);
        for (int slot = 0; slot < 5; ++slot)
            add(u"1"_s, slot);
        PHONE_ENG_ActivityLog record = entry(u"1"_s, 0, 2);
        log().removeTopPalsAvlItem(record);
        m_fixture->write(u"1"_s, m_fixture->read(u"1"_s).leftJustified(length, '\0', true));
        m_fixture->setSlots(QString::number(slots));
        ActivityLog_ENG_RecordStore::destroy();
        for (const int slot : added)
            QCOMPARE(add(u"1"_s, 9), slot);
        m_fixture->setSlots(u"32767"_s);
        QTEST(add(u"1"_s, 9), "grown");
    }

    void ordersAsASelectionSortDoes()
    {
        std::mt19937 random(5); // NOLINT: the same on every run
        for (int round = 0; round < 200; ++round) {
            QSortedList<PHONE_ENG_ActivityLog> list;
            list.setAutoDelete(true);
            for (int i = 0; i < round; ++i) {
                list.append(new PHONE_ENG_ActivityLog);
                list.getLast()->startTime = static_cast<int>(random() % 8 ? random() % 7 : random());
            }
            const Records expected = selectionSort(Records(list.begin(), list.end()));
            log().sortOnTimeStamp(list);
            QCOMPARE(Records(list.begin(), list.end()), expected);
        }
    }

    void readsDamagedFilesWithinTheirBounds()
    {
        m_fixture->setSlots(u"3"_s);
        revamp({}, u"1"_s);
        add(u"1"_s, 1);
        add(u"1"_s, 2);
        const QByteArray whole = m_fixture->read(u"1"_s);
        for (int length = 0; length <= whole.size() + 1; ++length) {
            m_fixture->write(u"1"_s, whole.leftJustified(length, '\x01', true));
            const QStringList expected = {u"0"_s, u"0 1"_s, u"0 2 1"_s, u"1 2 1"_s};
            QCOMPARE(read(u"1"_s), expected.at(std::max(length - 8, 0) / 300));
            QCOMPARE(log().checkTopPalsFile(m_fixture->file(u"1"_s)), length == whole.size());
        }
        for (int byte = 0; byte < 8; ++byte) {
            m_fixture->write(u"1"_s, QByteArray(whole).replace(byte, 1, QByteArray(1, char(whole[byte] ^ 0x40))));
            QCOMPARE(read(u"1"_s), u"0"_s);
            QVERIFY(!log().checkTopPalsFile(m_fixture->file(u"1"_s)));
        }
        // Foreign places mark nothing, nor does a number that fills its field.
        log().clearTopPalsAvlFlag(u"1"_s, 0);
        for (const int pos : {-1, 3, 15, kLargest, -kLargest - 1}) {
            const QByteArray slot = bytes(entry(u"1"_s, 0, pos));
            m_fixture->write(u"1"_s, kHeader + slot.repeated(2) + QByteArray(slot).replace(0, 42, QByteArray(42, '1')));
            QCOMPARE(read(u"1"_s), u"1 0 0 0"_s);
            QCOMPARE(log().getAvailableTopPalsAvlPos(u"1"_s), 0);
        }
    }

    void replacesDamagedFiles()
    {
        revamp({}, u"1"_s);
        const QByteArray details = m_fixture->read(kDetails);
        for (const QByteArray& damaged : {details.chopped(1), details + '\0', '\xD1' + details.sliced(1)}) {
            m_fixture->write(kDetails, damaged);
            ActivityLog_ENG_RecordStore::destroy();
            QCOMPARE(revamp({}, u"1"_s), 0); // its file stays
            QCOMPARE(m_fixture->read(kDetails), kHeader + kFreePlace.repeated(5));
        }
        m_fixture->write(u"1"_s, QByteArray(9000, '\x01'));
        QCOMPARE(revamp({}, u"1"_s), 1);
        QCOMPARE(m_fixture->read(u"1"_s), kHeader + blankSlot().repeated(15));
        QCOMPARE(m_fixture->files(), u"1 topPalsDetails"_s);
        // A number without an end, and a place with another's number.
        m_fixture->write(kDetails, kHeader + place(0, QByteArray(20, '1')) + place(127, "2") + kFreePlace.repeated(3));
        ActivityLog_ENG_RecordStore::destroy();
        QCOMPARE(favourites(), u"11111111111111111,2,,,"_s);
        QCOMPARE(log().getValidIndexForTopPalFiles(), 2);
    }

    void namesNoFileOfAnotherKind()
    {
        StoreFixture::store(); // makes the call log's files
        revamp({}, u"1"_s);
        const auto everything = [&] {
            QByteArrayList contents = {m_fixture->files().toUtf8()};
            for (const QByteArray& name : contents.first().split(' '))
                contents += m_fixture->read(QString::fromUtf8(name));
            return contents;
        };
        const QByteArrayList before = everything();
        for (const QString& number :
             {u""_s, u"."_s, u".."_s, u"../phone/1"_s, u"a/"_s, u"topPalsDetails"_s, u"rc_a"_s, u"rc_m"_s, u"rc_d"_s,
              u"rc_e"_s, u"topPalsLock"_s, u"1.new.1"_s, u"1.old.1"_s, u".old."_s, u"1\0"_s}) {
            QCOMPARE(log().getStoreFileName(number).isNull(), number != kDetails);
            QCOMPARE(revamp({}, number), 0);
            QCOMPARE(read(number), u"0"_s);
            PHONE_ENG_ActivityLog record = entry(number, 0, 0);
            if (!number.contains(QChar::Null)) // which a record cannot hold
                QCOMPARE(log().modifyTopPalsAvlItem(record) + log().removeTopPalsAvlItem(record), 0);
        }
        QCOMPARE(everything(), before);
        QCOMPARE(revamp({}, QString(300, u'1')), 1); // a place without a file
        QCOMPARE(m_fixture->files().toUtf8(), before.first());
        QCOMPARE(favourites(), u"1,11111111111111111,,,"_s);
    }

    void livesThroughChanges()
    {
        for (const QString& line : parts(u"activity_log_life.txt"_s, {})) {
            const QString command = line.section(u" -> "_s, 0, 0);
            if (!line.startsWith(u'#'))
                QCOMPARE(command + u" -> "_s + run(command), line);
        }
    }

    void printsWhatItDoes()
    {
        RecentCall_Setup::instance();
        m_fixture->setSlots(u"2"_s);
        for (const QString& exchange : parts(u"activity_log.txt"_s, u"$ "_s)) {
            const QString command = exchange.section(u'\n', 0, 0);
            StdoutCapture output;
            run(QString(command).remove(u"quietly "_s));
            const QByteArray printed = output.take().replace(qgetenv("ZYN_LOCAL_APP_WRITE_PATH") + "/phone", "@");
            const QByteArrayList lines = (command.toLatin1() + '\n' + printed).chopped(1).split('\n');
            if (!command.startsWith(u"quietly"_s))
                QCOMPARE(lines, exchange.toLatin1().split('\n'));
        }
    }

    // last: the counter stays
    void countsItsEntries()
    {
        revamp({}, u"1"_s);
        PHONE_ENG_ActivityLog record = entry(u"1"_s);
        log().addTopPalsAvlItem(record);
        const int first = record.topPalsAvlIndex;
        // What is read, and the next that is handed out: here to an entry that is refused.
        for (const auto& [index, next] : {std::pair(first + 1, first + 1),
                                          {first + 41, first + 42},
                                          {first, first + 43},
                                          {kLargest, kLargest},
                                          {first, kLargest}}) {
            record.topPalsAvlIndex = index;
            log().modifyTopPalsAvlItem(record);
            ActivityLog_ENG_RecordStore::destroy();
            read(u"1"_s);
            PHONE_ENG_ActivityLog refused = entry(u"999"_s);
            QCOMPARE(log().addTopPalsAvlItem(refused), 0);
            QCOMPARE(refused.topPalsAvlIndex, next);
        }
    }

private:
    QString run(const QString& line);
};

/// Does what @p line says, within a limited file size if it ends so, and gives the result.
QString tst_ActivityLog_ENG_RecordStore::run(const QString& line)
{
    const QStringList words = line.split(u' ');
    const auto numberAt = [&](int i) { return words.value(i) == u'-' ? QString() : words.value(i); };
    PHONE_ENG_ActivityLog record = entry(numberAt(1), 0, words.value(2).toInt());
    record.topPalsAvlIndex = words.value(3).toInt();
    const std::map<QString, std::function<QVariant()>> verbs = {
        {u"start"_s, [] { return ActivityLog_ENG_RecordStore::destroy(), log(), 0; }},
        {u"directory"_s, [&] { return qputenv("ZYN_LOCAL_APP_WRITE_PATH", words[1].toLatin1()); }},
        {u"slots"_s, [&] { return m_fixture->setSlots(words[1]), 1; }},
        {u"sweep"_s, [&] { return QDir(m_fixture->file(QString())).removeRecursively(), 0; }},
        {u"mkdir"_s, [&] { return int{QDir().mkdir(m_fixture->file(words[1]))}; }},
        {u"junk"_s, [&] { return m_fixture->write(words[1], QByteArray(700, '\x01')), 0; }},
        {u"patch"_s,
         [&] {
             const QByteArray bytes = QByteArray::fromHex(words[3].toLatin1());
             return m_fixture->write(words[1],
                                     m_fixture->read(words[1]).replace(words[2].toInt(), bytes.size(), bytes)),
                    0;
         }},
        {u"file"_s, [&] { return m_fixture->write(words[2], kHeader + bytes(record)), 0; }},
        {u"files"_s, [&] { return m_fixture->files(); }},
        {u"size"_s, [&] { return m_fixture->read(words[1]).size(); }},
        {u"favourites"_s, [] { return favourites(); }},
        {u"place"_s, [&] { return int{log().getTopPalFileItem(numberAt(1))}; }},
        {u"check"_s, [&] { return int{log().checkTopPalsFile(m_fixture->file(words[1]))}; }},
        {u"revamp"_s, [&] { return revamp(numberAt(1), numberAt(2)); }},
        {u"add"_s, [&] { return add(numberAt(1), words.value(2).toInt()); }},
        {u"read"_s, [&] { return read(numberAt(1)); }},
        {u"available"_s, [&] { return log().getAvailableTopPalsAvlPos(numberAt(1)); }},
        {u"modify"_s, [&] { return log().modifyTopPalsAvlItem(record); }},
        {u"remove"_s, [&] { return log().removeTopPalsAvlItem(record); }},
        {u"mark"_s, [&] { return log().setTopPalsAvlFlag(numberAt(1), record.topPalsAvlPos); }},
        {u"unmark"_s, [&] { return log().clearTopPalsAvlFlag(numberAt(1), record.topPalsAvlPos); }},
    };
    std::optional<ScopedFileSizeLimit> limit;
    if (line.contains(u" within "_s))
        limit.emplace(words.last().toUInt());
    return verbs.at(words[0])().toString();
}

QTEST_GUILESS_MAIN(tst_ActivityLog_ENG_RecordStore)
#include "tst_ActivityLog_ENG_RecordStore.moc"
