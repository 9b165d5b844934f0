// The activity log of the favourites against a plain model: who is a favourite, and which entries each has.
#include "fuzz/Fuzz.h"

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "platform/SETUP_SET_Manager.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>
#include <vector>

namespace zyn::fuzz {
namespace {

/// What identifies an entry here, in the order of age.
using Entry = std::pair<int32_t, int32_t>; // start and uid

/// The log, and what it should hold.
class Log
{
public:
    void step(Input& input);
    void checkAll() const;

private:
    QString keyFrom(Input& input) const { return QStringLiteral("111222") + QString::number(input.below(8)); }
    static std::vector<Entry> entriesOf(const QString& key);

    void replace(Input& input);
    void add(Input& input);
    void moveLimit(Input& input);
    void damage(Input& input);
    void keepNewest(std::vector<Entry>& entries) const;

    const Folder m_folder;
    std::map<QString, std::vector<Entry>> m_favourites; ///< the entries of each, oldest first
    size_t m_limit = 15;
    int32_t m_nextUid = 0;
};

std::vector<Entry> Log::entriesOf(const QString& key)
{
    handset::ActivityEntries list;
    list.setAutoDelete(true);
    require(handset::readEntries(list, key), "the entries of a favourite can be read");
    std::vector<Entry> entries;
    for (const PHONE_ENG_ActivityLog* entry : list) {
        require(entries.empty() || entries.back().first >= entry->startTime, "entries come newest first");
        require(entry->getPhoneNumber() == key && entry->inUse != 0, "an entry is one of its favourite");
        entries.emplace_back(entry->startTime, entry->uid);
    }
    std::ranges::sort(entries);
    return entries;
}

void Log::checkAll() const
{
    QStringList keys = handset::favouriteKeys();
    keys.removeAll(QString());
    require(size_t(keys.size()) == m_favourites.size(), "there are as many favourites as were made");
    for (const auto& [key, entries] : m_favourites) {
        require(handset::isFavourite(key), "a favourite stays one");
        require(entriesOf(key) == entries, "a favourite has the entries that were added");
    }
}

void Log::step(Input& input)
{
    switch (input.below(8)) {
    case 0:
        return Folder::forget(); // another process goes on
    case 1:
        return moveLimit(input);
    case 2:
        return damage(input);
    case 3:
    case 4:
        return replace(input);
    default:
        return add(input);
    }
}

/// One favourite by another; either may be none.
void Log::replace(Input& input)
{
    const int which = input.below(3);
    const QString oldKey = which == 0 ? QString() : keyFrom(input);
    const QString newKey = which == 1 ? QString() : keyFrom(input);
    const bool isNoFavourite = !oldKey.isEmpty() && !m_favourites.contains(oldKey);
    const bool isThere = m_favourites.contains(newKey);
    const bool isFull = oldKey.isEmpty() && m_favourites.size() == size_t{TopPalNumberDetail::kPlaces};
    const auto change = handset::replaceFavourite(oldKey, newKey);
    using enum handset::FavouriteChange;
    if (isNoFavourite || isThere || isFull) {
        require(change != Done && change != WithoutFile, "what cannot be replaced is not");
        return;
    }
    require(change == Done, "a favourite is replaced");
    m_favourites.erase(oldKey);
    if (!newKey.isEmpty())
        m_favourites[newKey];
}

/// An entry, in the place of the oldest when there are as many as are kept.
void Log::add(Input& input)
{
    const QString key = keyFrom(input);
    PHONE_ENG_ActivityLog entry;
    entry.startTime = 1'700'000'000 + input.byte();
    entry.uid = m_nextUid++;
    const bool isAdded = handset::addEntry(entry, key);
    const auto favourite = m_favourites.find(key);
    require(isAdded == (favourite != m_favourites.end()), "an entry is one of a favourite");
    if (!isAdded)
        return;
    auto& entries = favourite->second;
    if (entries.size() >= m_limit)
        entries.erase(entries.begin());
    entries.emplace_back(entry.startTime, entry.uid);
    std::ranges::sort(entries);
    require(entriesOf(key) == entries, "an entry replaces no other than the oldest");
}

void Log::keepNewest(std::vector<Entry>& entries) const
{
    if (entries.size() > m_limit)
        entries.erase(entries.begin(), entries.end() - std::ptrdiff_t(m_limit));
}

/// More entries are kept, or fewer.
void Log::moveLimit(Input& input)
{
    const int limit = 1 + input.below(30);
    SETUP_SET_Manager(m_folder.path(QStringLiteral("setup/zyn_toppals.cfg")), false)
        .setSettingInfo(QStringLiteral("TopPals-UI"), QStringLiteral("MaxItemsToLog"), QString::number(limit));
    m_limit = size_t(limit);
    for (auto& [key, entries] : m_favourites) {
        require(handset::hasValidLog(key) || handset::renewLog(key), "a file can be made as long as it must be");
        keepNewest(entries);
    }
    checkAll();
}

/// Somebody spoils a favourite's file: what is shown are entries of it, and its owner can go on.
void Log::damage(Input& input)
{
    const QString key = keyFrom(input);
    if (!m_favourites.contains(key))
        return;
    const QString path = m_folder.store(key);
    QByteArray image = readFile(path);
    require(!image.isEmpty(), "a favourite has a file");
    const qsizetype place = input.number<uint16_t>() % image.size();
    if (input.below(2) == 0)
        image.truncate(place);
    else
        image[place] = char(image[place] ^ (input.byte() | 1));
    writeFile(path, image);
    handset::ActivityEntries shown;
    shown.setAutoDelete(true);
    handset::readEntries(shown, key);
    for (const PHONE_ENG_ActivityLog* entry : shown)
        require(entry->getPhoneNumber() == key, "an entry of another number is not shown");
    Folder::forget();
    require(handset::hasValidLog(key) || handset::renewLog(key), "a damaged file can be renewed");
    // What is left of it counts from now on; damaged entries may have any time and uid.
    m_favourites[key] = entriesOf(key);
    require(handset::replaceFavourite(key, {}) == handset::FavouriteChange::Done, "a damaged favourite can go");
    m_favourites.erase(key);
}

void operateLog(Input& input)
{
    Log log;
    while (!input.isAtEnd())
        log.step(input);
    log.checkAll();
}

QList<QByteArray> logSeeds()
{
    const auto make = [](char key) { return seed({3, 0, key}); };
    const auto add = [](char key, char time) { return seed({7, key, time}); };
    const QByteArray two = make(0) + make(1) + add(0, 1) + add(0, 9) + add(1, 5);
    return {
        two + '\0' + add(0, 3) + seed({3, 1, 0}) + seed({3, 2, 1, 2}),
        make(0) + add(0, 1).repeated(17),
        two + seed({1, 0}) + add(0, 7) + seed({1, 20}) + add(0, 8),
        two + seed({2, 0, 60, 1, 0}) + two + seed({2, 1, 80, 0, 1, 7}) + two,
        make(0) + make(1) + make(2) + make(3) + make(4) + make(5),
    };
}

constexpr std::array kActivityTargets{
    Target{"activity_sequence", "the favourites and their activity log, against a model", operateLog, logSeeds},
};

} // namespace

std::span<const Target> activityTargets()
{
    return kActivityTargets;
}

} // namespace zyn::fuzz
