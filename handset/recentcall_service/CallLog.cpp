// The log of recent calls: the service's commands on the store.
#include "handset/recentcall_service/CallLog.h"

#include "handset/common/Log.h"
#include "handset/common/Text.h"
#include "recentcall/utility/RecentCall_Setup.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::handset {

namespace rc = recentcall;

namespace {

using Call = PHONE_ENG_RecentCall;
using Calls = std::vector<Call>;
using Lists = std::span<const RC_CALL_CATEGORY_T>;

/// The lists of @p category: one, all three, or none.
Lists listsOf(int32_t category)
{
    const Lists all(kRecordLists);
    if (category == RC_CALL_CATEGORY_ALL)
        return all;
    const auto found = std::find(all.begin(), all.end(), category);
    return found == all.end() ? Lists() : Lists(found, 1);
}

int limitOf(int32_t category)
{
    return RecentCall_Setup::instance()->getMaxRecordSize(static_cast<RC_CALL_CATEGORY_T>(category));
}

/// Those of @p calls that are in their list; the settings may leave a list fewer slots than its file has.
Calls listed(Calls calls)
{
    std::erase_if(calls, [](const Call& call) { return call.slot >= limitOf(call.category); });
    return calls;
}

/// The one of @p calls that @p record refers to, or null.
const Call* find(const Calls& calls, const Call& record)
{
    const Call* found = nullptr;
    for (const Call& call : calls) {
        if (call == record && (!found || call.slot == record.slot))
            found = &call;
    }
    return found;
}

/// The lowest slot below @p limit that is free of @p calls, or @p limit.
int freeSlot(const Calls& calls, int limit)
{
    int slot = 0;
    while (slot < limit && std::ranges::find(calls, slot, &Call::slot) != calls.end())
        ++slot;
    return slot;
}

/// Frees the slots behind the limit whose call is also below it: a process died while it moved the call.
void dropCopies(CallFile& file)
{
    const Calls calls = file.calls();
    const Calls inList = listed(calls);
    for (const Call& call : calls) {
        const bool isCopy = call.slot >= limitOf(call.category) && std::ranges::any_of(inList, [&](Call other) {
                                other.slot = call.slot;
                                return bytesOf(other) == bytesOf(call);
                            });
        if (isCopy)
            file.erase(call.slot);
    }
}

/// Moves the newest calls to slots below the limit, which may have been lowered.
void bringForward(CallFile& file)
{
    const int limit = limitOf(file.list());
    Calls newest = file.calls();
    newest.resize(std::min(newest.size(), static_cast<size_t>(limit)));
    for (Call& call : newest) {
        if (call.slot < limit)
            continue;
        const int slot = freeSlot(newest, limit);
        if (!file.exchange(call.slot, slot))
            return;
        call.slot = slot;
    }
}

} // namespace

/// The available ones of some lists' files, open for one operation.
class CallLog::OpenFiles
{
public:
    OpenFiles(CallLog& log, Lists lists)
    {
        for (CallFile& file : log.m_files) {
            if (std::ranges::find(lists, file.list()) != lists.end() && log.open(file))
                m_files.push_back(&file);
        }
    }
    OpenFiles(const OpenFiles&) = delete;
    OpenFiles& operator=(const OpenFiles&) = delete;
    ~OpenFiles()
    {
        for (CallFile* file : m_files)
            file->close();
    }

    const std::vector<CallFile*>& all() const { return m_files; }
    CallFile* of(int32_t list) const
    {
        const auto found = std::ranges::find(m_files, list, &CallFile::list);
        return found == m_files.end() ? nullptr : *found;
    }
    Calls calls() const
    {
        Calls all;
        for (const CallFile* file : m_files)
            std::ranges::copy(file->calls(), std::back_inserter(all));
        return all;
    }

private:
    std::vector<CallFile*> m_files;
};

/// Repeats a change until it is done: once if it fails, many times if the file is replaced meanwhile.
template<typename Attempt>
CallLog::Outcome CallLog::repeat(const Attempt& attempt)
{
    int failures = 2;
    int displacements = 1000;
    Outcome outcome = attempt();
    while ((outcome == Outcome::Failed && --failures > 0) || (outcome == Outcome::Displaced && --displacements > 0))
        outcome = attempt();
    return outcome;
}

CallLog::CallLog()
    : m_files{CallFile(RC_CALL_CATEGORY_ANSWERED), CallFile(RC_CALL_CATEGORY_MISSED), CallFile(RC_CALL_CATEGORY_DIALED)}
{
    renumber(OpenFiles(*this, kRecordLists));
    m_hasMissedChange = false;
}

bool CallLog::add(Call record)
{
    if (listsOf(record.category).size() != 1 || limitOf(record.category) == 0) {
        log(u"a call of category %1 refused: there is no list for it"_s.arg(record.category));
        return false;
    }
    record.inUse = 1;
    QLatin1String problem;
    const Outcome outcome = repeat([&] {
        // The uid must be above those of all lists.
        const OpenFiles files(*this, kRecordLists);
        CallFile* file = files.of(record.category);
        const Outcome stored = file ? store(files, *file, record) : Outcome::Failed;
        problem = !file                          ? "cannot be had"_L1
                  : stored == Outcome::Displaced ? "is replaced again and again"_L1
                                                 : "cannot be written"_L1;
        return stored;
    });
    if (outcome != Outcome::Done)
        log(u"a call of list %1 is lost: its file %2"_s.arg(QString::number(record.category), problem));
    return outcome == Outcome::Done;
}

rc::Status CallLog::remove(const Call& record)
{
    return changeStored(record, &CallLog::erase);
}

rc::Status CallLog::markRead(const Call& record)
{
    return changeStored(record, &CallLog::setRead);
}

