// A whole store directory checked and repaired by the tool, with every kind of damage.
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "support/ActivityLogFixture.h"
#include "support/OtherUser.h"
#include "support/ServiceProcess.h"
#include "support/StdoutCapture.h"
#include "support/Tool.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

using tool::run;
using Call = PHONE_ENG_RecentCall;
using Entry = PHONE_ENG_ActivityLog;
using Store = ActivityLogFixture;

constexpr char kFirst[] = "5550001";
constexpr char kSecond[] = "5550002";

/// Replaces bytes of a file.
void patch(const Store& store, const char* name, qint64 offset, const QByteArray& bytes)
{
    QByteArray image = store.read(QLatin1String(name));
    store.write(QLatin1String(name), image.replace(qsizetype(offset), bytes.size(), bytes));
}

void resize(const Store& store, const char* name, qint64 size)
{
    store.write(QLatin1String(name), store.read(QLatin1String(name)).leftJustified(qsizetype(size), '\0', true));
}

qsizetype inSlot(int slot, size_t offset)
{
    return qsizetype(zyn::RecordFile::offset(slot)) + qsizetype(offset);
}

/// Puts the calls of the first slots of a list behind its last one.
void addSlots(const Store& store, const char* name, int count)
{
    const QByteArray image = store.read(QLatin1String(name));
    QByteArray more = image.sliced(inSlot(0, 0), inSlot(count, 0) - inSlot(0, 0));
    store.write(QLatin1String(name), image + more);
    for (int slot = 0; slot < count; ++slot)
        patch(store, name, zyn::RecordFile::offset(slot), zyn::bytesOf(Call()).toByteArray());
}

struct Damage
{
    const char* name;
    void (*plant)(const Store&);
    const char* found;
    const char* left = "";
};

