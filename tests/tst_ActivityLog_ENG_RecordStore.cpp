// The activity log of five favourites on disk.
#include "support/ActivityLogFixture.h"
#include "support/ScopedFileSizeLimit.h"
#include "support/StdoutCapture.h"

#include <QtTest/QTest>

#include <functional>
#include <limits>
#include <map>
#include <optional>
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

/// The newest of @p v first, by a selection sort in its plainest form.
Records selectionSort(Records v)
{
    const auto isOlder = [](auto* left, auto* right) { return left->getStartDateTime() < right->getStartDateTime(); };
    for (qsizetype i = 0; i < v.size() && i < 15; ++i)
        v.swapItemsAt(i, std::max_element(v.begin() + i, v.end(), isOlder) - v.begin());
    return v.first(std::min<qsizetype>(v.size(), 15));
}

} // namespace

class tst_ActivityLog_ENG_RecordStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // While the size of files is limited, what is printed must not have to be written.
    void initTestCase() { std::setvbuf(stdout, nullptr, _IOFBF, 65'536); }
    void init()
    {
        m_output.emplace();
        m_fixture.emplace();
    }
    void cleanup()
    {
        m_fixture.reset();
        m_output.reset();
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
    void obey(const QStringList& words);

    std::optional<StdoutCapture> m_output;
    std::optional<ActivityLogFixture> m_fixture;
};

void tst_ActivityLog_ENG_RecordStore::keepsItsFilesByteForByte()
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

void tst_ActivityLog_ENG_RecordStore::keepsFiveFavourites()
{
    for (const char* number : {"a", "b", "c", "d", "e"})
        QCOMPARE(revamp({}, QLatin1String(number)), 1);
    QCOMPARE(revamp({}, u"f"_s), 0);
    QCOMPARE(favourites(), u"a,b,c,d,e"_s);
    QCOMPARE(add(u"b"_s), 0);
    for (const QString& number : {u"d"_s, u"b"_s})
        QCOMPARE(revamp(number, {}), 1);
    QCOMPARE(log().getTopPalFileItem({}), -1);
    QCOMPARE(revamp(u"e"_s, u"g"_s), 1); // into the lowest free place, not the one that is left
    QCOMPARE(add(u"g"_s), 0);            // where an entry of the one before was
    QCOMPARE(add(u"e"_s), -1);
    QCOMPARE(revamp(u"x"_s, u"h"_s), 1);
    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(favourites(), u"a,g,c,h,"_s);
    QCOMPARE(log().getTopPalFileItem(u"H"_s), -1);
    QCOMPARE(m_fixture->files(), u"a c f g h topPalsDetails"_s);
}

void tst_ActivityLog_ENG_RecordStore::followsTheNumberOfSlots()
{
    const auto isValid = [&] { return log().checkTopPalsFile(m_fixture->file(u"1"_s)); };
    revamp({}, u"0"_s);
    revamp({}, u"1"_s); // not in the first place: its marks must not move
    for (int slot = 0; slot < 15; ++slot)
        QCOMPARE(add(u"1"_s, slot), slot);
    for (const QString& slots : {u"10"_s, u"15"_s, u"0"_s}) {
        m_fixture->setSlots(slots);
        QCOMPARE(add(u"1"_s), -1);
        QCOMPARE(isValid(), slots == u"15");
        QCOMPARE(read(u"1"_s).size(), 1 + slots.toInt());
        QCOMPARE(read(u"1"_s).first(), 1);
    }
    QCOMPARE(revamp({}, u"2"_s), 1);
    QCOMPARE(m_fixture->read(u"2"_s), kHeader);
    m_fixture->setSlots(u"20"_s);
    for (int slot = 15; slot < 20; ++slot) {
        QCOMPARE(read(u"1"_s).first(), 0); // cut short
        QCOMPARE(add(u"1"_s, slot), slot);
    }
    QVERIFY(isValid());
    QCOMPARE(read(u"1"_s).size(), 21);
    for (const auto& [text, slots] : {std::pair(u"-5"_s, 15), {u"4294967295"_s, 32'767}}) {
        m_fixture->setSlots(text);
        QCOMPARE(revamp(u"2"_s, u"2"_s), 1); // makes a file of another size anew
        QCOMPARE(m_fixture->read(u"2"_s).size(), 8 + 300 * slots);
        QCOMPARE(add(u"2"_s), 0);
    }
}

void tst_ActivityLog_ENG_RecordStore::overwritesNothingWithoutHavingRead()
{
    for (const QString& number : {u"1"_s, u"2"_s}) {
        revamp({}, number);
        for (int slot = 0; slot < 3; ++slot)
            add(number, slot);
    }
    PHONE_ENG_ActivityLog record = entry(u"2"_s, 0, 1);
    log().removeTopPalsAvlItem(record);
    // What a slot's record says of its place does not count.
    m_fixture->write(u"2"_s, m_fixture->read(u"2"_s).replace(8 + 232, 1, "\x09"));
    ActivityLog_ENG_RecordStore::destroy();
    QCOMPARE(add(u"2"_s, 7), 1);
    QCOMPARE(add(u"2"_s, 8), 3);
    QCOMPARE(add(u"1"_s, 9), 3);
    QCOMPARE(read(u"2"_s), (QList{1, 8, 7, 2, 0}));
}

void tst_ActivityLog_ENG_RecordStore::ordersAsASelectionSortDoes()
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

void tst_ActivityLog_ENG_RecordStore::readsDamagedFilesWithinTheirBounds()
{
    m_fixture->setSlots(u"3"_s);
    revamp({}, u"1"_s);
    add(u"1"_s, 1);
    add(u"1"_s, 2);
    const QByteArray whole = m_fixture->read(u"1"_s);
    for (int length = 0; length <= whole.size() + 1; ++length) {
        m_fixture->write(u"1"_s, whole.leftJustified(length, '\x01', true));
        QList<int> expected = {length >= whole.size()};
        for (int start = std::min((length - 8) / 300, 2); start > 0; --start)
            expected.append(start);
        QCOMPARE(read(u"1"_s), expected);
        QCOMPARE(log().checkTopPalsFile(m_fixture->file(u"1"_s)), length == whole.size());
    }
    for (int byte = 0; byte < 8; ++byte) {
        m_fixture->write(u"1"_s, QByteArray(whole).replace(byte, 1, QByteArray(1, char(whole[byte] ^ 0x40))));
        QCOMPARE(read(u"1"_s), QList{0});
        QVERIFY(!log().checkTopPalsFile(m_fixture->file(u"1"_s)));
    }
    // Foreign places mark nothing, nor does a number that fills its field.
    log().clearTopPalsAvlFlag(u"1"_s, 0);
    for (const int pos : {-1, 3, 15, kLargest, -kLargest - 1}) {
        const QByteArray slot = bytes(entry(u"1"_s, 0, pos));
        m_fixture->write(u"1"_s, kHeader + slot.repeated(2) + QByteArray(slot).replace(0, 42, QByteArray(42, '1')));
        QCOMPARE(read(u"1"_s), (QList{1, 0, 0, 0}));
        QCOMPARE(log().getAvailableTopPalsAvlPos(u"1"_s), 0);
    }
}

void tst_ActivityLog_ENG_RecordStore::replacesDamagedFiles()
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

void tst_ActivityLog_ENG_RecordStore::namesNoFileOfAnotherKind()
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
    for (const QString& number : {u""_s, u"."_s, u".."_s, u"../phone/1"_s, u"a/"_s, u"topPalsDetails"_s, u"rc_a"_s,
                                  u"rc_m"_s, u"rc_d"_s, u"rc_e"_s, u"topPalsLock"_s, u"1.new.1"_s, u"1\0"_s}) {
        QCOMPARE(log().getStoreFileName(number).isNull(), number != kDetails);
        QCOMPARE(revamp({}, number), 0);
        QCOMPARE(read(number), QList{0});
        PHONE_ENG_ActivityLog record = entry(number, 0, 0);
        if (!number.contains(QChar::Null)) // which a record cannot hold
            QCOMPARE(log().modifyTopPalsAvlItem(record) + log().removeTopPalsAvlItem(record), 0);
    }
    QCOMPARE(everything(), before);
    QCOMPARE(revamp({}, QString(300, u'1')), 1); // a place without a file
    QCOMPARE(m_fixture->files().toUtf8(), before.first());
    QCOMPARE(favourites(), u"1,11111111111111111,,,"_s);
}

void tst_ActivityLog_ENG_RecordStore::failsCleanly()
{
    revamp({}, u"1"_s);
    const QByteArray before = m_fixture->read(u"1"_s) + m_fixture->read(kDetails);
    {
        const ScopedFileSizeLimit limit(8);
        QCOMPARE(add(u"1"_s), -1);
        QCOMPARE(revamp({}, u"2"_s), 0);
    }
    QCOMPARE(m_fixture->read(u"1"_s) + m_fixture->read(kDetails), before);
    QCOMPARE(m_fixture->files(), u"1 topPalsDetails"_s);
    QCOMPARE(add(u"1"_s), 0);
    // Only what makes a file makes it, and a directory is none.
    QDir(m_fixture->file(QString())).removeRecursively();
    QCOMPARE(add(u"1"_s), -1);
    QCOMPARE(revamp({}, u"3"_s), 0);
    QCOMPARE(m_fixture->files(), u"3"_s);
    QDir().mkdir(m_fixture->file(u"1"_s));
    QCOMPARE(read(u"1"_s), QList{0});
}

/// Does what a line of the transcript says.
void tst_ActivityLog_ENG_RecordStore::obey(const QStringList& words)
{
    const auto numberAt = [&](int i) { return words.value(i) == u'-' ? QString() : words.value(i); };
    PHONE_ENG_ActivityLog record = entry(numberAt(1), 0, words.value(2).toInt());
    record.topPalsAvlIndex = words.value(3).toInt();
    const std::map<QString, std::function<void()>> verbs = {
        {u"start"_s, [] { ActivityLog_ENG_RecordStore::destroy(), log(); }},
        {u"directory"_s, [&] { qputenv("ZYN_LOCAL_APP_WRITE_PATH", words[1].toLatin1()); }},
        {u"junk"_s, [&] { m_fixture->write(words[1], QByteArray(700, '\x01')); }},
        {u"file"_s, [&] { m_fixture->write(words[2], kHeader + bytes(record)); }},
        {u"revamp"_s, [&] { revamp(numberAt(1), numberAt(2)); }},
        {u"add"_s, [&] { add(numberAt(1), words[2].toInt()); }},
        {u"read"_s, [&] { read(numberAt(1)); }},
        {u"modify"_s, [&] { log().modifyTopPalsAvlItem(record); }},
        {u"remove"_s, [&] { log().removeTopPalsAvlItem(record); }},
        {u"mark"_s, [&] { log().setTopPalsAvlFlag(words[1], record.topPalsAvlPos); }},
        {u"unmark"_s, [&] { log().clearTopPalsAvlFlag(words[1], record.topPalsAvlPos); }},
    };
    verbs.at(words[0])();
}

void tst_ActivityLog_ENG_RecordStore::tellsWhatItDoes()
{
    RecentCall_Setup::instance();
    m_fixture->setSlots(u"2"_s);
    QFile transcript(QFINDTESTDATA("data/activity_log.txt"));
    QVERIFY(transcript.open(QIODevice::ReadOnly));
    for (const QString& exchange :
         QString::fromLatin1('\n' + transcript.readAll().chopped(1)).split(u"\n$ "_s).mid(1)) {
        const QString line = exchange.section(u'\n', 0, 0);
        StdoutCapture output;
        {
            std::optional<ScopedFileSizeLimit> limit;
            if (line.contains(u" within "_s))
                limit.emplace(line.section(u' ', -1).toUInt());
            obey(line.split(u' '));
        }
        const QByteArray told = output.take().replace(qgetenv("ZYN_LOCAL_APP_WRITE_PATH") + "/phone", "@");
        const QByteArrayList lines = (line.toLatin1() + '\n' + told).chopped(1).split('\n');
        QCOMPARE(lines, exchange.toLatin1().split('\n'));
    }
}

void tst_ActivityLog_ENG_RecordStore::countsItsEntries()
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

QTEST_GUILESS_MAIN(tst_ActivityLog_ENG_RecordStore)
#include "tst_ActivityLog_ENG_RecordStore.moc"