rc::Status CallLog::removeAll(const rc::Selection& selection)
{
    const Lists lists = listsOf(selection.category);
    bool isWhole = false;
    const Outcome outcome = repeat([&] {
        const OpenFiles files(*this, lists);
        isWhole = !lists.empty() && files.all().size() == lists.size();
        Outcome worst = Outcome::Done;
        for (const Call& call : files.calls()) {
            if (call.callType == selection.callType)
                worst = std::max(worst, erase(*files.of(call.category), call));
        }
        return worst;
    });
    return isWhole && outcome == Outcome::Done ? rc::Success : rc::Failure;
}

std::optional<QByteArray> CallLog::list(const rc::Selection& selection)
{
    const OpenFiles files(*this, listsOf(selection.category));
    if (files.all().empty())
        return std::nullopt;
    Calls calls = listed(files.calls());
    std::erase_if(calls, [&](const Call& call) { return call.callType != selection.callType; });
    std::ranges::stable_sort(calls, isNewer);
    QByteArray data;
    data.reserve(qsizetype{sizeof(rc::ListHeader)} + static_cast<qsizetype>(calls.size() * sizeof(Call)));
    data += bytesOf(rc::ListHeader{static_cast<int32_t>(calls.size()), limitOf(selection.category)});
    for (const Call& call : calls)
        data += bytesOf(call);
    return data;
}

/// Opens @p file and repairs what others have left in it; false if it is not available.
bool CallLog::open(CallFile& file)
{
    const CallFile::Found found = file.open();
    if (found == CallFile::Found::Unreadable)
        return false;
    if (found != CallFile::Found::AsLeft) {
        file.correctSlots();
        dropCopies(file);
        bringForward(file);
        noteChange(file.list());
    }
    return true;
}

/// Writes @p record to @p file, which is one of the open @p files.
CallLog::Outcome CallLog::store(const OpenFiles& files, CallFile& file, Call& record)
{
    record.uid = nextUid(files);
    const Calls calls = file.calls();
    const Calls inList = listed(calls);
    const int limit = limitOf(record.category);
    const bool isFull = inList.size() >= static_cast<size_t>(limit);
    record.slot = isFull ? inList.back().slot : freeSlot(inList, limit);
    if (!file.write(record))
        return Outcome::Failed;
    if (!file.holds(record))
        return Outcome::Displaced;
    // The oldest call is replaced, even if it lies behind the limit.
    if (isFull && calls.back().slot >= limit) {
        Call older = inList.back();
        older.slot = calls.back().slot;
        file.write(older);
    }
    m_lastUid = record.uid;
    noteChange(file.list());
    return Outcome::Done;
}

/// A uid above those of all stored calls and those assigned before.
int32_t CallLog::nextUid(const OpenFiles& files)
{
    renumber(files);
    // The call with the greatest possible uid may have been deleted since, which frees its uid.
    int32_t greatest = m_lastUid == kGreatestUid ? -1 : m_lastUid;
    for (const Call& call : files.calls())
        greatest = std::max(greatest, call.uid);
    return greatest == kGreatestUid ? greatest : greatest + 1;
}

/// Renumbers the calls from 0 if there is no uid for the next one.
void CallLog::renumber(const OpenFiles& files)
{
    const RenumberedCalls renumbered = lowerUids(files.calls(), 1, m_lastUid);
    if (renumbered.empty())
        return;
    m_renumbered = renumbered;
    m_lastUid = renumbered.back().call.uid;
    log(u"out of uids: new ones, from %1 on, for %2"_s.arg(QString::number(renumbered.front().call.uid),
                                                           counted(std::ssize(renumbered), "call")));
    for (const auto& [oldUid, call] : renumbered) {
        CallFile& file = *files.of(call.category);
        file.write(call);
        noteChange(file.list());
    }
}

/// @p record, with its new uid if it refers to a renumbered call.
Call CallLog::renumbered(const Call& record) const
{
    Call current = record;
    for (const auto& [oldUid, call] : m_renumbered) {
        const bool isMeant = oldUid == record.uid && call.category == record.category;
        if (isMeant && (current.uid == oldUid || call.slot == record.slot))
            current.uid = call.uid;
    }
    return current;
}

CallLog::Outcome CallLog::erase(CallFile& file, const Call& call)
{
    if (!file.erase(call.slot))
        return Outcome::Failed;
    noteChange(file.list());
    return file.isInPlace() ? Outcome::Done : Outcome::Displaced;
}

CallLog::Outcome CallLog::setRead(CallFile& file, const Call& call)
{
    Call read = call;
    read.readFlags |= Call::kRead;
    if (read.readFlags == call.readFlags)
        return Outcome::Done;
    if (!file.write(read))
        return Outcome::Failed;
    noteChange(file.list());
    return file.isInPlace() ? Outcome::Done : Outcome::Displaced;
}

/// Makes @p change to the stored call that @p record refers to.
rc::Status CallLog::changeStored(const Call& record, Change change)
{
    const Lists list = listsOf(record.category);
    if (list.size() != 1)
        return rc::NoSuchRecord;
    bool isMissing = false;
    const Outcome outcome = repeat([&] {
        const OpenFiles files(*this, list);
        CallFile* file = files.of(record.category);
        if (!file)
            return Outcome::Failed;
        const Calls calls = file->calls();
        const Call* stored = find(calls, record);
        if (!stored)
            stored = find(calls, renumbered(record));
        isMissing = !stored;
        return stored ? (this->*change)(*file, *stored) : Outcome::Done;
    });
    if (isMissing)
        return rc::NoSuchRecord;
    return outcome == Outcome::Done ? rc::Success : rc::Failure;
}

} // namespace zyn::handset
