// Decodes the messages of the phone channel.
#pragma once

#include "platform/QCString.h"

class PHONE_MsgClient;

namespace zyn {

/// Reads, logs and emits one message. One that is not a status message of the phone channel is ignored.
/// @param line  of the call, for the trace lines
void deliver(PHONE_MsgClient& client, const QCString& name, const QByteArray& payload, int line = __builtin_LINE());

} // namespace zyn
