// The activity log of five favourites on disk.
#include "support/ActivityLogFixture.h"
#include "support/Descriptors.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/StdoutCapture.h"

#include <QtTest/QTest>

#include <limits>
#include <optional>
#include <random>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kShownOutput = 1000;
constexpr int kLargest = std::numeric_limits<int>::max();
const QString kDetails = u"topPalsDetails"_s;

QByteArray header()
{
    return QByteArray::fromHex("d0c0b0a005000000");
}

QByteArray blankSlot()
{
    QByteArray slot(300, '\0');
    slot[80] = 1;
    return slot.replace(228, 8, QByteArray(8, '\xFF'));
}

QByteArray freePlace()
{
    return QByteArray(4, '\xFF') + QByteArray(20, '\0');
}

QByteArray place(char number, const QByteArray& text)
{
    return number + QByteArray(3, '\0') + text.leftJustified(20, '\0');
}

QByteArray bytes(const PHONE_ENG_ActivityLog& record)
{
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

/// What a selection sort prints and leaves, in the plainest way.
QByteArray selectionSort(QList<PHONE_ENG_ActivityLog*>& v, int slots)
{
    QByteArray swaps;
    for (int i = 0; i < v.size() && i < slots; ++i) {
        int max = i;
        for (int j = i + 1; j < v.size(); ++j) {
            if (v[max]->getStartDateTime() < v[j]->getStartDateTime())
                max = j;
        }
        if (max != i)
            swaps += "TP5_AVL:RC Store: sortOnTimeStamp(): swap(i = " + QByteArray::number(i)
                     + ", max = " + QByteArray::number(max) + ")\n";
        v.swapItemsAt(i, max);
    }
    v.resize(std::min(v.size(), qsizetype{slots}));
    return swaps;
}

} // namespace

class tst_ActivityLog_ENG_RecordStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // While a file size is limited, what is printed must not have to be written.
    void initTestCase() { std::setvbuf(stdout, nullptr, _IOFBF, 1 << 16); }
    void init()
    {
        m_output.emplace();
        m_fixture.emplace();
        m_descriptors = openDescriptors();
    }
    void cleanup()
    {
        QCOMPARE(openDescriptors(), m_descriptors);
        m_fixture.reset();
        const QByteArray output = m_output->take();
        m_output.reset();
        if (QTest::currentTestFailed())
            qInfo("%s", output.right(kShownOutput).constData());
    }

    void keepsItsFilesByteForByte();
    void keepsFiveFavourites();
    void followsTheNumberOfSlots();
    void overwritesNothingWithoutHavingRead();
    void ordersAsASelectionSortDoes();
    void readsDamagedFilesWithinTheirBounds();
    void replacesDamagedFiles();
    void namesNoFileOfAnotherKind();
    void failsCleanly();
    void tellsWhatItDoes();
    void countsItsEntries(); // last: the counter stays

private:
    std::optional<StdoutCapture> m_output;
    std::optional<ActivityLogFixture> m_fixture;
    qsizetype m_descriptors = 0;
};

