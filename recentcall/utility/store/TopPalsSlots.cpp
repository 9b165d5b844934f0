// Which slots of the favourites' files are known to hold an entry.
#include "recentcall/utility/store/TopPalsSlots_p.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

namespace zyn {

bool TopPalsSlots::setTopPalsAvlFlag(int favourite, int pos, int slots)
{
    std::printf("TP5_AVL:RC Store:  ENTER: setTopPalsAvlFlag():");
    std::printf("TP5_AVL:RC Store:nthFileItem = %d", favourite);
    bool isSet = false;
    if (favourite >= 0) {
        const int index = getTp5AvlRecordPos(favourite, pos, slots);
        std::printf("TP5_AVL:RC Store: getTp5AvlRecordPos returns value = %d\n", index);
        isSet = isTopPalsAvlLawyalPos(index, slots) && isContactSlot(pos, slots);
        if (isSet)
            mark(favourite, pos, true);
        else
            std::printf("TP5_AVL:RC Store:  setTopPalsAvlFlag(), isTopPalsAvlLawyalPos=FALSE, position = %d\n", index);
    }
    std::printf("TP5_AVL:RC Store:  EXIT: setTopPalsAvlFlag(): returns %d\n", isSet);
    return isSet;
}

bool TopPalsSlots::clearTopPalsAvlFlag(int favourite, int pos, int slots)
{
    std::printf("TP5_AVL:RC Store:  ENTER: clearTopPalsAvlFlag()\n");
    std::printf("TP5_AVL:RC Store:nthFileItem = %d\n", favourite);
    const bool isCleared = favourite >= 0 && isContactSlot(pos, slots);
    if (isCleared) {
        const int index = getTp5AvlRecordPos(favourite, pos, slots);
        mark(favourite, pos, false);
        std::printf("TP5_AVL:RC Store:  clearTopPalsAvlFlag: posistion = %d\n", index);
    }
    std::printf("TP5_AVL:RC Store:  EXIT: clearTopPalsAvlFlag()\n");
    return isCleared;
}

int TopPalsSlots::getAvailableTopPalsAvlPos(int favourite, int slots) const
{
    std::printf("TP5_AVL:RC Store:  ENTER: getAvailableTopPalsAvlPos()\n");
    if (favourite < 0)
        return -1;
    getTp5AvlRecordPos(favourite, 0, slots);
    const std::vector<bool>& used = m_used.at(static_cast<size_t>(favourite));
    const auto firstFree = static_cast<int>(std::ranges::find(used, false) - used.begin());
    const int pos = firstFree < slots ? firstFree : -1;
    std::printf("TP5_AVL:RC Store: getAvailableTopPalsAvlPos: pos=%d\n", pos);
    std::printf("TP5_AVL:RC Store:  EXIT: getAvailableTopPalsAvlPos()\n");
    return pos;
}

void TopPalsSlots::mark(int favourite, int slot, bool isUsed)
{
    std::vector<bool>& used = m_used.at(static_cast<size_t>(favourite));
    const auto index = static_cast<size_t>(slot);
    if (index >= used.size())
        used.resize(index + 1);
    used[index] = isUsed;
}

void TopPalsSlots::clear(int favourite)
{
    m_used.at(static_cast<size_t>(favourite)).clear();
}

int getTp5AvlRecordPos(int favourite, int pos, int slots)
{
    using Limits = std::numeric_limits<int>;
    const int64_t sum = int64_t{favourite} * slots + pos;
    const auto held = static_cast<int>(std::clamp<int64_t>(sum, Limits::min(), Limits::max()));
    std::printf("TP5_AVL: RC Store:getTp5AvlRecordPos() returns = %d\n", held);
    return held;
}

} // namespace zyn
