// Which slots of the favourites' files are known to hold an entry.
#pragma once

#include "recentcall/utility/store/ActivityLogFile_p.h"

#include <array>
#include <cstdint>
#include <vector>

namespace zyn {

/**
 * A mark for each slot of each favourite.
 *
 * Kept by favourite and slot, not by one number made of both and the number of slots: so the marks hold when the number
 * of slots changes, and those beyond it are there when it grows back.
 *
 * A favourite is its place, 0 to 4, or -1 where that is said; @p slots is the number of slots of a file, at most
 * kMaxContactSlots.
 */
class TopPalsSlots
{
public:
    /// @{ Write what they do. For favourite -1, and a slot that a file does not have, they fail.
    bool setTopPalsAvlFlag(Trace& trace, int favourite, int pos, int slots);
    bool clearTopPalsAvlFlag(Trace& trace, int favourite, int pos, int slots);
    /// The lowest slot without a mark; -1 when there is none.
    int getAvailableTopPalsAvlPos(Trace& trace, int favourite, int slots) const;
    /// @}

    /// @{ Quiet; of a favourite from 0 to 4.
    void mark(int favourite, int slot, bool isUsed);
    void clear(int favourite);
    /// @}

private:
    using Marks = std::vector<uint64_t>; ///< slot 0 is the lowest bit of the first

    std::array<Marks, TopPalNumberDetail::kPlaces> m_used; ///< each as long as it had to be
};

/// The number by which the lines on standard output name a slot, held to what an int holds; writes such a line.
int getTp5AvlRecordPos(Trace& trace, int favourite, int pos, int slots);

/// Whether such a number is that of a slot of one of the favourites' files.
constexpr bool isTopPalsAvlLawyalPos(int index, int slots)
{
    return index >= 0 && index < TopPalNumberDetail::kPlaces * slots;
}

} // namespace zyn