void tst_ActivityLog_ENG_RecordStore::keepsItsFilesByteForByte()
{
    QByteArray contact = header() + blankSlot().repeated(15);
    QCOMPARE(m_fixture->join(u"5551234"_s), 1);
    QCOMPARE(m_fixture->read(u"5551234"_s), contact);
    QCOMPARE(m_fixture->read(kDetails), header() + place(0, "5551234") + freePlace().repeated(4));
    QCOMPARE(m_fixture->join(u"*#1"_s), 1);
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"5551234"_s, u"0123456789012345678"_s), 1);
    QCOMPARE(m_fixture->read(kDetails),
             header() + place(0, "01234567890123456") + place(1, "*#1") + freePlace().repeated(3));
    QCOMPARE(m_fixture->files(), u"*#1 0123456789012345678 topPalsDetails"_s);
    QCOMPARE(m_fixture->log().getTopPalFileItem(u"0123456789012345678"_s), -1);

    PHONE_ENG_ActivityLog record = m_fixture->entry(u"*#1"_s, 0x65432101);
    record.setMsgString(u"hello"_s);
    for (const int slot : {0, 1, 2}) {
        const int index = record.topPalsAvlIndex;
        QCOMPARE(m_fixture->log().addTopPalsAvlItem(record), 1);
        QVERIFY(record.topPalsAvlIndex == index + 1 || slot == 0);
        QCOMPARE(record.topPalsAvlPos, slot);
        contact.replace(8 + 300 * slot, 300, bytes(record));
    }
    record.readFlags = 1;
    QCOMPARE(m_fixture->log().modifyTopPalsAvlItem(record), 1);
    contact.replace(608, 300, bytes(record));
    record.topPalsAvlPos = 1;
    QCOMPARE(m_fixture->log().removeTopPalsAvlItem(record), 1);
    contact.replace(308, 300, blankSlot());
    QCOMPARE(m_fixture->read(u"*#1"_s), contact);
    QCOMPARE(m_fixture->starts(u"*#1"_s), (QList{1, 0x65432101, 0x65432101}));
    QCOMPARE(m_fixture->add(u"*#1"_s), 1);

    qunsetenv("ZYN_LOCAL_APP_WRITE_PATH");
    QCOMPARE(m_fixture->log().getStoreFileName(u"5551234"_s), u"/tmp/phone/5551234"_s);
    QVERIFY(QDir().rmdir(u"/tmp/phone"_s));
}

void tst_ActivityLog_ENG_RecordStore::keepsFiveFavourites()
{
    QCOMPARE(m_fixture->log().getCurrentTopPalsFileNames(nullptr), false);
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage({}, u""_s), 0);
    for (const char* number : {"a", "b", "c", "d", "e"})
        QCOMPARE(m_fixture->join(QLatin1String(number)), 1);
    QCOMPARE(m_fixture->join(u"c"_s), 0);
    QCOMPARE(m_fixture->join(u"f"_s), 0);
    QCOMPARE(m_fixture->read(u"f"_s).size(), 4508);
    QCOMPARE(m_fixture->favourites(), u"a,b,c,d,e"_s);
    QCOMPARE(m_fixture->log().getValidIndexForTopPalFiles(), -1);

    QCOMPARE(m_fixture->add(u"d"_s), 0);
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"d"_s, {}), 1);
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"b"_s, {}), 1);
    QCOMPARE(m_fixture->log().getTopPalFileItem({}), -1);
    // The lowest free place, not the one that is left.
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"e"_s, u"g"_s), 1);
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"x"_s, u"h"_s), 1);
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"x"_s, {}), 0);
    QCOMPARE(m_fixture->favourites(), u"a,g,c,h,"_s);
    QCOMPARE(m_fixture->add(u"h"_s), 0); // where an entry of the one before was
    QCOMPARE(m_fixture->add(u"e"_s), -1);
    QCOMPARE(m_fixture->add({}), -1);

    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(m_fixture->favourites(), u"a,g,c,h,"_s);
    QCOMPARE(m_fixture->log().getTopPalFileItem(u"h"_s), 3);
    QCOMPARE(m_fixture->log().getTopPalFileItem(u"H"_s), -1);
    QCOMPARE(m_fixture->log().getValidIndexForTopPalFiles(), 4);
    QCOMPARE(m_fixture->files(), u"a c f g h topPalsDetails"_s);
}

