// Requests to the recent-call service, for the library's interfaces and for the programs of the handset.
#pragma once

#include "platform/UTIL_CommandBody.h"
#include "platform/posix/UniqueFd_p.h"
#include "recentcall/utility/RecentCall_Command_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstddef>
#include <memory>
#include <span>

namespace zyn::recentcall {

/// A greeted connection to the service, or none.
posix::UniqueFd connectToService();

/// All that is sent on a connection of its own to have @p record added; no answer follows.
QByteArray addRequest(const PHONE_ENG_RecentCall& record);

/// Sends one command on a connection of its own, without waiting for an answer.
bool post(Command command, std::span<const std::byte> data);

/// Sends one command on @p connection and gives the service's answer, or null.
std::unique_ptr<UTIL_CommandBody> request(const posix::UniqueFd& connection, Command command,
                                          std::span<const std::byte> data);

/// Sends one command on a connection of its own and gives the status of its answer.
Status ask(Command command, std::span<const std::byte> data);

/// The status of an answer: its code when that is one of Status, else Failure, as for no answer.
Status statusOf(const UTIL_CommandBody* answer);

/// Lets the call with the uid of @p record in the list of its category count as read, seen by the user.
Status markRead(const PHONE_ENG_RecentCall& record);

/// The result of the class interfaces for one of the plain functions' results: 0, 1, and 3 for anything else.
int interfaceResult(int result);

/// Sets @p number to the number of the dialed call with the greatest uid, read from the file; false, and @p number as
/// it was, when there is none.
bool lastDialedNumber(QString& number);

} // namespace zyn::recentcall
