// Tells senders when the listeners of a channel may have changed.
#pragma once

#include "platform/posix/SharedCounter_p.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <cstdint>
#include <optional>

namespace zyn {

/**
 * Tells the senders of one thread when to read the directories of channels again, mostly without a system call.
 *
 * The listeners of all channels under one root count themselves in a number that they share with the senders and whose
 * name is in the root. Senders trust the number within one tick of the kernel's clock. At the next they look whether
 * its name is still the same: a listener that could not count in the one named names another, and waits for a tick
 * before it says that it listens, as does whoever finds a number that is as young. So none comes unseen, also one in a
 * container that shares the directory and no memory, and one in a directory that was removed and made anew.
 *
 * A change that is not counted, such as a directory that is now open to others, is seen after a while. A process that
 * writes anything it likes into the number can only delay that, or cause more readings of directories.
 */
class ChannelChanges
{
public:
    /// Counts a listener that is ready, in the open directory @p root: what is sent from now on finds it. The number is
    /// to be kept while it listens, so that others share it.
    static std::optional<posix::SharedCounter> announce(int root);
    /// Leaves nothing behind in @p root when nobody else uses @p number.
    static void withdraw(int root, const posix::SharedCounter& number);

    /// Whether nothing has changed since update().
    bool isCurrent() const { return m_number && m_number->value() == m_value && posix::tickTime() == m_updateTime; }
    /// Checks for changes in the open directory @p root.
    void update(int root);
    /// Forgets the number: another root is used from now on.
    void forget();
    /// The present moment: another one when anything may have changed. 0 before the first.
    uint64_t moment() const { return m_moment; }

private:
    bool hasChanged(const QByteArray& name);

    QByteArray m_name;
    std::optional<posix::SharedCounter> m_number;
    uint32_t m_value = 0;
    std::chrono::nanoseconds m_updateTime{};
    std::chrono::nanoseconds m_changeTime{};
    uint64_t m_moment = 0;
};

} // namespace zyn
