// The log of recent calls: what each command does to the store.
#include "handset/recentcall_service/CallLog.h"

#include "handset/common/Log.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"

#include <algorithm>

namespace zyn::handset {

namespace rc = zyn::recentcall;
namespace {

using Call = PHONE_ENG_RecentCall;
using Lists = std::span<const RC_CALL_CATEGORY_T>;

/// The lists that @p category names: one, all three, or none.
Lists listsOf(int32_t category)
{
    const Lists all(zyn::kRecordLists);
    if (category == RC_CALL_CATEGORY_ALL)
        return all;
    const auto found = std::find(all.begin(), all.end(), category);
    return found == all.end() ? Lists() : Lists(found, 1);
}

int limitOf(int32_t category)
{
    return RecentCall_Setup::instance()->getMaxRecordSize(static_cast<RC_CALL_CATEGORY_T>(category));
}

/// Those of @p calls that are in their list: the settings may have left it fewer slots than its file has.
std::vector<Call> listed(std::vector<Call> calls)
{
    std::erase_if(calls, [](const Call& call) { return call.slot >= limitOf(call.category); });
    return calls;
}

/// The call of @p calls that @p record means, or null.
const Call* find(const std::vector<Call>& calls, const Call& record)
{
    const Call* found = nullptr;
    for (const Call& call : calls) {
        if (call == record && (!found || call.slot == record.slot))
            found = &call;
    }
    return found;
}

/// The lowest slot below @p limit that none of @p calls lies in; @p limit when there is none.
int freeSlot(const std::vector<Call>& calls, int limit)
{
    int slot = 0;
    while (slot < limit && std::ranges::find(calls, slot, &Call::slot) != calls.end())
        ++slot;
    return slot;
}

} // namespace

/// The files of some lists, open for one operation: those that can be had.
class CallLog::OpenFiles
{
public:
    OpenFiles(CallLog& calls, Lists lists)
    {
        for (CallFile& file : calls.m_files) {
            if (std::ranges::find(lists, file.list()) != lists.end() && calls.open(file))
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

    const Files& all() const { return m_files; }
    CallFile* of(RC_CALL_CATEGORY_T list) const
    {
        const auto found = std::ranges::find(m_files, list, &CallFile::list);
        return found == m_files.end() ? nullptr : *found;
    }

private:
    Files m_files;
};

/// How often a change is tried: once more when it failed, many times when the file was replaced meanwhile.
class CallLog::Attempts
{
public:
    bool isLeft(Outcome outcome)
    {
        return (outcome == Outcome::Failed && --m_failures > 0) || (outcome == Outcome::Displaced && --m_files > 0);
    }

private:
    int m_failures = 2;
    int m_files = 1000;
};

CallLog::CallLog()
    : m_files{CallFile(RC_CALL_CATEGORY_ANSWERED), CallFile(RC_CALL_CATEGORY_MISSED), CallFile(RC_CALL_CATEGORY_DIALED)}
{
    const OpenFiles files(*this, zyn::kRecordLists);
    renumber(files.all());
    takeMissedChange();
}

bool CallLog::add(Call record)
{
    if (listsOf(record.category).size() != 1 || limitOf(record.category) == 0) {
        log(QStringLiteral("a call of category %1 refused: no list keeps it").arg(record.category));
        return false;
    }
    record.inUse = 1;
    Attempts attempts;
    Outcome outcome = Outcome::Failed;
    QLatin1String problem;
    do {
        // The uids of all lists count.
        const OpenFiles files(*this, zyn::kRecordLists);
        CallFile* file = files.of(record.category);
        outcome = file ? store(files.all(), *file, record) : Outcome::Failed;
        problem = !file                           ? QLatin1String("cannot be had")
                  : outcome == Outcome::Displaced ? QLatin1String("is replaced again and again")
                                                  : QLatin1String("cannot be written");
    } while (attempts.isLeft(outcome));
    if (outcome != Outcome::Done)
        log(QStringLiteral("a call of list %1 is lost: its file %2").arg(QString::number(record.category), problem));
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
    Attempts attempts;
    Outcome outcome = Outcome::Failed;
    bool isWhole = false;
    do {
        const OpenFiles files(*this, lists);
        isWhole = !lists.empty() && files.all().size() == lists.size();
        outcome = Outcome::Done;
        for (CallFile* file : files.all()) {
            for (const Call& call : file->calls()) {
                const Outcome erased = call.callType == selection.callType ? erase(*file, call) : Outcome::Done;
                outcome = std::max(outcome, erased);
            }
        }
    } while (attempts.isLeft(outcome));
    return isWhole && outcome == Outcome::Done ? rc::Success : rc::Failure;
}

std::optional<QByteArray> CallLog::list(const rc::Selection& selection)
{
    const OpenFiles files(*this, listsOf(selection.category));
    if (files.all().empty())
        return std::nullopt;
    Calls calls;
    for (const CallFile* file : files.all()) {
        for (const Call& call : listed(file->calls())) {
            if (call.callType == selection.callType)
                calls.push_back(call);
        }
    }
    std::ranges::stable_sort(calls, isNewer);
    QByteArray data;
    data.reserve(qsizetype{sizeof(rc::ListHeader)} + static_cast<qsizetype>(calls.size() * sizeof(Call)));
    data += zyn::bytesOf(rc::ListHeader{static_cast<int32_t>(calls.size()), limitOf(selection.category)});
    for (const Call& call : calls)
        data += zyn::bytesOf(call);
    return data;
}

/// Opens @p file, and puts right what others have left in it; false when it cannot be had.
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

/// Frees the slots behind the limit of what lies below it, too: a process died when it brought that forward.
void CallLog::dropCopies(CallFile& file)
{
    const Calls calls = file.calls();
    const Calls inList = listed(calls);
    for (const Call& call : calls) {
        const bool isCopy = call.slot >= limitOf(call.category) && std::ranges::any_of(inList, [&](Call other) {
                                other.slot = call.slot;
                                return zyn::bytesOf(other) == zyn::bytesOf(call);
                            });
        if (isCopy)
            file.erase(call.slot);
    }
}

/// Brings the newest calls below the limit, from behind it if need be: that may have been higher before.
void CallLog::bringForward(CallFile& file)
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

/// Writes @p record into @p file, one of the open @p files.
CallLog::Outcome CallLog::store(const Files& files, CallFile& file, Call& record)
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
    // Of all calls the oldest goes, which may lie behind the limit.
    if (isFull && calls.back().slot >= limit) {
        Call older = inList.back();
        older.slot = calls.back().slot;
        file.write(older);
    }
    m_lastUid = record.uid;
    noteChange(record.category);
    return Outcome::Done;
}

CallLog::Calls CallLog::callsOf(const Files& files)
{
    Calls all;
    for (const CallFile* file : files) {
        const Calls calls = file->calls();
        all.insert(all.end(), calls.begin(), calls.end());
    }
    return all;
}

/// A uid above those of all calls, and above those that were given before.
int32_t CallLog::nextUid(const Files& files)
{
    renumber(files);
    // The call that got the greatest uid of all may have been deleted since; then it counts no more.
    int32_t greatest = m_lastUid == zyn::kGreatestUid ? -1 : m_lastUid;
    for (const Call& call : callsOf(files))
        greatest = std::max(greatest, call.uid);
    return greatest == zyn::kGreatestUid ? greatest : greatest + 1;
}

/// Gives calls lower uids when none is left for the next one.
void CallLog::renumber(const Files& files)
{
    const zyn::RenumberedCalls renumbered = zyn::lowerUids(callsOf(files), 1, m_lastUid);
    if (renumbered.empty())
        return;
    m_renumbered = renumbered;
    m_lastUid = renumbered.back().call.uid;
    log(QStringLiteral("no uid is left: %1 calls get uids from %2 on")
            .arg(renumbered.size())
            .arg(renumbered.front().call.uid));
    for (const auto& [oldUid, call] : renumbered) {
        const auto file = std::ranges::find(files, call.category, &CallFile::list);
        (*file)->write(call);
        noteChange(call.category);
    }
}

/// @p record, with its new uid if it names a call that had another before.
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
    Call seen = call;
    seen.readFlags |= Call::kRead;
    if (seen.readFlags == call.readFlags)
        return Outcome::Done;
    if (!file.write(seen))
        return Outcome::Failed;
    noteChange(file.list());
    return file.isInPlace() ? Outcome::Done : Outcome::Displaced;
}

/// Does @p change to the stored call that @p record means.
rc::Status CallLog::changeStored(const Call& record, Change change)
{
    const Lists list = listsOf(record.category);
    if (list.size() != 1)
        return rc::NoSuchRecord;
    Attempts attempts;
    Outcome outcome = Outcome::Failed;
    do {
        const OpenFiles files(*this, list);
        if (files.all().empty())
            return rc::Failure;
        CallFile& file = *files.all().front();
        const Calls calls = file.calls();
        const Call* stored = find(calls, record);
        if (!stored)
            stored = find(calls, renumbered(record));
        if (!stored)
            return rc::NoSuchRecord;
        outcome = (this->*change)(file, *stored);
    } while (attempts.isLeft(outcome));
    return outcome == Outcome::Done ? rc::Success : rc::Failure;
}

void CallLog::noteChange(RC_CALL_CATEGORY_T category)
{
    m_hasMissedChange |= category == RC_CALL_CATEGORY_MISSED;
}

} // namespace zyn::handset
