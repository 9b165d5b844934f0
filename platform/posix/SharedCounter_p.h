// A number that processes count up together, and a clock that is as cheap to look at.
#pragma once

#include "platform/posix/PathAt_p.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace zyn::posix {

/**
 * A number in memory that the processes of one user share, until the last of them lets go of it.
 *
 * The memory is a System V segment, as nobody can shorten one: a mapped file that somebody truncates kills its
 * readers. It is marked for removal when it is made, so that nothing is ever left behind; Linux lets others attach
 * to it meanwhile. Processes of different IPC namespaces cannot share one. A forked child keeps its parent's.
 */
class SharedCounter
{
public:
    /// A new one; nothing where there is no such memory.
    static std::optional<SharedCounter> make();
    /// The one that somebody else has named; nothing if it is gone, or does not belong to this user alone. With
    /// Access::Read it can only be read.
    static std::optional<SharedCounter> attach(const QByteArray& name, Access access);

    /// The name for attach(), in every process of the same namespace. It is never used again.
    const QByteArray& name() const { return m_name; }

    /// Whether anybody else has it, in this process or another.
    bool isShared() const;

    uint32_t value() const;
    void increase();

    /// A mark that is set once.
    bool isMarked() const;
    void mark();

private:
    struct Segment;
    struct Detach
    {
        void operator()(Segment* segment) const;
    };

    SharedCounter(int id, QByteArray name, Segment* segment);
    static Segment* attachSegment(int id, int flags);

    int m_id;
    QByteArray m_name;
    std::unique_ptr<Segment, Detach> m_segment;
};

/// The time of the kernel's last tick, of which there are 100 to 1000 a second: it costs no system call.
std::chrono::nanoseconds tickTime();

/// Waits until a tick has come after the present one, which takes 10 milliseconds at most.
void waitForTick();

} // namespace zyn::posix
