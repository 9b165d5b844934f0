// The activity log of five favourites on disk.
#include "support/ActivityLogFixture.h"
#include "support/Scenario.h"
#include "support/ScopedFileSizeLimit.h"

#include <limits>
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

    void livesThroughChanges_data() { scenario::addRows(QFINDTESTDATA("data/activity_log_life.txt")); }
    void livesThroughChanges() { scenario::play(verbs()); }

    void printsWhatItDoes()
    {
        RecentCall_Setup::instance();
        m_fixture->setSlots(u"2"_s);
        const scenario::Verbs verbs = this->verbs();
        QFile file(QFINDTESTDATA("data/activity_log.txt"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        for (const QString& exchange : QString::fromLatin1('\n' + file.readAll().chopped(1)).split(u"\n$ "_s).mid(1)) {
            const QString command = exchange.section(u'\n', 0, 0);
            QStringList words = command.split(u' ');
            words.removeOne(u"quietly"_s);
            StdoutCapture output;
            verbs.at(words[0])(words.mid(1));
            const QByteArray printed = output.take().replace(qgetenv("ZYN_LOCAL_APP_WRITE_PATH") + "/phone", "@");
            if (!command.startsWith(u"quietly"_s))
                QCOMPARE((command.toLatin1() + '\n' + printed).chopped(1).split('\n'), exchange.toLatin1().split('\n'));
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
    scenario::Verbs verbs();
    /// The slots that are given to entries of a file of @p length bytes whose slots 0, 1, 3 and 4 of 5 are in use: of
    /// so many slots, in one process, which reads nothing, and when the number of slots has grown.
    QString used(int length, const QString& slots);
};

QString tst_ActivityLog_ENG_RecordStore::used(int length, const QString& slots)
{
    m_fixture->setSlots(u"5"_s);
    revamp({}, u"1"_s);
    for (int slot = 0; slot < 5; ++slot)
        add(u"1"_s, slot);
    PHONE_ENG_ActivityLog record = entry(u"1"_s, 0, 2);
    log().removeTopPalsAvlItem(record);
    m_fixture->write(u"1"_s, m_fixture->read(u"1"_s).leftJustified(length, '\0', true));
    m_fixture->setSlots(slots);
    ActivityLog_ENG_RecordStore::destroy();
    QStringList added;
    while (added.size() < 5 && added.value(added.size() - 1) != u"-1")
        added += QString::number(add(u"1"_s, 9));
    m_fixture->setSlots(u"32767"_s);
    return added.join(u' ') + u", "_s + QString::number(add(u"1"_s, 9));
}

/// The words of the scenarios; "-" is the number of a free place.
scenario::Verbs tst_ActivityLog_ENG_RecordStore::verbs()
{
    using Words = const QStringList&;
    const auto number = [](Words w, int at = 0) { return w.value(at) == u"-" ? QString() : w.value(at); };
    const auto withRecord = [=](auto act) {
        return [=](Words w) {
            PHONE_ENG_ActivityLog record = entry(number(w), 0, w.value(1).toInt());
            record.topPalsAvlIndex = w.value(2).toInt();
            return act(record);
        };
    };
    // Within a limited file size, if the words end so.
    const auto limited = [](auto act) {
        return [act](Words w) {
            std::optional<ScopedFileSizeLimit> limit;
            if (w.contains(u"within"_s))
                limit.emplace(w.last().toUInt());
            return act(w);
        };
    };
    return {
        {u"start"_s, limited([](Words) { ActivityLog_ENG_RecordStore::destroy(), log(); })},
        {u"directory"_s, [](Words w) { return qputenv("ZYN_LOCAL_APP_WRITE_PATH", w[0].toLatin1()); }},
        {u"slots"_s, [this](Words w) { m_fixture->setSlots(w[0]); }},
        {u"mkdir"_s, [this](Words w) { return QDir().mkdir(m_fixture->file(w[0])); }},
        {u"sweep"_s, [this] { return QDir(m_fixture->file(QString())).removeRecursively(); }},
        {u"junk"_s, [this](Words w) { m_fixture->write(w[0], QByteArray(700, '\x01')); }},
        {u"cut"_s,
         [this](Words w) { m_fixture->write(w[0], m_fixture->read(w[0]).leftJustified(w[1].toInt(), '\0', true)); }},
        {u"patch"_s, [this](Words w) { m_fixture->patch(w[0], w[1].toInt(), QByteArray::fromHex(w[2].toLatin1())); }},
        {u"file"_s,
         [this](Words w) {
             PHONE_ENG_ActivityLog record = entry(w[0]);
             record.topPalsAvlIndex = w[2].toInt();
             m_fixture->write(w[1], kHeader + bytes(record));
         }},
        {u"files"_s, [this] { return m_fixture->files(); }},
        {u"size"_s, [this](Words w) { return m_fixture->read(w[0]).size(); }},
        {u"is-fresh"_s, [this](Words w) { return m_fixture->read(w[0]) == kHeader + blankSlot().repeated(15); }},
        {u"favourites"_s, [] { return favourites(); }},
        {u"places"_s, [] { return log().getValidIndexForTopPalFiles(); }},
        {u"place"_s, [=](Words w) { return int{log().getTopPalFileItem(number(w))}; }},
        {u"check"_s, [this](Words w) { return int{log().checkTopPalsFile(m_fixture->file(w[0]))}; }},
        {u"revamp"_s, limited([=](Words w) { return revamp(number(w), number(w, 1)); })},
        {u"add"_s, limited([=](Words w) { return add(number(w), w.value(1).toInt()); })},
        {u"read"_s, [=](Words w) { return read(number(w)); }},
        {u"available"_s, [=](Words w) { return log().getAvailableTopPalsAvlPos(number(w)); }},
        {u"modify"_s, withRecord([](auto& record) { return log().modifyTopPalsAvlItem(record); })},
        {u"remove"_s, withRecord([](auto& record) { return log().removeTopPalsAvlItem(record); })},
        {u"mark"_s, [=](Words w) { return log().setTopPalsAvlFlag(number(w), w[1].toInt()) ? 1 : 0; }},
        {u"unmark"_s, [=](Words w) { return log().clearTopPalsAvlFlag(number(w), w[1].toInt()) ? 1 : 0; }},
        {u"used"_s, [this](Words w) { return used(w[0].toInt(), w[1]); }},
    };
}

QTEST_GUILESS_MAIN(tst_ActivityLog_ENG_RecordStore)
#include "tst_ActivityLog_ENG_RecordStore.moc"
