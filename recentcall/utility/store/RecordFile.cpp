// The uids of calls: room for those to come.
#include "recentcall/utility/store/RecordFile_p.h"

#include <algorithm>
#include <tuple>

namespace zyn {
namespace {

using Call = PHONE_ENG_RecentCall;

bool isHigh(int32_t uid)
{
    return uid > kGreatestUid / 2;
}

} // namespace

RenumberedCalls lowerUids(std::vector<Call> calls, int32_t wanted, int32_t given)
{
    if (std::ranges::none_of(calls, [&](const Call& call) { return call.uid > kGreatestUid - wanted; }))
        return {};
    std::ranges::stable_sort(calls, [](const Call& left, const Call& right) {
        return std::tie(left.uid, left.startTime) < std::tie(right.uid, right.startTime);
    });
    int32_t last = isHigh(given) ? -1 : std::max(given, int32_t{-1});
    RenumberedCalls renumbered;
    for (Call& call : calls) {
        if (!isHigh(call.uid)) {
            last = std::max(last, call.uid);
            continue;
        }
        renumbered.push_back({call.uid, call});
        renumbered.back().call.uid = ++last;
    }
    return renumbered;
}

} // namespace zyn
