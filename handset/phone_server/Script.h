// The time line of a desk: what happens to the handset, and when.
#pragma once

#include <QtCore/QString>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

class PhoneLine;

/// One thing that happens.
struct ScriptStep
{
    int lineNumber;
    std::chrono::milliseconds delay; ///< after the step before, or after the start
    /// Lets it happen; false when it means nothing at the time.
    std::function<bool(PhoneLine&)> run;
};

using Script = std::vector<ScriptStep>;

/// Reads a script, as scriptHelp() explains it. Nothing, and told in the log with file and line, when it is
/// not right.
std::optional<Script> readScript(const QString& path);

/// How a script is written, with the names of all messages.
QString scriptHelp();
