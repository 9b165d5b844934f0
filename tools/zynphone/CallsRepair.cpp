// Makes sound record files of calls out of damaged ones.
#include "tools/zynphone/CallsRepair.h"

#include "recentcall/utility/RecordFile_p.h"
#include "tools/zynphone/CallText.h"
#include "tools/zynphone/RecordFileCheck.h"
#include "tools/zynphone/StoreFileProblems.h"

#include <QtCore/QSet>

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Call = PHONE_ENG_RecentCall;

Call callOf(const QByteArray& record)
{
    return zyn::toPlain<Call>(std::as_bytes(std::span(record.constData(), static_cast<size_t>(record.size()))));
}

/// Uids that no call has yet.
class FreeUids
{
public:
    explicit FreeUids(const std::map<QString, QByteArray>& images)
    {
        for (const auto& [name, image] : images) {
            for (int slot = 0; slot < zyn::kRecordSlots; ++slot) {
                if (zyn::isRecordInUse(image, slot))
                    m_used.insert(zyn::recordAt(image, slot).uid);
            }
        }
        m_highest = m_used.isEmpty() ? 0 : *std::ranges::max_element(m_used);
    }

    int32_t take()
    {
        // There may be none above the highest.
        do
            m_highest = m_highest == std::numeric_limits<int32_t>::max() ? 0 : m_highest + 1;
        while (m_used.contains(m_highest));
        m_used.insert(m_highest);
        return m_highest;
    }

private:
    QSet<int32_t> m_used;
    int32_t m_highest;
};

} // namespace

namespace zyn::tool {

CallsRepair::CallsRepair(const QString& name, Findings& log)
    : SlotRepair(name, bytesOf(Call()).toByteArray(), log)
    , m_list(listOfFile(name))
{}

int CallsRepair::slotsFor(const QByteArray& /*image*/, int /*records*/) const
{
    return kRecordSlots;
}

bool CallsRepair::isLikely(const QByteArray& record, int slot) const
{
    const Call call = callOf(record);
    return int{call.inUse == 1} + int{call.slot == slot} + int{call.category == m_list} >= 2;
}

bool CallsRepair::isNewer(const QByteArray& record, const QByteArray& other) const
{
    return callOf(record) < callOf(other);
}

void CallsRepair::correct(QByteArray& record, int from, int to)
{
    Call call = callOf(record);
    if (call.slot != from)
        tell(from, u"the record names slot %1: put right"_s.arg(call.slot));
    call.slot = to;
    if (call.category != m_list)
        tell(from, u"the category is %1: put right"_s.arg(categoryWord(call.category)));
    call.category = m_list;
    correctCall(call, from);
    record = bytesOf(call).toByteArray();
}

RenumberedCalls renumberCalls(std::map<QString, QByteArray>& images, Findings& log)
{
    RenumberedCalls renumbered;
    FreeUids uids(images);
    QSet<int32_t> seen;
    for (const RC_CALL_CATEGORY_T list : kRecordLists) {
        const auto file = images.find(recordFile(list));
        for (int slot = 0; file != images.end() && slot < kRecordSlots; ++slot) {
            Call call = recordAt(file->second, slot);
            if (call.inUse == 0)
                continue;
            if (seen.contains(call.uid)) {
                const int32_t old = std::exchange(call.uid, uids.take());
                log.add(file->first, kSlotWord, slot, u"uid %1, of another call too: now %2"_s.arg(old).arg(call.uid));
                const auto offset = static_cast<qsizetype>(recordOffset(slot));
                file->second.replace(offset, qsizetype{sizeof call}, bytesOf(call).toByteArray());
                renumbered.push_back({old, call});
            }
            seen.insert(call.uid);
        }
    }
    return renumbered;
}

} // namespace zyn::tool
