// The file of one list of calls, as the service finds it.
#include "handset/recentcall_service/CallFile.h"

#include "handset/common/Log.h"
#include "platform/posix/File_p.h"
#include "platform/posix/PathAt_p.h"
#include "recentcall/utility/store/RecordFile_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <span>
#include <thread>
#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using Call = PHONE_ENG_RecentCall;

/// Total time to wait for a file that is too short: a backup may just be copied into it.
constexpr std::chrono::milliseconds kShortFileTimeout{500};
constexpr std::chrono::milliseconds kReadInterval{5};

} // namespace

bool isNewer(const Call& call, const Call& other)
{
    return std::tie(call.uid, call.startTime) > std::tie(other.uid, other.startTime);
}

CallFile::Found CallFile::open()
{
    const QByteArray last = m_image;
    State state = readComplete();
    const bool isReplaceable = state != State::Valid && state != State::Unreadable && state != State::Others;
    if (isReplaceable) {
        makeStoreDirectory();
        RecordFile::create(path());
        state = read();
    }
    if (state != State::Valid) {
        report(state);
        close();
        return Found::Unreadable;
    }
    m_isGivenUp = false;
    if (isReplaceable && !last.isEmpty())
        log(u"missing or damaged record files are recreated: %1"_s.arg(QFile::decodeName(path())));
    if (isReplaceable)
        return Found::MadeAnew;
    return m_image == last ? Found::AsLeft : Found::Changed;
}

std::vector<Call> CallFile::calls() const
{
    std::vector<Call> calls;
    for (const int slot : RecordFile::usedSlots(m_image)) {
        calls.push_back(RecordFile::at(m_image, slot));
        calls.back().slot = slot;
        calls.back().category = m_list;
    }
    std::ranges::stable_sort(calls, isNewer);
    return calls;
}

void CallFile::correctSlots()
{
    for (const Call& call : calls()) {
        Call stored = RecordFile::at(m_image, call.slot);
        const int named = std::exchange(stored.slot, call.slot);
        if (named != call.slot && writeSlot(call.slot, stored)) {
            log(u"the call in slot %1 of list %2 says slot %3: corrected"_s.arg(call.slot).arg(m_list).arg(named));
        }
    }
}

bool CallFile::write(const Call& call)
{
    return writeSlot(call.slot, call);
}

bool CallFile::erase(int slot)
{
    return writeSlot(slot, Call());
}

bool CallFile::exchange(int from, int to)
{
    Call call = RecordFile::at(m_image, from);
    Call other = RecordFile::isInUse(m_image, to) ? RecordFile::at(m_image, to) : Call();
    call.slot = to;
    if (other.inUse != 0)
        other.slot = from;
    return writeSlot(to, call) && writeSlot(from, other);
}

bool CallFile::isInPlace() const
{
    return posix::leadsTo(path(), m_fd.get()) && posix::regularFileSize(m_fd.get()) == RecordFile::size();
}

bool CallFile::holds(const Call& call) const
{
    Call stored;
    return RecordFile::readAt(m_fd.get(), call.slot, stored) && RecordFile::bytes(stored) == RecordFile::bytes(call)
           && isInPlace();
}

QByteArray CallFile::path() const
{
    return storeDirectoryPath() + recordFileName(m_list);
}

CallFile::State CallFile::read()
{
    close();
    if (isStoreOthers())
        return State::Others;
    m_fd = posix::openTrusted(path(), posix::Access::Change);
    if (!m_fd.isValid() && errno == ENOENT)
        return State::Missing;
    // A read-only file can still be shown.
    if (!m_fd.isValid())
        m_fd = posix::openForReading(path());
    const std::optional<qint64> size = posix::regularFileSize(m_fd.get());
    if (!size)
        return State::Unreadable;
    if (*size != RecordFile::size())
        return *size < RecordFile::size() ? State::Short : State::Damaged;
    QByteArray image(static_cast<qsizetype>(*size), Qt::Uninitialized);
    const auto buffer = std::as_writable_bytes(std::span(image.data(), static_cast<size_t>(image.size())));
    const ssize_t length = posix::readAt(m_fd.get(), buffer, 0);
    if (length < 0)
        return State::Unreadable;
    if (length < image.size())
        return State::Short;
    if (!hasValidHeader(image))
        return State::Damaged;
    m_image = image;
    return State::Valid;
}

CallFile::State CallFile::readComplete()
{
    State state = read();
    const auto deadline = std::chrono::steady_clock::now() + kShortFileTimeout;
    while (state == State::Short && !m_isGivenUp && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(kReadInterval);
        state = read();
    }
    return state;
}

void CallFile::report(State state)
{
    if (std::exchange(m_isGivenUp, true))
        return;
    const QString why = state == State::Missing      ? u"it is missing and cannot be made"_s
                        : state == State::Others     ? u"another user has made its directory"_s
                        : state == State::Unreadable ? u"it cannot be read, or is not a file"_s
                                                     : u"it is damaged and cannot be replaced"_s;
    log(u"list %1 is skipped because of its file %2: %3"_s.arg(m_list).arg(QFile::decodeName(path()), why));
}

bool CallFile::writeSlot(int slot, const Call& record)
{
    if (!RecordFile::write(m_fd.get(), slot, record))
        return false;
    RecordFile::put(m_image, slot, record);
    return true;
}

} // namespace zyn::handset
