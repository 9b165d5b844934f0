// zynphone send: any message with any payload.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

Command sendCommand();

/// Sends a message, and says so; throws when it cannot be sent.
void sendMessage(const QString& channel, const QString& message, const QByteArray& payload, Console& console);

} // namespace zyn::tool
