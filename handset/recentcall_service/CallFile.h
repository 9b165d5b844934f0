// The file of one list of calls, as the service finds it.
#pragma once

#include "platform/posix/UniqueFd_p.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QByteArray>

#include <vector>

namespace zyn::handset {

/**
 * The calls of one list on disk, in all slots of the file, whatever the list's limit.
 *
 * What is known of a file is valid for one operation: another process may recreate or blank it, and a backup may be put
 * in its place, as a new file or into the old one. So each operation opens and reads it again, and writes through the
 * descriptor that it has read from. What it held the last time only serves to notice changes by others.
 */
class CallFile
{
public:
    /// How a file is found: as it was left, changed, or created anew now because it was missing or damaged; or its
    /// calls are not available, which is logged once.
    enum class Found { AsLeft, Changed, MadeAnew, Unreadable };

    explicit CallFile(RC_CALL_CATEGORY_T list)
        : m_list(list)
    {}

    /// Opens and reads the file; all below is about what it held then.
    Found open();
    void close() { m_fd.reset(); }

    RC_CALL_CATEGORY_T list() const { return m_list; }
    /// The calls, newest first, with the list and the slot where each lies, whatever a damaged record says.
    std::vector<PHONE_ENG_RecentCall> calls() const;

    /// Writes into each call the slot where it lies: readers go by what the record says.
    void correctSlots();
    /// Puts @p call into the slot that it names.
    bool write(const PHONE_ENG_RecentCall& call);
    /// Frees @p slot.
    bool erase(int slot);
    /// Moves the call in slot @p from to slot @p to, and one that lies there the other way. A process that dies in
    /// between leaves the first one twice.
    bool exchange(int from, int to);

    /// Whether this is still the file of the list, and whole.
    bool isInPlace() const;
    /// Whether it is, and holds @p call.
    bool holds(const PHONE_ENG_RecentCall& call) const;

private:
    enum class State { Valid, Missing, Short, Damaged, Unreadable };

    QByteArray path() const;
    State read();
    State readComplete();
    void report(State state);
    bool writeSlot(int slot, const PHONE_ENG_RecentCall& record);

    RC_CALL_CATEGORY_T m_list;
    posix::UniqueFd m_fd;
    QByteArray m_image; ///< empty until the file was found valid once
    bool m_isGivenUp = false;
};

/// Whether @p call is newer than @p other; of calls with the same uid, the one that began later is.
bool isNewer(const PHONE_ENG_RecentCall& call, const PHONE_ENG_RecentCall& other);

} // namespace zyn::handset
