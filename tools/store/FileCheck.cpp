// Checks single files of a store: record files, contact files, the file of favourites.
#include "tools/store/FileCheck.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/RecordText.h"
#include "tools/zynphone/Text.h"
#include "utility/FixedText_p.h"

#include <QtCore/QHash>

#include <algorithm>
#include <cstring>
#include <deque>
#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

/// The faults of the record in @p place of the file of @p list by itself.
QStringList recordProblems(const Call& record, int place, RC_CALL_CATEGORY_T list)
{
    QStringList problems;
    if (record.slot != place)
        problems += u"the record names slot %1"_s.arg(record.slot);
    if (list != RC_CALL_CATEGORY_NONE && record.category != list)
        problems += u"the category is %1"_s.arg(categoryWord(record.category));
    if (record.uid == kGreatestUid)
        problems += u"its uid leaves none for newer calls"_s;
    return problems + flagProblems(record) + textProblems(record);
}

/// Checks the slots in order.
class SlotCheck
{
public:
    SlotCheck(const QString& name, RC_CALL_CATEGORY_T list, const QStringList& problems)
        : m_name(name)
        , m_list(list)
    {
        m_findings.add(m_name, problems);
    }

    void check(const Call& record, int place)
    {
        m_findings.add(m_name, {kSlotWord, place}, recordProblems(record, place, m_list));
        if (const auto other = m_placeOfUid.constFind(record.uid); other != m_placeOfUid.cend())
            m_findings.add(m_name, {kSlotWord, place}, u"uid %1 is that of slot %2 too"_s.arg(record.uid).arg(*other));
        else
            m_placeOfUid.insert(record.uid, place);
        m_records.push_back(record);
        m_records.back().slot = place;
    }

    void checkFreeSlot(const Call& record, int place)
    {
        if (bytesOf(record) != bytesOf(Call()))
            m_findings.add(m_name, {kSlotWord, place}, u"it is free but not blank"_s);
    }

    const Findings& findings() const { return m_findings; }
    Table table() const { return Table(slotColumns(), m_records); }

private:
    const QString m_name;
    const RC_CALL_CATEGORY_T m_list;
    QHash<int32_t, int> m_placeOfUid;
    Findings m_findings;
    std::vector<Call> m_records;
};

using Entry = PHONE_ENG_ActivityLog;

constexpr std::string_view kDialedCharacters = "0123456789*#+";

/// The faults of @p entry in @p slot of the file @p name by itself.
QStringList entryProblems(const Entry& entry, int slot, const QString& name)
{
    QStringList problems;
    if (entry.topPalsAvlPos != slot)
        problems += u"the entry names slot %1"_s.arg(entry.topPalsAvlPos);
    if (entry.topPalsAvlIndex < 0)
        problems += u"the index is %1"_s.arg(entry.topPalsAvlIndex);
    if (isContactFileName(name) && entry.getPhoneNumber() != name)
        problems += u"the number is '%1'"_s.arg(printable(entry.getPhoneNumber()));
    problems += flagProblems(entry) + textProblems(entry);
    if (!isTerminated(entry.msgString))
        problems += u"the message has no NUL"_s;
    return problems;
}

/// Checks the slots in order.
class EntryCheck
{
public:
    EntryCheck(const QString& name, const QStringList& problems)
        : m_name(name)
    {
        m_findings.add(m_name, problems);
    }

    void check(const QByteArray& image, int slot)
    {
        Entry& entry = m_entries.emplace_back();
        ContactFile::read(entry, image, slot);
        if (entry.inUse == 0) {
            if (ContactFile::bytes(entry) != ContactFile::bytes(m_blank))
                m_findings.add(m_name, {kSlotWord, slot}, u"it is free but not blank"_s);
            m_entries.pop_back();
            return;
        }
        m_findings.add(m_name, {kSlotWord, slot}, entryProblems(entry, slot, m_name));
        entry.topPalsAvlPos = slot;
    }

    const Findings& findings() const { return m_findings; }
    Table table() const { return Table(activityColumns(), m_entries); }

private:
    const QString m_name;
    const Entry m_blank;
    Findings m_findings;
    std::deque<Entry> m_entries; ///< never moved, because each copy writes trace text
};

struct FavouriteLine
{
    int place;
    QString number;
};

constexpr Column<FavouriteLine> kRegisteredColumns[] = {
    {"place", "PLACE", [](const FavouriteLine& favourite) { return QJsonValue(favourite.place); }},
    {"number", "NUMBER", [](const FavouriteLine& favourite) { return QJsonValue(favourite.number); }},
};

/// The faults of @p detail in @p place by itself.
QStringList placeProblems(const TopPalNumberDetail& detail, int place)
{
    const bool isFree = detail.nthFileItem == TopPalNumberDetail::kFree;
    const bool hasNumber = detail.phoneNumber[0] != '\0';
    QStringList problems;
    if (!isFree && detail.nthFileItem != place)
        problems += u"it names place %1"_s.arg(detail.nthFileItem);
    if (isFree && hasNumber)
        problems += u"it is free but has a number"_s;
    if (!isFree && !hasNumber)
        problems += u"it is taken but has no number"_s;
    if (!isTerminated(detail.phoneNumber))
        problems += u"the number has no NUL"_s;
    return problems;
}

} // namespace

