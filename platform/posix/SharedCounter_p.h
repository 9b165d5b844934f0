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
 * The memory is a System V segment, as nobody can shorten one: a mapped file that somebody else truncates ends who
 * looks at it. It is marked for removal when it is made, so that nothing is ever left behind; Linux lets others attach
 * to it meanwhile. Processes of different IPC namespaces cannot share one. A forked child keeps its parent's.
 */
class SharedCounter
{
public:
    /// A new one; nothing where there is no such memory.
    static std::optional<SharedCounter> make();
    /// The one that somebody else has named; nothing when it is gone, or is none of this user's alone. With
    /// Access::Read it may only be looked at.
    static std::optional<SharedCounter> attach(const QByteArray& name, Access access);

    /// What attach() finds it by, in every process of the same namespace: no other has, or ever had, the same.
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
