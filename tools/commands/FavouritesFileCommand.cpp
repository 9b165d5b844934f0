// zynphone favourites export and import: the favourites and their entries as a file.
#include "tools/commands/Commands.h"

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/commands/FavouritesEdit.h"
#include "tools/interchange/RecordSchemas.h"
#include "tools/interchange/RecordsFile.h"
#include "tools/store/FileCheck.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Entry = PHONE_ENG_ActivityLog;
using Records = std::vector<QByteArray>;

/// The entries of @p key, newest first; at the same time, the last logged first, as import preserves it.
std::vector<const Entry*> inOrder(const handset::ActivityEntries& entries)
{
    std::vector<const Entry*> ordered(entries.begin(), entries.end());
    std::ranges::stable_sort(ordered, [](const Entry* one, const Entry* other) {
        return std::tie(one->startTime, one->topPalsAvlIndex) > std::tie(other->startTime, other->topPalsAvlIndex);
    });
    return ordered;
}

void appendFavourite(Records& records, int place, const QString& key)
{
    handset::ActivityEntries entries;
    if (!handset::readEntries(entries, key))
        throw failure(u"the file of %1 cannot be read"_s.arg(key));
    for (const Entry* entry : inOrder(entries))
        records.push_back(favouriteRecord(place, key, *entry));
    if (entries.count() == 0)
        records.push_back(favouriteRecord(place, key, Entry()));
}

ExitCode exportFavourites(const Invocation& invocation, Console& console)
{
    const RecordsFile file(invocation, favouriteSchema(), invocation.argument(0));
    Records records;
    const QStringList keys = readKeys();
    for (int place = 0; place < keys.size(); ++place) {
        if (!keys[place].isEmpty())
            appendFavourite(records, place, keys[place]);
    }
    file.write(records, console);
    return Done;
}

QString keyOf(const QByteArray& record)
{
    return favouriteKey(favouriteNumber(record));
}

/// Registers the favourites in @p records and logs their entries.
class Import
{
public:
    explicit Import(const Records& records)
        : m_records(records)
    {
        auto places = handset::favouriteKeys().count(QString());
        for (const QByteArray& record : records) {
            const QString key = keyOf(record);
            if (m_keys.contains(key) || m_refused.contains(key))
                continue;
            const bool isKnown = handset::isFavourite(key);
            if (!canNameContactFile(key) || (!isKnown && places == 0))
                m_refused += key;
            else
                m_keys += key;
            places -= m_keys.contains(key) && !isKnown ? 1 : 0;
        }
    }

    /// The favourites that cannot be registered, one line each.
    QStringList problems() const
    {
        QStringList lines;
        for (const QString& key : m_refused)
            lines += canNameContactFile(key) ? handset::describe(handset::FavouriteChange::NoPlace, {}, key)
                                             : handset::describe(handset::FavouriteChange::Refused, {}, key);
        return lines;
    }

    void run()
    {
        for (const QString& key : m_keys) {
            if (handset::isFavourite(key))
                continue;
            const handset::FavouriteChange change = handset::replaceFavourite({}, key);
            if (change != handset::FavouriteChange::Done)
                throw failure(handset::describe(change, {}, key) + u"; "_s + state());
        }
        // Oldest first, because the log treats the last as the newest.
        for (auto record = m_records.rbegin(); record != m_records.rend(); ++record)
            log(*record);
    }

    QString state() const
    {
        return u"logged %1 of %2"_s.arg(m_logged == 1 ? u"1 entry"_s : u"%1 entries"_s.arg(m_logged),
                                        counted(m_keys.size(), "favourite"));
    }

private:
    void log(const QByteArray& record)
    {
        Entry entry;
        readEntry(entry, record);
        handset::ActivityEntries entries;
        handset::readEntries(entries, keyOf(record));
        if (entry.inUse == 0 || !m_keys.contains(keyOf(record)) || handset::isTooOld(entry, entries))
            return;
        if (!handset::addEntry(entry, keyOf(record)))
            throw failure(u"the file of %1 cannot be written; %2"_s.arg(keyOf(record), state()));
        ++m_logged;
    }

    const Records& m_records;
    QStringList m_keys;
    QStringList m_refused;
    int m_logged = 0;
};

ExitCode importFavourites(const Invocation& invocation, Console& console)
{
    const ReadRecords read = RecordsFile(invocation, favouriteSchema(), invocation.argument(0)).read(console);
    const FavouritesOwnership ownership;
    Import import(read.records);
    const QStringList problems = import.problems();
    for (const QString& problem : problems)
        console.writeError(u"zynphone: "_s + problem);
    if (!problems.isEmpty() && invocation.isSet(u"strict"_s))
        throw failure(u"%1 cannot be made; none was taken"_s.arg(counted(problems.size(), "favourite")));
    import.run();
    console.write(import.state() + u'\n');
    return read.problems.isEmpty() && problems.isEmpty() ? Done : Failed;
}

} // namespace

Command favouritesExportRow()
{
    return {.name = u"export"_s,
            .summary = u"Write the favourites and their entries to a file, newest first, with every byte"_s,
            .details =
                u"\nA row is an entry with its favourite, or, where inUse is false, a favourite without entries.\n"
                "Only --all writes favouritePlace, place and index. 'favourites import' makes the same again of\n"
                "the others.\n"_s,
            .arguments = {{u"FILE"_s, u"is replaced; - (the default) is standard output"_s, Argument::Optional}},
            .options = RecordsFile::exportOptions(),
            .words = RecordsFile::words(),
            .run = exportFavourites};
}

Command favouritesImportRow()
{
    return {.name = u"import"_s,
            .summary = u"Make favourites of those in a file, and log their entries beside those that are there"_s,
            .details =
                u"\nIn the file they stand newest first. favourite and start must be there, the other fields may be:\n"
                "%1"
                "A row that cannot be read and a favourite for which no place is free are told and left; then the\n"
                "exit code is 1. Of more entries than a favourite's file holds, the newest stay.\n"_s.arg(
                    RecordsFile::fieldList(favouriteSchema())),
            .arguments = {{u"FILE"_s, u"as 'favourites export' writes it; - is standard input"_s}},
            .options = RecordsFile::importOptions(),
            .words = RecordsFile::words(),
            .run = importFavourites};
}

} // namespace zyn::tool
