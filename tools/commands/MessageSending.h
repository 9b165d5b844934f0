// Sends a message for the verbs that do, and says so.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

using namespace Qt::StringLiterals;

/// Sends a message, and says so; throws when it cannot be sent.
void sendMessage(const QString& channel, const QString& message, const QByteArray& payload, Console& console);

/// A failure when the process cannot @p use @p channel: for requests that do not tell.
void requireChannel(const char* channel, const QString& use = u"send on"_s);

} // namespace zyn::tool
