// The file of one list of calls, as the service finds it.
#include "handset/recentcall_service/CallFile.h"

#include "handset/common/Log.h"
#include "platform/posix/File_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <span>
#include <thread>
#include <tuple>
#include <utility>

namespace zyn::handset {
namespace {

using Call = PHONE_ENG_RecentCall;

/// How long, in all, a file that is too short is waited for: somebody may be writing a backup into it.
constexpr std::chrono::milliseconds kPatience{500};
constexpr std::chrono::milliseconds kBetweenLooks{5};

std::span<std::byte> bytesOf(QByteArray& image)
{
    return std::as_writable_bytes(std::span(image.data(), static_cast<size_t>(image.size())));
}

} // namespace

bool isNewer(const Call& call, const Call& other)
{
    return std::tie(call.uid, call.startTime) > std::tie(other.uid, other.startTime);
}

CallFile::Found CallFile::open()
{
    const QByteArray last = m_image;
    State state = readPatiently();
    const bool isReplaceable = state != State::Sound && state != State::Unreadable;
    if (isReplaceable) {
        zyn::makeStoreDirectory();
        zyn::createStoreFile(path(), zyn::freshRecordFile());
        state = read();
    }
    if (state != State::Sound) {
        tell(state);
        close();
        return Found::Unreadable;
    }
    m_isGivenUp = false;
    if (isReplaceable && !last.isEmpty())
        log(QStringLiteral("missing or damaged record files are made anew: %1").arg(QFile::decodeName(path())));
    if (isReplaceable)
        return Found::MadeAnew;
    return m_image == last ? Found::AsLeft : Found::Changed;
}

std::vector<Call> CallFile::calls() const
{
    std::vector<Call> calls;
    for (int slot = 0; slot < zyn::kRecordSlots; ++slot) {
        if (!zyn::isRecordInUse(m_image, slot))
            continue;
        calls.push_back(zyn::recordAt(m_image, slot));
        calls.back().slot = slot;
        calls.back().category = m_list;
    }
    std::ranges::stable_sort(calls, isNewer);
    return calls;
}

void CallFile::correctSlots()
{
    for (const Call& call : calls()) {
        Call stored = zyn::recordAt(m_image, call.slot);
        const int told = std::exchange(stored.slot, call.slot);
        if (told != call.slot && writeSlot(call.slot, stored)) {
            log(QStringLiteral("the call in slot %1 of list %2 says slot %3: corrected")
                    .arg(call.slot)
                    .arg(m_list)
                    .arg(told));
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
    Call call = zyn::recordAt(m_image, from);
    Call other = zyn::isRecordInUse(m_image, to) ? zyn::recordAt(m_image, to) : Call();
    call.slot = to;
    if (other.inUse != 0)
        other.slot = from;
    return writeSlot(to, call) && writeSlot(from, other);
}

bool CallFile::isInPlace() const
{
    return zyn::posix::leadsTo(path(), m_fd.get()) && zyn::posix::regularFileSize(m_fd.get()) == zyn::kRecordFileSize;
}

bool CallFile::holds(const Call& call) const
{
    Call stored;
    const auto bytes = std::as_writable_bytes(std::span(&stored, 1));
    const ssize_t n = zyn::posix::readAt(m_fd.get(), bytes, off_t{zyn::recordOffset(call.slot)});
    return n == ssize_t{sizeof stored} && zyn::bytesOf(stored) == zyn::bytesOf(call) && isInPlace();
}

QByteArray CallFile::path() const
{
    return zyn::storeDirectoryPath() + zyn::recordFileName(m_list);
}

CallFile::State CallFile::read()
{
    close();
    m_fd = zyn::posix::openForChanging(path());
    if (!m_fd.isValid() && errno == ENOENT)
        return State::Missing;
    // What may not be changed may still be shown.
    if (!m_fd.isValid())
        m_fd = zyn::posix::openForReading(path());
    const std::optional<qint64> size = zyn::posix::regularFileSize(m_fd.get());
    if (!size)
        return State::Unreadable;
    if (*size != zyn::kRecordFileSize)
        return *size < zyn::kRecordFileSize ? State::Short : State::Damaged;
    QByteArray image(static_cast<qsizetype>(*size), Qt::Uninitialized);
    const ssize_t n = zyn::posix::readAt(m_fd.get(), bytesOf(image), 0);
    if (n < 0)
        return State::Unreadable;
    if (n < image.size())
        return State::Short;
    if (!zyn::hasValidHeader(image))
        return State::Damaged;
    m_image = image;
    return State::Sound;
}

CallFile::State CallFile::readPatiently()
{
    State state = read();
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (state == State::Short && !m_isGivenUp && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(kBetweenLooks);
        state = read();
    }
    return state;
}

void CallFile::tell(State state)
{
    if (std::exchange(m_isGivenUp, true))
        return;
    const QString why = state == State::Missing      ? QStringLiteral("it is missing and cannot be made")
                        : state == State::Unreadable ? QStringLiteral("it cannot be read, or is no file")
                                                     : QStringLiteral("it is damaged and cannot be replaced");
    log(QStringLiteral("list %1 is left out, because of its file %2: %3")
            .arg(m_list)
            .arg(QFile::decodeName(path()), why));
}

bool CallFile::writeSlot(int slot, const Call& record)
{
    const auto bytes = std::as_bytes(std::span(&record, 1));
    if (!zyn::posix::writeAt(m_fd.get(), bytes, off_t{zyn::recordOffset(slot)}))
        return false;
    m_image.replace(static_cast<qsizetype>(zyn::recordOffset(slot)), qsizetype{sizeof record}, zyn::bytesOf(record));
    return true;
}

} // namespace zyn::handset
