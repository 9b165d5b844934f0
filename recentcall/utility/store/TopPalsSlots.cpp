// Which slots of the favourites' files are known to hold an entry.
#include "recentcall/utility/store/TopPalsSlots_p.h"

#include <algorithm>
#include <bit>
#include <limits>

namespace zyn {
namespace {

constexpr int kMarksPerWord = std::numeric_limits<uint64_t>::digits;
constexpr uint64_t kAllUsed = std::numeric_limits<uint64_t>::max();

} // namespace

bool TopPalsSlots::setTopPalsAvlFlag(Trace& trace, int favourite, int pos, int slots)
{
    trace << "TP5_AVL:RC Store:  ENTER: setTopPalsAvlFlag():TP5_AVL:RC Store:nthFileItem = " << favourite;
    bool isSet = false;
    if (favourite >= 0) {
        const int index = getTp5AvlRecordPos(trace, favourite, pos, slots);
        trace << "TP5_AVL:RC Store: getTp5AvlRecordPos returns value = " << index << "\n";
        isSet = isTopPalsAvlLawyalPos(index, slots) && isContactSlot(pos, slots);
        if (isSet)
            mark(favourite, pos, true);
        else
            trace << "TP5_AVL:RC Store:  setTopPalsAvlFlag(), isTopPalsAvlLawyalPos=FALSE, position = " << index
                  << "\n";
    }
    trace << "TP5_AVL:RC Store:  EXIT: setTopPalsAvlFlag(): returns " << int{isSet} << "\n";
    return isSet;
}

bool TopPalsSlots::clearTopPalsAvlFlag(Trace& trace, int favourite, int pos, int slots)
{
    trace << "TP5_AVL:RC Store:  ENTER: clearTopPalsAvlFlag()\nTP5_AVL:RC Store:nthFileItem = " << favourite << "\n";
    const bool isCleared = favourite >= 0 && isContactSlot(pos, slots);
    if (isCleared) {
        const int index = getTp5AvlRecordPos(trace, favourite, pos, slots);
        mark(favourite, pos, false);
        trace << "TP5_AVL:RC Store:  clearTopPalsAvlFlag: posistion = " << index << "\n";
    }
    trace << "TP5_AVL:RC Store:  EXIT: clearTopPalsAvlFlag()\n";
    return isCleared;
}

int TopPalsSlots::getAvailableTopPalsAvlPos(Trace& trace, int favourite, int slots) const
{
    trace << "TP5_AVL:RC Store:  ENTER: getAvailableTopPalsAvlPos()\n";
    if (favourite < 0)
        return -1;
    getTp5AvlRecordPos(trace, favourite, 0, slots);
    const Marks& used = m_used.at(static_cast<size_t>(favourite));
    const auto word = std::ranges::find_if(used, [](uint64_t marks) { return marks != kAllUsed; });
    const auto firstFree =
        static_cast<int>(word - used.begin()) * kMarksPerWord + (word == used.end() ? 0 : std::countr_one(*word));
    const int pos = firstFree < slots ? firstFree : -1;
    trace << "TP5_AVL:RC Store: getAvailableTopPalsAvlPos: pos=" << pos
          << "\nTP5_AVL:RC Store:  EXIT: getAvailableTopPalsAvlPos()\n";
    return pos;
}

void TopPalsSlots::mark(int favourite, int slot, bool isUsed)
{
    Marks& used = m_used.at(static_cast<size_t>(favourite));
    const auto word = static_cast<size_t>(slot / kMarksPerWord);
    if (word >= used.size())
        used.resize(word + 1);
    const uint64_t mask = uint64_t{1} << (slot % kMarksPerWord);
    used[word] = isUsed ? used[word] | mask : used[word] & ~mask;
}

void TopPalsSlots::clear(int favourite)
{
    m_used.at(static_cast<size_t>(favourite)).clear();
}

int getTp5AvlRecordPos(Trace& trace, int favourite, int pos, int slots)
{
    using Limits = std::numeric_limits<int>;
    const int64_t sum = int64_t{favourite} * slots + pos;
    const auto held = static_cast<int>(std::clamp<int64_t>(sum, Limits::min(), Limits::max()));
    trace << "TP5_AVL: RC Store:getTp5AvlRecordPos() returns = " << held << "\n";
    return held;
}

} // namespace zyn
