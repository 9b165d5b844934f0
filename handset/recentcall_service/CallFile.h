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
 * A file's state is valid for one operation: another process may recreate or blank it, or put a backup in its place, as
 * a new file or into the old one. So each operation opens and reads the file again, and writes through the descriptor
 * that it has read from. The previous contents only serve to notice changes by others.
 */
class CallFile
{
public:
    /// The state of a file: unchanged, changed, or created now because it was missing or damaged. Or its calls are not
    /// available, which is logged once.
    enum class Found { AsLeft, Changed, MadeAnew, Unreadable };

    explicit CallFile(RC_CALL_CATEGORY_T list)
        : m_list(list)
    {}

    /// Opens and reads the file; the members below refer to these contents.
    Found open();
    void close() { m_fd.reset(); }

    RC_CALL_CATEGORY_T list() const { return m_list; }
    /// The calls, newest first, each with the list and the slot in which it is stored, whatever a damaged record says.
    std::vector<PHONE_ENG_RecentCall> calls() const;

    /// Corrects the slot numbers in the stored calls, which readers rely on.
    void correctSlots();
    /// Writes @p call to the slot that it names.
    bool write(const PHONE_ENG_RecentCall& call);
    /// Frees @p slot.
    bool erase(int slot);
    /// Swaps the contents of the slots @p from and @p to. If the process dies halfway, the first call is there twice.
    bool exchange(int from, int to);

    /// Whether the path still leads to this file, and it is intact.
    bool isInPlace() const;
    /// Whether that is so, and the file holds @p call.
    bool holds(const PHONE_ENG_RecentCall& call) const;

private:
    enum class State { Valid, Missing, Short, Damaged, Unreadable, Others };

    QByteArray path() const;
    State read();
    State readComplete();
    void report(State state);
    bool writeSlot(int slot, const PHONE_ENG_RecentCall& record);

    RC_CALL_CATEGORY_T m_list;
    posix::UniqueFd m_fd;
    QByteArray m_image; ///< empty until the file has been valid once
    bool m_isGivenUp = false;
};

/// Whether @p call is newer than @p other; with the same uid, the call that began later is newer.
bool isNewer(const PHONE_ENG_RecentCall& call, const PHONE_ENG_RecentCall& other);

} // namespace zyn::handset
