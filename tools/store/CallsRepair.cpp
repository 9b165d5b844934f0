// Makes sound record files of calls out of damaged ones.
#include "tools/store/CallsRepair.h"

#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/store/RecordFileCheck.h"
#include "tools/store/StoreFileProblems.h"
#include "tools/zynphone/CallText.h"

#include <QtCore/QSet>

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

Call callOf(const QByteArray& record)
{
    return zyn::toPlain<Call>(std::as_bytes(std::span(record.constData(), static_cast<size_t>(record.size()))));
}

using Images = std::map<QString, QByteArray>;

/// The calls of all lists, in the order of these and of their slots.
std::vector<Call> callsIn(const Images& images)
{
    std::vector<Call> calls;
    for (const RC_CALL_CATEGORY_T list : zyn::kRecordLists) {
        const auto file = images.find(recordFile(list));
        for (int slot = 0; file != images.end() && slot < zyn::kRecordSlots; ++slot) {
            if (zyn::isRecordInUse(file->second, slot))
                calls.push_back(zyn::recordAt(file->second, slot));
        }
    }
    return calls;
}

/// How many of @p calls have the uid of one before.
int32_t countEqual(const std::vector<Call>& calls)
{
    QSet<int32_t> uids;
    for (const Call& call : calls)
        uids.insert(call.uid);
    return static_cast<int32_t>(qsizetype(calls.size()) - uids.size());
}

/// Puts @p call, whose uid was @p old, into its place in @p images, and tells why.
void put(const Call& call, int32_t old, const QString& why, Images& images, Findings& log)
{
    const QString name = recordFile(call.category);
    log.add(name, kSlotWord, call.slot, u"uid %1, %2: now %3"_s.arg(old).arg(why).arg(call.uid));
    const auto offset = static_cast<qsizetype>(zyn::recordOffset(call.slot));
    images.at(name).replace(offset, qsizetype{sizeof call}, zyn::bytesOf(call).toByteArray());
}

} // namespace

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
    std::vector<Call> calls = callsIn(images);
    RenumberedCalls renumbered = lowerUids(calls, countEqual(calls) + 1);
    for (const auto& [old, call] : renumbered)
        put(call, old, u"above which too few are left"_s, images, log);

    calls = callsIn(images);
    const auto newest = std::ranges::max_element(calls, {}, &Call::uid);
    int32_t last = newest == calls.end() ? -1 : newest->uid;
    QSet<int32_t> seen;
    for (Call& call : calls) {
        if (seen.contains(call.uid)) {
            const int32_t old = std::exchange(call.uid, ++last);
            put(call, old, u"of another call too"_s, images, log);
            renumbered.push_back({old, call});
        }
        seen.insert(call.uid);
    }
    return renumbered;
}

} // namespace zyn::tool
