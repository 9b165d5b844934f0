// The files: whatever is in them, readers, services and the tool's checks and repairs cope with it.
#include "fuzz/Fuzz.h"

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "handset/recentcall_service/CallFile.h"
#include "platform/SettingsCache_p.h"
#include "platform/SettingsFile_p.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/store/FileCheck.h"
#include "tools/store/FileRepair.h"
#include "tools/store/StoreFiles.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <array>
#include <map>

namespace zyn::fuzz {
namespace {

constexpr char kNumber[] = "1112222";

QString numberText()
{
    return QLatin1String(kNumber);
}

PHONE_ENG_RecentCall callIn(RC_CALL_CATEGORY_T list, int slot)
{
    PHONE_ENG_RecentCall record(QStringLiteral("0301112222"), QDateTime::fromSecsSinceEpoch(1'700'000'000 + slot), 60);
    record.category = list;
    record.inUse = 1;
    record.uid = slot;
    record.slot = slot;
    return record;
}

/// A file, the same cut short, without a valid header, and too long.
QList<QByteArray> variations(const QByteArray& image)
{
    return {image,        image.chopped(1), image.first(image.size() / 2), '\1' + image.sliced(1),
            image + '\0', image.first(8)};
}

/// A list of calls: the store, the service, and the tool's check and repair.
void readRecordFile(Input& input)
{
    const RC_CALL_CATEGORY_T list = kRecordLists[input.below(3)];
    const QString name = tool::recordFile(list);
    const QByteArray image = input.rest();
    const Folder folder;
    RecentCall_ENG_RecordStore store;
    writeFile(folder.store(name), image);
    QSortedList<PHONE_ENG_RecentCall> calls;
    calls.setAutoDelete(true);
    store.readDataList(calls, list);
    const std::vector<int> used = hasValidHeader(image) ? RecordFile::usedSlots(image) : std::vector<int>();
    require(calls.count() == std::ssize(used), "each slot in use is a call");
    for (const PHONE_ENG_RecentCall* shown : calls)
        require(shown->inUse != 0 && shown->getPhoneNumber().size() <= qsizetype{sizeof shown->phoneNumber},
                "a call is one in use");

    tool::checkRecordFile(name, image);
    tool::Findings log;
    std::map<QString, QByteArray> images{{name, tool::CallsRepair(name, log).repaired(image)}};
    tool::renumberCalls(images, log);
    const QByteArray& repaired = images[name];
    require(tool::checkRecordFile(name, repaired).isValid(), "a repaired list is valid");
    require(tool::CallsRepair(name, log).repaired(repaired) == repaired, "a valid list is not repaired");

    // The service waits for the rest of a short file, which somebody may be writing.
    if (image.size() < RecordFile::size())
        return;
    handset::CallFile file(list);
    require(file.open() != handset::CallFile::Found::Unreadable, "a list is found, or made anew");
    const auto found = file.calls();
    require(found.size() <= size_t{kRecordSlots}, "no list holds more than its slots");
    file.correctSlots();
    if (!found.empty()) {
        // What was read says of which list it is, whatever the file said.
        require(file.write(found.front()) && file.holds(found.front()), "the file holds what was written");
        require(file.erase(found.front().slot), "a call can be erased");
    }
    require(RecordFile::isAt(QFile::encodeName(folder.store(name))), "the service leaves a valid list");
}

QList<QByteArray> recordFileSeeds()
{
    QByteArray image = RecordFile::blankImage();
    for (const int slot : {0, 1, 49})
        RecordFile::put(image, slot, callIn(RC_CALL_CATEGORY_MISSED, slot));
    QList<QByteArray> seeds;
    for (const QByteArray& variation : variations(image))
        seeds += '\1' + variation;
    return seeds;
}

/// A favourite's file: the store, its owner, and the tool's check and repair.
void readContactFile(Input& input)
{
    const QByteArray image = input.rest();
    const Folder folder;
    auto& store = *ActivityLog_ENG_RecordStore::instance();
    require(store.revampTopPalsAvlStorage({}, numberText()) == 1, "a number becomes a favourite");
    writeFile(folder.store(numberText()), image);
    {
        handset::ActivityEntries entries;
        entries.setAutoDelete(true);
        handset::readEntries(entries, numberText());
        require(entries.count() <= contactSlots(), "no file has more entries than slots");
    }
    tool::checkContactFile(numberText(), image);
    tool::Findings log;
    const QByteArray repaired = tool::ContactRepair(numberText(), log).repaired(image);
    require(tool::checkContactFile(numberText(), repaired).isValid(), "a repaired file is valid");
    if (!handset::hasValidLog(numberText()))
        require(handset::renewLog(numberText()) && handset::hasValidLog(numberText()), "a file can be renewed");
    PHONE_ENG_ActivityLog entry;
    entry.setPhoneNumber(numberText());
    entry.inUse = 1;
    Folder::forget();
    require(handset::addEntry(entry, numberText()), "an entry is taken, whatever the file was");
}

QList<QByteArray> contactFileSeeds()
{
    constexpr int kSlots = 15;
    QByteArray image = ContactFile::blankImage(kSlots);
    for (const int slot : {0, 1, 14}) {
        PHONE_ENG_ActivityLog entry(callIn(RC_CALL_CATEGORY_MISSED, slot));
        entry.setPhoneNumber(numberText());
        entry.topPalsAvlIndex = slot;
        entry.topPalsAvlPos = slot;
        ContactFile::put(image, slot, entry);
    }
    return variations(image);
}

/// The file of the favourites: the store, its owner, and the tool's check and repair.
void readFavouritesFile(Input& input)
{
    const QByteArray image = input.rest();
    const Folder folder;
    const QString name = QLatin1String(kTopPalsDetailsName);
    writeFile(folder.store(name), image);
    tool::checkFavouritesFile(name, image);
    tool::Findings log;
    const tool::StoreFiles files(folder.store({}));
    const QByteArray repaired = tool::FavouritesRepair(files, log).image();
    require(tool::checkFavouritesFile(name, repaired).isValid(), "repaired favourites are valid");
    handset::readFavouriteKeys();
    QString names[ActivityLog_ENG_RecordStore::kFavourites];
    require(ActivityLog_ENG_RecordStore::instance()->getCurrentTopPalsFileNames(names), "the favourites have names");
    for (const QString& number : names)
        handset::replaceFavourite(number, numberText());
}

QList<QByteArray> favouritesFileSeeds()
{
    QByteArray image = DetailsFile::blankImage();
    for (const int place : {0, 3})
        DetailsFile::put(image, place, TopPalNumberDetail{place, "1112222", {}});
    return variations(image);
}

/// Which calls the owner of the favourites has seen.
void readSeenCalls(Input& input)
{
    const Folder folder;
    const QString path = folder.store(QLatin1String(kSeenCallsName));
    writeFile(path, input.rest());
    const PHONE_ENG_RecentCall seen = callIn(RC_CALL_CATEGORY_MISSED, 0);
    handset::SeenCalls calls(path);
    calls.contains(seen);
    require(calls.replaceBy(std::span(&seen, 1)) && handset::SeenCalls(path).contains(seen),
            "what was seen is remembered");
}

QList<QByteArray> seenCallsSeeds()
{
    return {QByteArray(16, '\1'), QByteArray(15, '\1'), {}};
}

/// The list of emergency numbers.
void readEmergencyList(Input& input)
{
    QByteArray number = input.text();
    const QByteArray records = input.rest();
    writeFile(QLatin1String(emergency::kListFile), records);
    PHONE_IsEmergencyCall(number.data());
    PHONE_IsEmergencyCallInput(QString::fromUtf8(number));
    const QStringList numbers = emergency::readList();
    require(numbers.size() <= records.size() / qsizetype{sizeof(emergency::Record)} + 1, "no number is made up");
    for (const QString& listed : numbers) {
        QByteArray latin1 = listed.toLatin1();
        require(PHONE_IsEmergencyCall(latin1.data()), "what is listed is an emergency number");
        require(PHONE_IsEmergencyCallInput(listed.left(3)), "what a listed number begins with may become one");
    }
    const Folder folder;
    const QByteArray path = QFile::encodeName(folder.path(QStringLiteral("list")));
    if (emergency::writeList(numbers, path.constData()))
        require(emergency::readList(path.constData()) == numbers, "a list comes back");
}

QList<QByteArray> emergencySeeds()
{
    QByteArray records;
    for (const char* number : {"112", "911", "08"})
        records += QByteArray(number).leftJustified(42, '\0');
    return {"\x03"
            "112"
                + records,
            "\x01"
            "9" + records.chopped(30),
            "\x05"
            "*#06#"
                + QByteArray(42, '1'),
            "\x03"
            "112"
                + QByteArray(qsizetype{200} * 42, '\0') + records};
}

/// A settings file, read and changed.
void changeSettings(Input& input)
{
    const QString group = QString::fromUtf8(input.text());
    const QString key = QString::fromUtf8(input.text());
    const QString value = QString::fromUtf8(input.text());
    const QString other = QStringLiteral("other");
    const QByteArray contents = input.rest();
    const Folder folder;
    const QString path = folder.path(QStringLiteral("setup/zyn_phone.cfg"));
    writeFile(path, contents);
    SettingsFile file(path);
    const auto before = file.value(other, other);
    require(storedSetting(path, other, other) == before, "the cache knows what is stored");
    if (const auto stored = file.value(group, key)) {
        settingText(*stored);
        settingWord(*stored);
        settingInt(*stored);
    }
    file.strayLines();
    if (!file.setValue(group, key, value)) {
        require(readFile(path) == contents, "a setting that cannot be stored changes nothing");
        return;
    }
    const auto stored = SettingsFile(path).value(group, key);
    require(stored && settingText(*stored) == value, "a setting comes back");
    require(storedSetting(path, group, key) == stored, "the cache knows what was stored");
    if (group != other || key != other)
        require(file.value(other, other) == before, "another setting stays as it was");
}

QList<QByteArray> settingsSeeds()
{
    const auto text = [](const QByteArray& bytes) { return char(bytes.size()) + bytes; };
    const QByteArray contents = "\xEF\xBB\xBF# settings\n[other]\nother=1\r\n\n[phone]\nkey = a value\nkey=\xEF\xBB\xBF"
                                "two\\nlines\nstray\n";
    return {
        text("phone") + text("key") + text("17") + contents,
        text("phone") + text("key") + text("two\nlines \\ \xF0\x9F\x98\x80") + contents,
        text("other") + text("new") + text("\xEF\xBB\xBF") + contents.chopped(1),
        text("a]") + text("=") + text("x") + contents,
    };
}

constexpr std::array kFileTargets{
    Target{"file_calls", "a list of calls: store, service, check and repair", readRecordFile, recordFileSeeds},
    Target{"file_contact", "a favourite's entries: store, owner, check and repair", readContactFile, contactFileSeeds},
    Target{"file_favourites", "the favourites: store, owner, check and repair", readFavouritesFile,
           favouritesFileSeeds},
    Target{"file_seen_calls", "which calls the owner of the favourites has seen", readSeenCalls, seenCallsSeeds},
    Target{"file_emergency", "the list of emergency numbers", readEmergencyList, emergencySeeds},
    Target{"file_settings", "settings files, read and changed", changeSettings, settingsSeeds},
};

} // namespace

std::span<const Target> fileTargets()
{
    return kFileTargets;
}

} // namespace zyn::fuzz
