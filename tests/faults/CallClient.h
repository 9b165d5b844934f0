// What campaigns ask of the recent-call service.
#pragma once

#include "platform/CommandFrame_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tests/faults/CallLedger.h"

#include <optional>
#include <vector>

namespace faults {

/// All voice calls of the log; nothing when the service does not answer, or not with a whole list.
inline std::optional<std::vector<Call>> listCalls()
{
    const zyn::recentcall::Selection all{RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE};
    const auto answer = zyn::recentcall::request(zyn::recentcall::connectToService(), zyn::recentcall::ListRecords,
                                                 std::as_bytes(std::span(&all, 1)));
    if (!answer || answer->commandId != zyn::recentcall::Success)
        return std::nullopt;
    const auto bytes = std::span<const std::byte>(zyn::commandData(*answer));
    if (bytes.size() < sizeof(zyn::recentcall::ListHeader))
        return std::nullopt;
    std::vector<Call> calls;
    for (size_t at = sizeof(zyn::recentcall::ListHeader); at + sizeof(Call) <= bytes.size(); at += sizeof(Call))
        calls.push_back(zyn::toPlain<Call>(bytes.subspan(at)));
    if (size_t(zyn::toPlain<zyn::recentcall::ListHeader>(bytes).count) != calls.size())
        return std::nullopt;
    return calls;
}

} // namespace faults
