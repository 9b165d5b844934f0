// A number that processes count up together, and a clock that is as cheap to look at.
#include "platform/posix/SharedCounter_p.h"

#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QList>
#include <QtCore/QRandomGenerator>

#include <atomic>
#include <cstddef>
#include <utility>

#include <sys/mman.h>
#include <sys/shm.h>
#include <time.h>
#include <unistd.h>

namespace zyn::posix {
namespace {

constexpr int kSegmentMode = 0600;
constexpr mode_t kSegmentPermissions = 0777;
constexpr char kSeparator = '-';
constexpr int kHex = 16;
constexpr timespec kAttachPause = {0, 500'000};

QByteArray nameOf(int id, uint64_t cookie)
{
    return QByteArray::number(id) + kSeparator + QByteArray::number(quint64{cookie}, kHex);
}

std::atomic_ref<uint32_t> shared(uint32_t& number)
{
    static_assert(std::atomic_ref<uint32_t>::is_always_lock_free, "processes have no lock in common");
    return std::atomic_ref<uint32_t>(number);
}

/// Whether the segment is this user's alone, and as large as one is.
bool isPrivate(int id, size_t size)
{
    shmid_ds status = {};
    return ::shmctl(id, IPC_STAT, &status) == 0 && status.shm_segsz == size && status.shm_perm.uid == ::geteuid()
           && status.shm_perm.cuid == ::geteuid() && (status.shm_perm.mode & kSegmentPermissions) == kSegmentMode;
}

} // namespace

struct SharedCounter::Segment
{
    uint64_t cookie;
    uint32_t value;
    uint32_t mark;
};

void SharedCounter::Detach::operator()(Segment* segment) const
{
    ::shmdt(segment);
}

SharedCounter::SharedCounter(int id, QByteArray name, Segment* segment)
    : m_id(id)
    , m_name(std::move(name))
    , m_segment(segment)
{}

SharedCounter::Segment* SharedCounter::attachSegment(int id, int flags)
{
    static_assert(offsetof(Segment, cookie) == 0 && offsetof(Segment, value) == 8 && offsetof(Segment, mark) == 12
                  && sizeof(Segment) == 16);
    void* const address = ::shmat(id, nullptr, flags);
    constexpr intptr_t kFailed = -1;
    return reinterpret_cast<intptr_t>(address) == kFailed ? nullptr : static_cast<Segment*>(address);
}

std::optional<SharedCounter> SharedCounter::make()
{
    const int id = ::shmget(IPC_PRIVATE, sizeof(Segment), IPC_CREAT | kSegmentMode);
    Segment* const segment = id < 0 ? nullptr : attachSegment(id, 0);
    if (id >= 0)
        ::shmctl(id, IPC_RMID, nullptr);
    if (!segment)
        return std::nullopt;
    segment->cookie = QRandomGenerator::system()->generate64();
    return SharedCounter(id, nameOf(id, segment->cookie), segment);
}

std::optional<SharedCounter> SharedCounter::attach(const QByteArray& name, Access access)
{
    bool isNumber = false;
    const int id = name.split(kSeparator).first().toInt(&isNumber);
    Segment* const segment = isNumber ? attachSegment(id, access == Access::Read ? SHM_RDONLY : 0) : nullptr;
    if (!segment)
        return std::nullopt;
    SharedCounter counter(id, name, segment);
    // Huge pages may be wanting when they are first touched, which would end this process. The kernel refuses an advice
    // on less than one.
    if (!isPrivate(id, sizeof(Segment)) || ::madvise(segment, sizeof(Segment), MADV_SEQUENTIAL) != 0
        || nameOf(id, segment->cookie) != name)
        return std::nullopt;
    return counter;
}

bool SharedCounter::isShared() const
{
    shmid_ds status = {};
    return ::shmctl(m_id, IPC_STAT, &status) == 0 && status.shm_nattch > 1;
}

uint32_t SharedCounter::value() const
{
    return shared(m_segment->value).load(std::memory_order_acquire);
}

void SharedCounter::increase()
{
    shared(m_segment->value).fetch_add(1, std::memory_order_release);
}

bool SharedCounter::isMarked() const
{
    return shared(m_segment->mark).load(std::memory_order_acquire) != 0;
}

void SharedCounter::mark()
{
    shared(m_segment->mark).store(1, std::memory_order_release);
}

std::chrono::nanoseconds tickTime()
{
    timespec time = {};
    if (::clock_gettime(CLOCK_MONOTONIC_COARSE, &time) != 0)
        return Clock::now().time_since_epoch();
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

void waitForTick()
{
    for (const auto start = tickTime(); tickTime() == start;)
        ::nanosleep(&kAttachPause, nullptr);
}

} // namespace zyn::posix
