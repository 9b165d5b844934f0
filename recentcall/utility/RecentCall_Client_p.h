// The recent-call service's socket: its commands, and requests from the library's interfaces and the programs.
#pragma once

#include "platform/UTIL_CommandBody.h"
#include "platform/posix/UniqueFd_p.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QByteArray>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace zyn::recentcall {

/// The directory of the service's socket, the socket's name in it, and both together.
inline constexpr char kSocketDirectory[] = "/tmp/zynrecentcallcom";
inline constexpr char kSocketName[] = "recentcall_interface";
inline constexpr char kSocketPath[] = "/tmp/zynrecentcallcom/recentcall_interface";

/// Command codes. Code 0 is the greeting when its data is 4 bytes long and the list request when it is 8.
enum Command : int32_t {
    ListRecords = 0,  ///< data: Selection; answered
    AddRecord = 1,    ///< data: the record; not answered
    DeleteRecord = 2, ///< data: the record; answered
    DeleteAll = 3,    ///< data: Selection; answered
    MarkRead = 4,     ///< data: the record; answered
};

/// Which calls a list request or a delete-all is about.
struct Selection
{
    int32_t category; ///< RC_CALL_CATEGORY_T
    int32_t callType; ///< RC_CALL_TYPE_T
};
static_assert(offsetof(Selection, category) == 0 && offsetof(Selection, callType) == 4 && sizeof(Selection) == 8);

/// The code of an answer.
enum Status : int32_t {
    Success = 0,
    NoSuchRecord = 1,
    Failure = 2,
};

/// What begins the data of a successful list answer; the records follow it, 228 bytes each.
struct ListHeader
{
    int32_t count; ///< how many records the service has
    int32_t limit; ///< how many the list may hold
};
static_assert(offsetof(ListHeader, count) == 0 && offsetof(ListHeader, limit) == 4 && sizeof(ListHeader) == 8);

/// A connection to the service for one request, or none.
posix::UniqueFd connectToService();

/// All that is sent on a connection of its own to have @p record added; no answer follows.
QByteArray addRequest(const PHONE_ENG_RecentCall& record);

/// Greets the service and sends it one command on @p connection, which is fresh; its answer, or null.
std::unique_ptr<UTIL_CommandBody> request(const posix::UniqueFd& connection, Command command,
                                          std::span<const std::byte> data);

/// The status of an answer: its code when that is one of Status, else Failure, as for no answer.
Status statusOf(const UTIL_CommandBody* answer);

/// Marks the call with the uid of @p record, in the list of its category, as read: seen by the user.
Status markRead(const PHONE_ENG_RecentCall& record);

} // namespace zyn::recentcall
