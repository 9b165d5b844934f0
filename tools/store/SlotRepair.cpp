// Makes a sound file of slots out of a damaged one.
#include "tools/store/SlotRepair.h"

#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/store/StoreFileProblems.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr qsizetype kHeaderSize = sizeof(zyn::StoreFileHeader);

bool isInUse(const QByteArray& record)
{
    return record.at(qsizetype{offsetof(PHONE_ENG_RecentCall, inUse)}) != 0;
}

} // namespace

SlotRepair::SlotRepair(QString name, QByteArray blank, Findings& log)
    : m_name(std::move(name))
    , m_blank(std::move(blank))
    , m_log(log)
{}

QByteArray SlotRepair::repaired(const QByteArray& image)
{
    std::vector<Placed> records = recordsIn(image);
    m_recordCount = static_cast<int>(records.size());
    m_slots = slotsFor(image, m_recordCount);
    dropOldest(records);
    QByteArray result = arrange(records);
    tellShape(image, result);
    return result;
}

std::vector<SlotRepair::Placed> SlotRepair::recordsIn(const QByteArray& image)
{
    std::vector<Placed> records;
    const bool isTrusted = hasValidHeader(image);
    const auto count = static_cast<int>(std::max<qsizetype>(image.size() - kHeaderSize, 0) / m_blank.size());
    for (int slot = 0; slot < count; ++slot) {
        QByteArray record = image.sliced(kHeaderSize + slot * m_blank.size(), m_blank.size());
        if (isInUse(record) && (isTrusted || isLikely(record, slot)))
            records.push_back({slot, std::move(record)});
        else if (isInUse(record))
            tell(slot, u"what is no likely record was left in the copy"_s);
        else if (record != m_blank && isTrusted)
            tell(slot, u"made blank, as it is free"_s);
    }
    return records;
}

void SlotRepair::dropOldest(std::vector<Placed>& records)
{
    if (records.size() <= static_cast<size_t>(m_slots))
        return;
    std::ranges::stable_sort(records, [this](const Placed& a, const Placed& b) { return isNewer(a.record, b.record); });
    const auto kept = records.begin() + m_slots;
    for (auto dropped = kept; dropped != records.end(); ++dropped)
        tell(dropped->slot, u"the record, older than those of %1 other slots, was left in the copy"_s.arg(m_slots));
    records.erase(kept, records.end());
}

QByteArray SlotRepair::arrange(std::vector<Placed>& records)
{
    std::vector<QByteArray> slots(static_cast<size_t>(m_slots));
    // Who has a slot of his own goes first.
    std::ranges::stable_sort(records, {}, [this](const Placed& placed) { return placed.slot >= m_slots; });
    for (auto& [from, record] : records) {
        const auto free = std::ranges::find_if(slots, [](const QByteArray& slot) { return slot.isEmpty(); });
        const int to = from < m_slots ? from : static_cast<int>(free - slots.begin());
        if (to != from)
            tell(from, u"moved to slot %1"_s.arg(to));
        correct(record, from, to);
        slots[static_cast<size_t>(to)] = record;
    }
    QByteArray result = bytesOf(StoreFileHeader{}).toByteArray();
    for (const QByteArray& slot : slots)
        result += slot.isEmpty() ? m_blank : slot;
    return result;
}

void SlotRepair::tellShape(const QByteArray& image, const QByteArray& result)
{
    if (!hasValidHeader(image))
        m_log.add(m_name, u"given a new header"_s);
    const qsizetype behind = std::max<qsizetype>(image.size() - kHeaderSize, 0) % m_blank.size();
    if (behind != 0)
        m_log.add(m_name, u"%1 bytes at the end, no whole record, were left in the copy"_s.arg(behind));
    if (image.size() < result.size())
        m_log.add(m_name, u"completed with blank slots to %1 bytes"_s.arg(result.size()));
    if (image.size() > result.size())
        m_log.add(m_name, u"cut to %1 bytes"_s.arg(result.size()));
}

void SlotRepair::tell(int slot, const QString& text)
{
    m_log.add(m_name, kSlotWord, slot, text);
}

void SlotRepair::correctCall(PHONE_ENG_RecentCall& call, int slot)
{
    for (const QString& problem : flagProblems(call))
        tell(slot, problem + u": put right"_s);
    call.inUse = 1;
    call.readFlags &= kKnownReadFlags;
    call.completed = std::min<uint8_t>(call.completed, 1);
    endText(call.phoneNumber, slot, u"number"_s);
    endText(call.displayName, slot, u"name"_s);
    endText(call.pttSessionId, slot, u"session id"_s);
}

void SlotRepair::endText(std::span<char> field, int slot, const QString& what)
{
    if (isTerminated(field))
        return;
    field.back() = '\0';
    tell(slot, u"the %1 was cut by a character, for its NUL"_s.arg(what));
}

} // namespace zyn::tool
