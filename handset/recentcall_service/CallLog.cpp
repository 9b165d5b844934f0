// The log of recent calls: what each command does to the store.
#include "handset/recentcall_service/CallLog.h"

#include "handset/common/Log.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/RecordFile_p.h"

#include <algorithm>
#include <limits>

namespace rc = zyn::recentcall;
using zyn::handset::log;

namespace {

using Call = PHONE_ENG_RecentCall;
using Lists = std::span<const RC_CALL_CATEGORY_T>;

/// How often a change is tried whose file is replaced meanwhile.
constexpr int kAttempts = 1000;

constexpr int32_t kGreatestUid = std::numeric_limits<int32_t>::max();

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

CallLog::CallLog()
    : m_files{CallFile(RC_CALL_CATEGORY_ANSWERED), CallFile(RC_CALL_CATEGORY_MISSED), CallFile(RC_CALL_CATEGORY_DIALED)}
{
    const OpenFiles files(*this, zyn::kRecordLists);
    takeMissedChange();
}

bool CallLog::add(Call record)
{
    if (listsOf(record.category).size() != 1 || limitOf(record.category) == 0) {
        log(QStringLiteral("a call of category %1 refused: no list keeps it").arg(record.category));
        return false;
    }
    record.inUse = 1;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        // The uids of all lists count.
        const OpenFiles files(*this, zyn::kRecordLists);
        CallFile* file = files.of(record.category);
        if (!file) {
            log(QStringLiteral("a call of list %1 is lost: its file cannot be had").arg(record.category));
            return false;
        }
        if (store(files.all(), *file, record))
            return true;
    }
    log(QStringLiteral("a call of list %1 is lost: its file cannot be written").arg(record.category));
    return false;
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
    const OpenFiles files(*this, lists);
    rc::Status status = !lists.empty() && files.all().size() == lists.size() ? rc::Success : rc::Failure;
    for (CallFile* file : files.all()) {
        for (const Call& call : file->calls()) {
            if (call.callType == selection.callType && !erase(*file, call))
                status = rc::Failure;
        }
    }
    return status;
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
        noteChange(file.list());
    }
    return true;
}

/// Writes @p record into @p file, one of the open @p files; false when it is not there afterwards.
bool CallLog::store(const Files& files, CallFile& file, Call& record)
{
    const Calls calls = listed(file.calls());
    record.uid = nextUid(files);
    record.slot = freeSlot(calls, limitOf(record.category));
    if (record.slot == limitOf(record.category))
        record.slot = calls.back().slot;
    if (!file.write(record) || !file.holds(record))
        return false;
    m_lastUid = record.uid;
    noteChange(record.category);
    return true;
}

/// A uid above those of all calls, and above those that were given before.
int32_t CallLog::nextUid(const Files& files) const
{
    int32_t greatest = m_lastUid;
    for (const CallFile* file : files) {
        for (const Call& call : file->calls())
            greatest = std::max(greatest, call.uid);
    }
    return greatest == kGreatestUid ? greatest : greatest + 1;
}

bool CallLog::erase(CallFile& file, const Call& call)
{
    if (!file.erase(call.slot) || !file.isInPlace())
        return false;
    noteChange(file.list());
    return true;
}

bool CallLog::setRead(CallFile& file, const Call& call)
{
    Call seen = call;
    seen.readFlags |= Call::kRead;
    if (seen.readFlags == call.readFlags)
        return true;
    if (!file.write(seen) || !file.isInPlace())
        return false;
    noteChange(file.list());
    return true;
}

/// Does @p change to the stored call that @p record means.
rc::Status CallLog::changeStored(const Call& record, Change change)
{
    const Lists list = listsOf(record.category);
    if (list.size() != 1)
        return rc::NoSuchRecord;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const OpenFiles files(*this, list);
        if (files.all().empty())
            return rc::Failure;
        CallFile& file = *files.all().front();
        const Calls calls = file.calls();
        const Call* stored = find(calls, record);
        if (!stored)
            return rc::NoSuchRecord;
        if ((this->*change)(file, *stored))
            return rc::Success;
    }
    return rc::Failure;
}

void CallLog::noteChange(RC_CALL_CATEGORY_T category)
{
    m_hasMissedChange |= category == RC_CALL_CATEGORY_MISSED;
}
