// Sends messages and reports the result.
#pragma once

#include "platform/QCString.h"
#include "tools/zynphone/Command.h"

#include <functional>

namespace zyn::tool {

using namespace Qt::StringLiterals;

/// Whether a message on @p channel would reach a listener, now or when it goes on.
bool isHeard(const QCString& channel);

/// The error that what was sent on @p channel reached nobody.
CommandError nobodyListens(const QCString& channel);

/// Reports what @p send sends on @p channel. Throws what it throws, and NobodyListens where it reaches nobody.
ExitCode sendOn(const QCString& channel, Console& console, const std::function<void()>& send);

/// Sends a message and reports it as sendOn() does; throws on failure.
ExitCode sendMessage(const QString& channel, const QString& message, const QByteArray& payload, Console& console);

/// The lines in the help of a verb that ends with sendOn().
QString sendingDetails();

/// Throws a failure if the process cannot @p use @p channel. For requests that do not return an error.
void requireChannel(const char* channel, const QString& use = u"send on"_s);

} // namespace zyn::tool