const Damage kDamages[] = {
    {"slot", [](const Store& s) { patch(s, "rc_a", inSlot(1, offsetof(Call, slot)), "\7"); },
     "rc_a: slot 1: the record names slot 7\n"},
    {"category", [](const Store& s) { patch(s, "rc_m", inSlot(0, offsetof(Call, category)), "\3"); },
     "rc_m: slot 0: the category is dialed\n"},
    {"flags",
     [](const Store& s) {
         patch(s, "rc_m", inSlot(2, offsetof(Call, readFlags)), "\x81");
         patch(s, "rc_m", inSlot(2, offsetof(Call, inUse)), "\5");
         patch(s, "rc_m", inSlot(2, offsetof(Call, completed)), "\6");
     },
     "rc_m: slot 2: the read flags are 0x81\nrc_m: slot 2: the flag of its use is 5\n"
     "rc_m: slot 2: the flag of its completion is 6\n"},
    {"free slot", [](const Store& s) { patch(s, "rc_d", inSlot(40, 0), "1"); },
     "rc_d: slot 40: it is free but not blank\n"},
    {"text", [](const Store& s) { patch(s, "rc_d", inSlot(0, 0), QByteArray(42, '1')); },
     "rc_d: slot 0: the number has no NUL\n"},
    {"uid within a list", [](const Store& s) { patch(s, "rc_a", inSlot(2, offsetof(Call, uid)), "\1"); },
     "rc_a: slot 2: uid 1 is that of slot 1 too\n"},
    {"uid of another list",
     [](const Store& s) { patch(s, "rc_d", inSlot(1, offsetof(Call, uid)), QByteArray(1, '\0')); },
     "rc_d: slot 1: uid 0 is that of rc_a, slot 0 too\n"},
    {"uid above which none is left",
     [](const Store& s) { patch(s, "rc_m", inSlot(1, offsetof(Call, uid)), QByteArray("\xFF\xFF\xFF\x7F", 4)); },
     "rc_m: slot 1: its uid leaves none for newer calls\n"},
    {"uids that are equal, and next to the last",
     [](const Store& s) {
         for (const int slot : {1, 2})
             patch(s, "rc_m", inSlot(slot, offsetof(Call, uid)), QByteArray("\xFE\xFF\xFF\x7F", 4));
     },
     "rc_m: slot 2: uid 2147483646 is that of slot 1 too\n"},
    {"header of calls", [](const Store& s) { patch(s, "rc_m", 4, "\4"); }, "rc_m: the version is 4, not 5\n"},
    {"calls cut short", [](const Store& s) { resize(s, "rc_a", zyn::RecordFile::offset(3) + 5); },
     "rc_a: the size is 697 bytes, not 11408\n"},
    {"too many calls", [](const Store& s) { addSlots(s, "rc_d", 2); }, "rc_d: the size is 11864 bytes, not 11408\n"},
    {"header of the favourites", [](const Store& s) { patch(s, "topPalsDetails", 0, "5"); },
     "5550001: no favourite has this number\n5550002: no favourite has this number\n"
     "topPalsDetails: the magic is 0xa0b0c035, not 0xa0b0c0d0\n"},
    {"favourites cut short", [](const Store& s) { resize(s, "topPalsDetails", 100); },
     "topPalsDetails: the size is 100 bytes, not 128\n"},
    {"place of a favourite", [](const Store& s) { patch(s, "topPalsDetails", zyn::DetailsFile::offset(1), "\4"); },
     "topPalsDetails: place 1: it names place 4\n"},
    {"place that says that it is free",
     [](const Store& s) { patch(s, "topPalsDetails", zyn::DetailsFile::offset(1), "\xFF\xFF\xFF\xFF"); },
     "5550002: no favourite has this number\ntopPalsDetails: place 1: it is free but has a number\n"},
    {"favourite without a file",
     [](const Store& s) {
         patch(s, "topPalsDetails", zyn::DetailsFile::offset(2),
               zyn::bytesOf(TopPalNumberDetail{2, "777"}).toByteArray());
     },
     "topPalsDetails: place 2: the favourite 777 has no file\n"},
    {"number that names no file",
     [](const Store& s) {
         patch(s, "topPalsDetails", zyn::DetailsFile::offset(3),
               zyn::bytesOf(TopPalNumberDetail{3, "../x"}).toByteArray());
     },
     "topPalsDetails: place 3: no file can have the number '../x'\n"},
    {"file without a favourite",
     [](const Store& s) {
         patch(s, "topPalsDetails", zyn::DetailsFile::offset(0), zyn::bytesOf(TopPalNumberDetail{}).toByteArray());
     },
     "5550001: no favourite has this number\n"},
    {"file without a favourite and entries",
     [](const Store& s) {
         s.write(u"999"_s, zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray() + activity::blankSlot().repeated(15));
     },
     "999: no favourite has this number\n"},
    {"entry",
     [](const Store& s) {
         const qint64 slot = zyn::getTopPalsAvlFilePos(1);
         patch(s, kFirst, slot, "8");
         patch(s, kFirst, slot + 228, QByteArray("\xFF\xFF\xFF\xFF\x09", 5));
         patch(s, kFirst, slot + 244, QByteArray(41, 'x'));
     },
     "5550001: slot 1: the entry names slot 9\n5550001: slot 1: the index is -1\n"
     "5550001: slot 1: the number is '8550001'\n5550001: slot 1: the message has no NUL\n"},
    {"header of entries", [](const Store& s) { patch(s, kSecond, 0, "5"); },
     "5550002: the magic is 0xa0b0c035, not 0xa0b0c0d0\n"},
    {"fewer slots", [](const Store& s) { resize(s, kSecond, zyn::ContactFile::size(3)); },
     "5550002: the size is 908 bytes, not 4508\n"},
    {"leftover", [](const Store& s) { s.write(u"rc_a.new.2147483647"_s, "x"); },
     "rc_a.new.2147483647: left over by a process that was making a file\n"},
    {"directory", [](const Store& s) { QDir(s.file(QString())).mkdir(u"rc_d.new.2147483647"_s); },
     "rc_d.new.2147483647: no regular file that can be read\n",
     "rc_d.new.2147483647: no regular file that can be read\n"},
    {"lock", [](const Store& s) { s.write(u"topPalsLock"_s, "2147483647\nx\ny\n"); },
     "topPalsLock: process 2147483647, which made it, is gone\n"},
    {"seen calls",
     [](const Store& s) {
         s.write(u"topPalsCalls"_s, zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray() + "123456789");
     },
     "topPalsCalls: it ends within a call\n"},
    {"stranger", [](const Store& s) { s.write(u"note"_s, "x"); }, "note: no file of a store\n",
     "note: no file of a store\n"},
};

} // namespace

class ZynphoneStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_store.reset(); }
    void repairsEachDamage_data();
    void repairsEachDamage();
    void repairsAllDamage();
    void keepsEntriesWithoutASlot();
    void followsANewUid();
    void refusesALockThatIsNoFile();
    void copiesNothingBehindAnotherUsersLink();
    void givesFavouritesBack();
    void importsWhatHasAPlace();
    void leavesAStoreInUse();
    void refusesWhatIsNoStore();