QStringList headerProblems(const QByteArray& image)
{
    StoreFileHeader header{0, 0};
    if (image.size() < qsizetype{sizeof header})
        return {u"the header is cut short"_s};
    std::memcpy(&header, image.constData(), sizeof header);
    QStringList problems;
    if (header.magic != header.kMagic)
        problems += u"the magic is 0x%1, not 0x%2"_s.arg(header.magic, 8, 16, '0'_L1).arg(header.kMagic, 8, 16, '0'_L1);
    if (header.version != header.kVersion)
        problems += u"the version is %1, not %2"_s.arg(header.version).arg(header.kVersion);
    return problems;
}

QStringList sizeProblems(const QByteArray& image, qint64 expected)
{
    if (image.size() == expected)
        return {};
    return {u"the size is %1, not %2"_s.arg(counted(image.size(), "byte")).arg(expected)};
}

QStringList flagProblems(const PHONE_ENG_RecentCall& call)
{
    QStringList problems;
    if ((call.readFlags & ~kKnownReadFlags) != 0)
        problems += u"the read flags are 0x%1"_s.arg(call.readFlags, 2, 16, '0'_L1);
    if (call.inUse != 1)
        problems += u"the flag of its use is %1"_s.arg(int{call.inUse});
    if (call.completed > 1)
        problems += u"the flag of its completion is %1"_s.arg(call.completed);
    return problems;
}

QStringList textProblems(const PHONE_ENG_RecentCall& call)
{
    QStringList problems;
    if (!isTerminated(call.phoneNumber))
        problems += u"the number has no NUL"_s;
    if (!isTerminated(call.displayName))
        problems += u"the name has no NUL"_s;
    if (!isTerminated(call.pttSessionId))
        problems += u"the session id has no NUL"_s;
    return problems;
}

QString recordFile(RC_CALL_CATEGORY_T list)
{
    return QLatin1String(recordFileName(list)).sliced(1);
}

RC_CALL_CATEGORY_T listOfFile(const QString& name)
{
    const auto found = std::ranges::find(kRecordLists, name, recordFile);
    return found == std::end(kRecordLists) ? RC_CALL_CATEGORY_NONE : *found;
}

bool isRecordFileName(const QString& name)
{
    return listOfFile(name) != RC_CALL_CATEGORY_NONE;
}

bool isRecordFileImage(const QByteArray& image)
{
    return RecordFile::isValid(image);
}

FileReport checkRecordFile(const QString& name, const QByteArray& image)
{
    const RC_CALL_CATEGORY_T list = listOfFile(name);
    QStringList problems = headerProblems(image);
    const int places = problems.isEmpty() ? RecordFile::count(image) : 0;
    problems += sizeProblems(image, RecordFile::size());
    SlotCheck check(name, list, problems);
    for (int place = 0; place < places; ++place) {
        if (RecordFile::isInUse(image, place))
            check.check(RecordFile::at(image, place), place);
        else
            check.checkFreeSlot(RecordFile::at(image, place), place);
    }
    const QString kind = list == RC_CALL_CATEGORY_NONE ? u"calls"_s : categoryWord(list) + u" calls"_s;
    return {kind, check.findings(), check.table()};
}

bool isContactFileName(const QString& name)
{
    return !name.isEmpty() && std::ranges::all_of(name, [](QChar character) {
        return kDialedCharacters.find(character.toLatin1()) != kDialedCharacters.npos;
    });
}

bool isContactFileImage(const QByteArray& image)
{
    const int slots = ContactFile::count(image);
    if (!ContactFile::isValid(image, slots))
        return false;
    Entry entry;
    const int32_t nowhere = entry.topPalsAvlPos;
    int known = 0;
    for (int slot = 0; slot < slots; ++slot) {
        ContactFile::read(entry, image, slot);
        known += entry.topPalsAvlPos == slot || entry.topPalsAvlPos == nowhere ? 1 : 0;
    }
    return known >= slots - known;
}

FileReport checkContactFile(const QString& name, const QByteArray& image)
{
    QStringList problems = headerProblems(image);
    const int slots = problems.isEmpty() ? ContactFile::count(image) : 0;
    problems += sizeProblems(image, ContactFile::size(contactSlots()));
    EntryCheck check(name, problems);
    for (int slot = 0; slot < slots; ++slot)
        check.check(image, slot);
    return {u"activities of a favourite"_s, check.findings(), check.table()};
}

bool isFavouritesFileName(const QString& name)
{
    return name == QLatin1String(kTopPalsDetailsName);
}

bool isFavouritesFileImage(const QByteArray& image)
{
    return DetailsFile::isValid(image);
}

FileReport checkFavouritesFile(const QString& name, const QByteArray& image)
{
    Findings findings;
    findings.add(name, headerProblems(image) + sizeProblems(image, DetailsFile::size()));
    const int places = hasValidHeader(image) ? DetailsFile::count(image) : 0;
    std::vector<FavouriteLine> favourites;
    for (int place = 0; place < places; ++place) {
        const TopPalNumberDetail detail = DetailsFile::at(image, place);
        QStringList found = placeProblems(detail, place);
        if (detail.nthFileItem != TopPalNumberDetail::kFree) {
            const QString number = latin1Text(detail.phoneNumber);
            const auto other = std::ranges::find(favourites, number, &FavouriteLine::number);
            if (other != favourites.end())
                found += u"its number is that of place %1 too"_s.arg(other->place);
            favourites.push_back({place, number});
        }
        findings.add(name, {kPlaceWord, place}, found);
    }
    return {u"favourites"_s, findings, Table(kRegisteredColumns, favourites)};
}

} // namespace zyn::tool
