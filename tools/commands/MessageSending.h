// Sends messages and reports the result.
#pragma once

#include "tools/zynphone/Command.h"

namespace zyn::tool {

using namespace Qt::StringLiterals;

/// Sends a message and reports it; throws on failure.
void sendMessage(const QString& channel, const QString& message, const QByteArray& payload, Console& console);

/// Throws a failure if the process cannot @p use @p channel. For requests that do not return an error.
void requireChannel(const char* channel, const QString& use = u"send on"_s);

} // namespace zyn::tool