private:
    QString inspect(const char* option, const char* more = "") const
    {
        QStringList words{u"inspect"_s, QLatin1String(option), m_store->file(QString())};
        return run(words + tool::words(QLatin1String(more))).replace(m_store->path(), u"*"_s);
    }
    /// The start times, each of one record, of all records in use.
    QList<int> records() const;
    /// What each file holds.
    QByteArray contents(const QString& directory) const;

    std::optional<Store> m_store;
};

void ZynphoneStoreTest::init()
{
    const StdoutCapture quiet;
    m_store.emplace();
    Store::startAfresh();
    int start = 1000;
    for (const RC_CALL_CATEGORY_T list : zyn::kRecordLists) {
        for (int i = 0; i < 4; ++i) {
            Call call = Store::call(list, "112");
            call.startTime = ++start;
            Store::store().addItem(call);
        }
    }
    for (const char* number : {kFirst, kSecond}) {
        activity::revamp({}, QLatin1String(number));
        for (int i = 0; i < 3; ++i)
            activity::add(QLatin1String(number), ++start);
    }
}

QList<int> ZynphoneStoreTest::records() const
{
    QList<int> starts;
    const QDir directory(m_store->file(QString()));
    for (const QString& name : directory.entryList(QDir::Files)) {
        const QByteArray image = m_store->read(name);
        const bool isCalls = name.startsWith(u"rc_");
        if (!isCalls && !name.startsWith(u"555"))
            continue;
        const qsizetype size = isCalls ? sizeof(Call) : sizeof(Entry);
        for (qsizetype at = inSlot(0, 0); at + size <= image.size(); at += size) {
            Call call;
            std::memcpy(static_cast<void*>(&call), image.constData() + at, sizeof call);
            if (call.inUse != 0)
                starts += call.startTime;
        }
    }
    std::ranges::sort(starts);
    return starts;
}

QByteArray ZynphoneStoreTest::contents(const QString& directory) const
{
    QByteArray all;
    for (const QFileInfo& info : QDir(directory).entryInfoList(QDir::Files)) {
        QFile file(info.filePath());
        if (info.fileName() != "topPalsLock"_L1 && file.open(QIODevice::ReadOnly))
            all += info.fileName().toUtf8() + '\n' + file.readAll();
    }
    return all;
}

void ZynphoneStoreTest::repairsEachDamage_data()
{
    QTest::addColumn<const Damage*>("damage");
    for (const Damage& damage : kDamages)
        QTest::newRow(damage.name) << &damage;
}

void ZynphoneStoreTest::repairsEachDamage()
{
    QFETCH(const Damage*, damage);
    QCOMPARE(inspect("--verify"), u"*/phone: 0 problems\nexit 0"_s);
    QCOMPARE(records().size(), 18);
    damage->plant(*m_store);
    const QList<int> before = records();
    const QString found = inspect("--verify");
    QVERIFY2(found.startsWith(QLatin1String(damage->found)), qPrintable(found));
    const int count = static_cast<int>(QLatin1String(damage->found).count(u'\n'));
    QCOMPARE(found.mid(QLatin1String(damage->found).size()),
             u"*/phone: %1 problem%2\nexit 1"_s.arg(count).arg(count == 1 ? u""_s : u"s"_s));

    const QByteArray damaged = contents(m_store->file(QString()));
    const QString repaired = inspect("--repair", "--json");
    const QJsonObject report = QJsonDocument::fromJson(repaired.section(u'\n', 0, 0).toUtf8()).object();
    const bool isSound = *damage->left == '\0';
    QCOMPARE(report[u"sound"_s].toBool(), isSound);
    QCOMPARE(report[u"repairs"_s].toArray().isEmpty(), !isSound);
    const QString copy = report[u"copy"_s].toString().replace(u"*"_s, m_store->path());
    if (!copy.isEmpty())
        QCOMPARE(contents(copy), damaged);
    QVERIFY(inspect("--verify").startsWith(QLatin1String(damage->left)));
    QVERIFY(!isSound || inspect("--verify").endsWith(u"phone: 0 problems\nexit 0"_s));
    QCOMPARE(records(), before);
}

void ZynphoneStoreTest::repairsAllDamage()
{
    for (const Damage& damage : kDamages) {
        // What is cut off is no whole record any more.
        if (!QLatin1String(damage.name).contains("short"_L1))
            damage.plant(*m_store);
    }
    // What a process that lives makes is no leftover.
    m_store->write(u"rc_m.new."_s + QString::number(QCoreApplication::applicationPid()), "x");
    const QList<int> before = records();
    QVERIFY(before.size() >= 18);
    QVERIFY(inspect("--verify").endsWith(u"exit 1"_s));
    QVERIFY(inspect("--repair").startsWith(u"saved */phone."_s));
    const auto left = u"note: no file of a store\nrc_d.new.2147483647: no regular file that can be read\n"_s;
    QCOMPARE(inspect("--verify"), left + u"*/phone: 2 problems\nexit 1"_s);
    QCOMPARE(records(), before);
    QVERIFY(m_store->files().contains(u"rc_m.new."_s));
    // Once more changes nothing.
    QCOMPARE(inspect("--repair"), left + u"*/phone: 0 repairs, 2 problems left\nexit 1"_s);
}

