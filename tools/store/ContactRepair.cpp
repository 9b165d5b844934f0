// Makes a sound file of a favourite's calls and messages out of a damaged one.
#include "tools/store/ContactRepair.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/ContactFileCheck.h"
#include "tools/store/StoreFileProblems.h"

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Entry = PHONE_ENG_ActivityLog;

/// Makes @p entry that of @p record. Not by value: to copy an entry prints.
void read(Entry& entry, const QByteArray& record)
{
    std::memcpy(static_cast<void*>(&entry), record.constData(), sizeof entry);
}

} // namespace

ContactRepair::ContactRepair(const QString& name, Findings& log)
    : SlotRepair(name, contactRecordBytes(Entry()).toByteArray(), log)
{}

int ContactRepair::slotsFor(const QByteArray& image, int records) const
{
    const int present = contactRecordCount(image);
    const bool isWhole = hasValidHeader(image) && image.size() == contactFileSize(present);
    return std::min(std::max({contactSlots(), records, isWhole ? present : 0}), kMaxContactSlots);
}

bool ContactRepair::isLikely(const QByteArray& record, int slot) const
{
    Entry entry;
    read(entry, record);
    return int{entry.inUse == 1} + int{entry.topPalsAvlPos == slot} + int{entry.getPhoneNumber() == name()} >= 2;
}

bool ContactRepair::isNewer(const QByteArray& record, const QByteArray& other) const
{
    Entry entry;
    Entry otherEntry;
    read(entry, record);
    read(otherEntry, other);
    return m_isOlder(otherEntry, entry);
}

void ContactRepair::correct(QByteArray& record, int from, int to)
{
    Entry entry;
    read(entry, record);
    if (entry.topPalsAvlPos != from)
        tell(from, u"the entry names slot %1: put right"_s.arg(entry.topPalsAvlPos));
    entry.topPalsAvlPos = to;
    if (entry.topPalsAvlIndex < 0) {
        tell(from, u"the index is %1: now 0"_s.arg(entry.topPalsAvlIndex));
        entry.topPalsAvlIndex = 0;
    }
    correctCall(entry, from);
    endText(entry.msgString, from, u"message"_s);
    if (isContactFileName(name()) && entry.getPhoneNumber() != name()) {
        tell(from, u"the number is '%1': put right"_s.arg(entry.getPhoneNumber()));
        entry.setPhoneNumber(name());
    }
    record = contactRecordBytes(entry).toByteArray();
}

void renumberEntries(QByteArray& image, const QString& name, const RenumberedCalls& calls, Findings& log)
{
    for (int slot = 0; !calls.empty() && slot < contactRecordCount(image); ++slot) {
        Entry entry;
        readContactRecord(entry, image, slot);
        const auto made = std::ranges::find_if(calls, [&](const RenumberedCall& renumbered) {
            const PHONE_ENG_RecentCall& call = renumbered.call;
            return renumbered.oldUid == entry.uid && call.startTime == entry.startTime
                   && call.category == entry.category && favouriteKey(call.getPhoneNumber()) == name;
        });
        if (entry.inUse == 0 || entry.msgType != 0 || made == calls.end())
            continue;
        entry.uid = made->call.uid;
        log.add(name, kSlotWord, slot, u"uid %1, as its call: now %2"_s.arg(made->oldUid).arg(entry.uid));
        const auto offset = static_cast<qsizetype>(getTopPalsAvlFilePos(slot));
        image.replace(offset, qsizetype{sizeof entry}, contactRecordBytes(entry).toByteArray());
    }
}

} // namespace zyn::tool