void tst_ActivityLog_ENG_RecordStore::followsTheNumberOfSlots()
{
    const QString path = m_fixture->file(u"1"_s);
    m_fixture->join(u"0"_s);
    m_fixture->join(u"1"_s); // not the first: its marks must not move
    for (int slot = 0; slot < 15; ++slot)
        QCOMPARE(m_fixture->add(u"1"_s, slot), slot);
    const QByteArray full = m_fixture->read(u"1"_s);

    m_fixture->setSlots(u"10"_s);
    QVERIFY(!m_fixture->log().checkTopPalsFile(path));
    QCOMPARE(m_fixture->starts(u"1"_s), (QList{1, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    QCOMPARE(m_fixture->add(u"1"_s), -1);
    m_fixture->setSlots(u"15"_s);
    QVERIFY(m_fixture->log().checkTopPalsFile(path));
    QCOMPARE(m_fixture->add(u"1"_s), -1);
    QCOMPARE(m_fixture->read(u"1"_s), full);

    m_fixture->setSlots(u"0"_s);
    QCOMPARE(m_fixture->add(u"1"_s), -1);
    QCOMPARE(m_fixture->starts(u"1"_s), QList{1});
    QCOMPARE(m_fixture->join(u"2"_s), 1);
    QCOMPARE(m_fixture->read(u"2"_s), header());
    m_fixture->setSlots(u"20"_s);
    QCOMPARE(m_fixture->starts(u"1"_s).size(), 16);
    QCOMPARE(m_fixture->starts(u"1"_s).first(), 0); // cut short
    for (int slot = 15; slot < 20; ++slot)
        QCOMPARE(m_fixture->add(u"1"_s), slot);
    QVERIFY(m_fixture->log().checkTopPalsFile(path));
    QVERIFY(m_fixture->read(u"1"_s).startsWith(full));

    for (const auto& [text, slots] : {std::pair(u"-5"_s, 15), {u"many"_s, 15}, {u"4294967295"_s, 32'767}}) {
        m_fixture->setSlots(text);
        // A file of another size is made anew.
        QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"2"_s, u"2"_s), 1);
        QCOMPARE(m_fixture->read(u"2"_s).size(), 8 + 300 * slots);
        QCOMPARE(m_fixture->add(u"2"_s), 0);
    }
}

void tst_ActivityLog_ENG_RecordStore::overwritesNothingWithoutHavingRead()
{
    for (const QString& number : {u"1"_s, u"2"_s}) {
        m_fixture->join(number);
        for (int slot = 0; slot < 3; ++slot)
            m_fixture->add(number, slot);
    }
    PHONE_ENG_ActivityLog record = m_fixture->entry(u"2"_s);
    record.topPalsAvlPos = 1;
    m_fixture->log().removeTopPalsAvlItem(record);
    // What a slot's record says of its place does not count.
    m_fixture->write(u"2"_s, m_fixture->read(u"2"_s).replace(232, 4, QByteArray::fromHex("09000000")));
    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(m_fixture->add(u"2"_s, 7), 1);
    QCOMPARE(m_fixture->add(u"2"_s, 8), 3);
    QCOMPARE(m_fixture->add(u"1"_s, 9), 3);
    QCOMPARE(m_fixture->starts(u"2"_s), (QList{1, 8, 7, 2, 0}));
}

void tst_ActivityLog_ENG_RecordStore::ordersAsASelectionSortDoes()
{
    std::mt19937 random(5); // NOLINT: the same on every run
    for (const int count : {0, 1, 2, 15, 18, 200}) {
        for (int round = 0; round < 20; ++round) {
            QList<PHONE_ENG_ActivityLog*> expected;
            QSortedList<PHONE_ENG_ActivityLog> list;
            list.setAutoDelete(true);
            for (int i = 0; i < count; ++i) {
                const bool isFar = random() % 8 == 0;
                const int start = isFar ? static_cast<int>(random()) : static_cast<int>(random() % 7) - 3;
                list.append(new PHONE_ENG_ActivityLog);
                list.getLast()->startTime = start;
                expected.append(list.getLast());
            }
            const QByteArray number = QByteArray::number(count);
            const QByteArray kept = QByteArray::number(std::min(count, 15));
            QByteArray text = "TP5_AVL:RC Store: ENTER: sortOnTimeStamp():"
                              "TP5_AVL:RC Store: sortOnTimeStamp(): Before sort count = "
                              + number + '\n';
            text += selectionSort(expected, 15);
            text += "TP5_AVL:RC Store: sortOnTimeStamp(): After sort count = " + kept
                    + "\nTP5_AVL:RC Store: EXIT: sortOnTimeStamp()\n";
            StdoutCapture output;
            m_fixture->log().sortOnTimeStamp(list);
            QVERIFY(output.take().endsWith(text));
            QCOMPARE(QList<PHONE_ENG_ActivityLog*>(list.begin(), list.end()), expected);
        }
    }
}

void tst_ActivityLog_ENG_RecordStore::readsDamagedFilesWithinTheirBounds()
{
    m_fixture->setSlots(u"3"_s);
    m_fixture->join(u"1"_s);
    m_fixture->add(u"1"_s, 1);
    m_fixture->add(u"1"_s, 2);
    const QByteArray whole = m_fixture->read(u"1"_s);
    const QString path = m_fixture->file(u"1"_s);
    for (int length = 0; length <= whole.size() + 1; ++length) {
        m_fixture->write(u"1"_s, whole.leftJustified(length, '\x01', true));
        QList<int> expected = {length >= whole.size()};
        for (int start = std::min((length - 8) / 300, 2); start > 0; --start)
            expected.append(start);
        QCOMPARE(m_fixture->starts(u"1"_s), expected);
        QCOMPARE(m_fixture->log().checkTopPalsFile(path), length == whole.size());
    }
    for (int byte = 0; byte < 8; ++byte) {
        QByteArray flipped = whole;
        flipped[byte] = char(flipped[byte] ^ 0x40);
        m_fixture->write(u"1"_s, flipped);
        QCOMPARE(m_fixture->starts(u"1"_s), QList{0});
        QVERIFY(!m_fixture->log().checkTopPalsFile(path));
    }
    // Foreign places mark nothing, nor does the number of no favourite, even one that fills its field.
    for (const int pos : {-1, 3, 5, 14, 15, kLargest, -kLargest - 1}) {
        PHONE_ENG_ActivityLog record = m_fixture->entry(u"1"_s);
        record.topPalsAvlPos = pos;
        m_fixture->write(u"1"_s,
                         header() + bytes(record).repeated(2) + bytes(record).replace(0, 42, QByteArray(42, '1')));
        m_fixture->log().clearTopPalsAvlFlag(u"1"_s, 0);
        QCOMPARE(m_fixture->starts(u"1"_s), (QList{1, 0, 0, 0}));
        QCOMPARE(m_fixture->log().getAvailableTopPalsAvlPos(u"1"_s), 0);
    }
}

void tst_ActivityLog_ENG_RecordStore::replacesDamagedFiles()
{
    m_fixture->join(u"1"_s);
    m_fixture->add(u"1"_s);
    const QByteArray details = m_fixture->read(kDetails);
    const QByteArray contact = m_fixture->read(u"1"_s);
    for (const QByteArray& damaged : {details.chopped(1), details + '\0', '\xD1' + details.sliced(1)}) {
        m_fixture->write(kDetails, damaged);
        ActivityLog_ENG_RecordStore::destroy();
        QCOMPARE(m_fixture->favourites(), u",,,,"_s);
        QCOMPARE(m_fixture->read(kDetails), header() + freePlace().repeated(5));
        QCOMPARE(m_fixture->read(u"1"_s), contact); // stays, and refuses its number
        QCOMPARE(m_fixture->join(u"1"_s), 0);
    }
    m_fixture->write(u"1"_s, contact + contact);
    QCOMPARE(m_fixture->join(u"1"_s), 1);
    QCOMPARE(m_fixture->read(u"1"_s), header() + blankSlot().repeated(15));
    QCOMPARE(m_fixture->files(), u"1 topPalsDetails"_s);

    // A number without an end, and a place with another's number.
    const QByteArray foreign = header() + place(0, QByteArray(20, '1')) + place('\x7F', "2") + freePlace().repeated(3);
    m_fixture->write(kDetails, foreign);
    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(m_fixture->favourites(), u"11111111111111111,2,,,"_s);
    QCOMPARE(m_fixture->log().getTopPalFileItem(u"2"_s), 1);
    QCOMPARE(m_fixture->log().getValidIndexForTopPalFiles(), 2);
}

void tst_ActivityLog_ENG_RecordStore::namesNoFileOfAnotherKind()
{
    StoreFixture::store(); // makes the call log's files
    m_fixture->join(u"1"_s);
    m_fixture->write(u"rc_e"_s, m_fixture->read(u"1"_s));
    const QString files = m_fixture->files();
    const auto all = [&] {
        QByteArray contents;
        for (const QString& name : files.split(u' '))
            contents += m_fixture->read(name);
        return contents;
    };
    const QByteArray before = all();
    for (const QString& number : {u""_s, u"."_s, u".."_s, u"../1"_s, u"/1"_s, u"a/"_s, u"1\0"_s, u"topPalsDetails"_s,
                                  u"topPalsLock"_s, u"rc_a"_s, u"rc_m"_s, u"rc_d"_s, u"rc_e"_s, u"1.new.1"_s}) {
        QCOMPARE(m_fixture->log().getStoreFileName(number).isNull(), number != kDetails);
        QCOMPARE(m_fixture->join(number), 0);
        PHONE_ENG_ActivityLog record = m_fixture->entry(number);
        record.topPalsAvlPos = 0;
        if (number != u"1\0"_s) { // which a record cannot hold
            QCOMPARE(m_fixture->log().modifyTopPalsAvlItem(record), 0);
            QCOMPARE(m_fixture->log().removeTopPalsAvlItem(record), 0);
        }
        QCOMPARE(m_fixture->starts(number), QList{0});
    }
    QCOMPARE(m_fixture->join(QString(300, u'1')), 1); // a place without a file
    QCOMPARE(m_fixture->files(), files);
    m_fixture->log().revampTopPalsAvlStorage(QString(17, u'1'), {});
    QCOMPARE(all(), before);
    QCOMPARE(m_fixture->favourites(), u"1,,,,"_s);
}

void tst_ActivityLog_ENG_RecordStore::failsCleanly()
{
    for (const QString& number : {u"1"_s, u"2"_s})
        m_fixture->join(number);
    m_fixture->add(u"1"_s);
    const QByteArray before = m_fixture->read(u"1"_s) + m_fixture->read(kDetails);
    {
        const ScopedFileSizeLimit limit(30);
        QCOMPARE(m_fixture->add(u"1"_s), -1);
        QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"2"_s, u"3"_s), 0);
        QCOMPARE(m_fixture->favourites(), u"1,3,,,"_s);
    }
    QCOMPARE(m_fixture->read(u"1"_s) + m_fixture->read(kDetails), before);
    QCOMPARE(m_fixture->files(), u"1 2 topPalsDetails"_s);
    QCOMPARE(m_fixture->add(u"1"_s), 1);
    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(m_fixture->favourites(), u"1,2,,,"_s);

    // Only what makes a file makes it.
    QDir(m_fixture->file(QString())).removeRecursively();
    QCOMPARE(m_fixture->add(u"1"_s), -1);
    QCOMPARE(m_fixture->files(), QString());
    QCOMPARE(m_fixture->log().revampTopPalsAvlStorage(u"2"_s, u"3"_s), 0);
    QCOMPARE(m_fixture->files(), u"3"_s);
    // A directory is no file that could be opened.
    QDir().mkdir(m_fixture->file(u"1"_s));
    QCOMPARE(m_fixture->starts(u"1"_s), QList{0});
    QCOMPARE(m_fixture->add(u"1"_s), -1);
}

void tst_ActivityLog_ENG_RecordStore::tellsWhatItDoes()
{
    RecentCall_Setup::instance();
    m_fixture->setSlots(u"2"_s);
    QByteArray told;
    const auto tell = [&](const QByteArray& title, const auto& operation) {
        StdoutCapture output;
        operation();
        QByteArray text = output.take();
        told += "== " + title + '\n' + text.replace(qgetenv("ZYN_LOCAL_APP_WRITE_PATH") + "/phone", "@");
    };
    const auto revamp = [&](const QString& oldNumber, const QString& newNumber) {
        m_fixture->log().revampTopPalsAvlStorage(oldNumber, newNumber);
    };
    tell("The first start makes the details file", [&] { m_fixture->log(); });
    tell("A favourite joins", [&] { revamp({}, u"111"_s); });
    tell("One that is there already does not", [&] { revamp({}, u"111"_s); });
    m_fixture->join(u"222"_s);
    tell("The second leaves, and a third joins", [&] { revamp(u"222"_s, u"333"_s); });
    tell("A stranger leaves, nobody does, and a path joins", [&] {
        revamp(u"999"_s, {});
        revamp({}, {});
        revamp({}, u"../111"_s);
    });
    tell("An entry of the second is added", [&] { m_fixture->add(u"333"_s, 1); });
    tell("A stranger's entry is refused", [&] { m_fixture->add(u"999"_s); });
    m_fixture->add(u"333"_s, 2);
    PHONE_ENG_ActivityLog record = m_fixture->entry(u"333"_s);
    tell("A full file takes no entry", [&] { m_fixture->log().addTopPalsAvlItem(record); });
    tell("Two entries are read, the newer one first", [&] { m_fixture->starts(u"333"_s); });
    record.setPhoneNumber(u"999"_s);
    record.topPalsAvlIndex += 2; // the next one is no greater than the counter
    m_fixture->write(u"444"_s, header() + bytes(record));
    tell("A foreign entry is read, in a file that ends too early", [&] { m_fixture->starts(u"444"_s); });
    tell("A file with another header, none, and no number", [&] {
        m_fixture->write(u"444"_s, QByteArray(608, '\x01'));
        for (const QString& number : {u"444"_s, u"999"_s, QString()})
            m_fixture->starts(number);
    });
    record.setPhoneNumber(u"333"_s);
    record.topPalsAvlIndex = -7;
    record.topPalsAvlPos = 1;
    tell("An entry is removed", [&] { m_fixture->log().removeTopPalsAvlItem(record); });
    record.topPalsAvlPos = 2;
    tell("Places that no slot has", [&] {
        m_fixture->log().removeTopPalsAvlItem(record);
        m_fixture->log().modifyTopPalsAvlItem(record);
        m_fixture->log().setTopPalsAvlFlag(u"333"_s, kLargest);
        m_fixture->log().clearTopPalsAvlFlag(u"333"_s, -1);
    });
    record.topPalsAvlPos = 0;
    tell("Entries without a file", [&] {
        m_fixture->log().removeTopPalsAvlItem(*std::make_unique<PHONE_ENG_ActivityLog>());
        record.setPhoneNumber(u"999"_s);
        m_fixture->log().modifyTopPalsAvlItem(record);
    });
    for (const QString& number : {u"444"_s, u"555"_s, u"000"_s})
        m_fixture->join(number);
    tell("A sixth finds no place", [&] { revamp({}, u"666"_s); });
    tell("The second leaves on a full disk", [&] {
        const ScopedFileSizeLimit limit(30);
        revamp(u"333"_s, {});
    });
    tell("One joins on a full disk", [&] {
        const ScopedFileSizeLimit limit(30);
        revamp({}, u"777"_s);
    });
    ActivityLog_ENG_RecordStore::destroy();
    tell("A start over five favourites", [&] { m_fixture->log(); });
    QFile::remove(m_fixture->file(kDetails));
    ActivityLog_ENG_RecordStore::destroy();
    tell("A start on a full disk", [&] {
        const ScopedFileSizeLimit limit(4);
        m_fixture->log();
    });
    ActivityLog_ENG_RecordStore::destroy();
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", "/nowhere");
    tell("A start and a favourite without a directory", [&] { revamp({}, u"111"_s); });

    QFile expected(QFINDTESTDATA("data/activity_log.txt"));
    QVERIFY(expected.open(QIODevice::ReadOnly));
    QCOMPARE(told.split('\n'), expected.readAll().split('\n'));
}

void tst_ActivityLog_ENG_RecordStore::countsItsEntries()
{
    m_fixture->join(u"1"_s);
    PHONE_ENG_ActivityLog record = m_fixture->entry(u"1"_s);
    const auto nextAfter = [&](int difference) {
        m_fixture->log().addTopPalsAvlItem(record);
        const int counter = record.topPalsAvlIndex + 1;
        record.topPalsAvlIndex = difference == kLargest ? kLargest : counter + difference;
        m_fixture->log().modifyTopPalsAvlItem(record);
        m_fixture->starts(u"1"_s);
        PHONE_ENG_ActivityLog refused = m_fixture->entry(u"999"_s);
        m_fixture->log().addTopPalsAvlItem(refused);
        m_fixture->log().removeTopPalsAvlItem(record);
        return difference == kLargest ? refused.topPalsAvlIndex : refused.topPalsAvlIndex - counter;
    };
    QCOMPARE(nextAfter(0), 0);
    QCOMPARE(nextAfter(34), 35);
    QCOMPARE(nextAfter(-1), 0);
    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(nextAfter(1), 2);
    QCOMPARE(nextAfter(kLargest), kLargest);
    m_fixture->log().addTopPalsAvlItem(record);
    QCOMPARE(record.topPalsAvlIndex, kLargest);
}

QTEST_GUILESS_MAIN(tst_ActivityLog_ENG_RecordStore)
#include "tst_ActivityLog_ENG_RecordStore.moc"