void ZynphoneStoreTest::keepsEntriesWithoutASlot()
{
    for (const int slots : {0, 2}) {
        m_store->setSlots(QString::number(slots));
        const auto sizes = u"5550001: the size is 4508 bytes, not %1\n5550002: the size is 4508 bytes, not %1\n"_s;
        QCOMPARE(inspect("--repair"),
                 sizes.arg(zyn::ContactFile::size(slots)) + u"*/phone: 0 repairs, 2 problems left\nexit 1"_s);
    }
    // Nor does a wrong header cost one.
    const QList<int> before = records();
    patch(*m_store, kFirst, 0, "5");
    QVERIFY(inspect("--repair").contains(u"5550001: cut to 908 bytes\n"_s));
    QCOMPARE(records(), before);
}

void ZynphoneStoreTest::followsANewUid()
{
    // The call in slot 1 of the list gets the uid of slot 0; it has been seen, and is an entry of the first favourite.
    QByteArray calls = m_store->read(u"rc_m"_s);
    Call call;
    std::memcpy(static_cast<void*>(&call), calls.constData() + inSlot(0, 0), sizeof call);
    const auto uidBytes = zyn::bytesOf(call.uid).toByteArray();
    patch(*m_store, "rc_m", inSlot(1, 0), QByteArray(kFirst, sizeof kFirst));
    patch(*m_store, "rc_m", inSlot(1, offsetof(Call, uid)), uidBytes);
    const QByteArray start = m_store->read(u"rc_m"_s).sliced(inSlot(1, offsetof(Call, startTime)), 4);
    const auto entry = qsizetype(zyn::getTopPalsAvlFilePos(2));
    patch(*m_store, kFirst, entry + qsizetype{offsetof(Call, uid)}, uidBytes);
    patch(*m_store, kFirst, entry + qsizetype{offsetof(Call, startTime)}, start);
    const auto category = static_cast<char>(RC_CALL_CATEGORY_MISSED);
    patch(*m_store, kFirst, entry + qsizetype{offsetof(Call, category)}, QByteArray(1, category));
    const QByteArray seen = zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray() + uidBytes + start;
    m_store->write(u"topPalsCalls"_s, seen);
    QVERIFY(inspect("--repair").endsWith(u"3 repairs, 0 problems left\nexit 0"_s));
    const QByteArray uid = m_store->read(u"rc_m"_s).sliced(inSlot(1, offsetof(Call, uid)), 4);
    QVERIFY(uid != uidBytes);
    QCOMPARE(m_store->read(QLatin1String(kFirst)).sliced(entry + qsizetype{offsetof(Call, uid)}, 4), uid);
    QCOMPARE(m_store->read(u"topPalsCalls"_s), seen + uid + start);
}

void ZynphoneStoreTest::refusesALockThatIsNoFile()
{
    QVERIFY(::mkfifo(m_store->file(u"topPalsLock"_s).toLocal8Bit().constData(), 0600) == 0);
    QVERIFY(inspect("--repair").contains(u"cannot make */phone/topPalsLock"_s));
}

void ZynphoneStoreTest::leavesAStoreInUse()
{
    patch(*m_store, "rc_a", 0, "5");
    ServiceProcess service;
    QVERIFY(service.start(ZYN_RECENTCALLD));
    patch(*m_store, "rc_a", 0, "5");
    const QByteArray damaged = contents(m_store->file(QString()));
    QVERIFY(
        inspect("--repair").contains(u"the recent-call service at /tmp/zynrecentcallcom/recentcall_interface runs"_s));
    service.stop();
    ServiceProcess owner;
    QVERIFY(owner.start(ZYN_FAVOURITES));
    QVERIFY(inspect("--repair").contains(u"(zyn-favourites) owns the favourites; end it first\nexit 1"_s));
    owner.stop();
    QVERIFY(contents(m_store->file(QString())).contains(damaged.left(100)));
    QVERIFY(inspect("--repair").endsWith(u"exit 0"_s));
}

void ZynphoneStoreTest::refusesWhatIsNoStore()
{
    QVERIFY(run({u"inspect"_s, u"--verify"_s, m_store->path()})
                .endsWith(u"no store directory, as it has no rc_a, rc_m, "
                          "rc_d and topPalsDetails\nexit 4"_s));
    QVERIFY(run({u"inspect"_s, u"--repair"_s, u"/none"_s}).endsWith(u"/none: no such directory\nexit 4"_s));
    QVERIFY(run("inspect --repair --verify /tmp").endsWith(u"exit 2"_s));
}

void ZynphoneStoreTest::copiesNothingBehindAnotherUsersLink()
{
    const QString precious = m_store->path() + u"/precious"_s;
    QFile file(precious);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("precious") > 0);
    file.close();
    QVERIFY(QFile::remove(m_store->file(u"rc_d"_s)) && QFile::link(precious, m_store->file(u"rc_d"_s)));
    if (!otheruser::give(m_store->file(u"rc_d"_s)))
        QSKIP("only root can act as another user");
    patch(*m_store, "rc_a", 0, "5");
    const QString told = inspect("--repair");
    QVERIFY2(told.startsWith(u"saved */phone."_s), qPrintable(told));
    QVERIFY(told.contains(u"rc_d: no regular file that can be read\n"_s));
    const QDir directory(m_store->path());
    for (const QString& copy : directory.entryList({u"phone.*"_s}, QDir::Dirs)) {
        QVERIFY(QFile::exists(directory.filePath(copy + u"/rc_a"_s)));
        QVERIFY(!QFile::exists(directory.filePath(copy + u"/rc_d"_s)));
    }
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "precious");
}

void ZynphoneStoreTest::givesFavouritesBack()
{
    {
        const StdoutCapture quiet;
        activity::revamp({}, u"7"_s); // has no entry
        Entry message = activity::entry(QLatin1String(kFirst), 5000);
        message.setMsgString(u"a,\"b\""_s);
        message.msgType = 2;
        message.flagB = 9;
        message.uid = -1;
        message.displayName[9] = 'x'; // behind the NUL
        activity::log().addTopPalsAvlItem(message);
    }
    const QList<int> before = records();
    for (const QString& ending : {u"csv"_s, u"json"_s}) {
        const QString file = m_store->path() + u"/a."_s + ending;
        const auto transfer = [&](const char* verb, const QString& path) {
            return run({u"favourites"_s, QLatin1String(verb), path});
        };
        QCOMPARE(transfer("export", file), u"wrote 8 rows\nexit 0"_s);
        QFile source(file);
        QVERIFY(source.open(QIODevice::ReadOnly));
        const QByteArray exported = source.readAll();
        for (const char* key : {kFirst, kSecond, "7"})
            run({u"favourites"_s, u"remove"_s, QLatin1String(key)});
        QCOMPARE(transfer("import", file), u"logged 7 entries of 3 favourites\nexit 0"_s);
        QCOMPARE(records(), before);
        QVERIFY(run({u"favourites"_s, u"export"_s, u"--format"_s, ending}).startsWith(QString::fromUtf8(exported)));
    }
    QCOMPARE(inspect("--verify"), u"*/phone: 0 problems\nexit 0"_s);
}

void ZynphoneStoreTest::importsWhatHasAPlace()
{
    QByteArray text = "favourite,start,message\n";
    for (const char* number : {"0305550001", "1", "2", "3", "4", "a/b"})
        text += QByteArray(number) + ",1970-01-01T00:00:09Z,x\n";
    m_store->write(u"../a.csv"_s, text);
    const QStringList import{u"favourites"_s, u"import"_s, m_store->path() + u"/a.csv"_s};
    const auto refused =
        u"zynphone: no place is free for 4\n"
        "zynphone: a/b cannot be made a favourite: it can name no file, or the files cannot be written\n"_s;
    const QList<int> before = records();
    QCOMPARE(run(import + QStringList{u"--strict"_s}),
             refused + u"zynphone: 2 favourites cannot be made; none was taken\nexit 1"_s);
    QCOMPARE(records(), before);
    QCOMPARE(run(import), u"logged 4 entries of 4 favourites\n"_s + refused + u"exit 1"_s);
    // What is older than all that a full file holds does not push it out.
    m_store->setSlots(u"4"_s);
    inspect("--repair");
    const QList<int> full = records();
    run(import);
    QCOMPARE(records(), full);

    ServiceProcess owner;
    QVERIFY(owner.start(ZYN_FAVOURITES));
    QVERIFY(run(import).contains(u"(zyn-favourites) owns the favourites\nexit 1"_s));
    owner.stop();
}

QTEST_GUILESS_MAIN(ZynphoneStoreTest)
#include "tst_zynphone_store.moc"
