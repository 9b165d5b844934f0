// The time line of a desk: what happens to the handset, and when.
#pragma once

#include <QtCore/QString>

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace zyn::handset {

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

/// The step of one line. Nothing for a blank one and a comment, and for one that is wrong, which is told in the log
/// with
/// @p source and @p lineNumber.
std::optional<ScriptStep> readScriptLine(const QString& source, int lineNumber, const QString& line);

/// Lets @p step happen; one that means nothing at the time is told in the log.
void runScriptStep(const ScriptStep& step, PhoneLine& line);

/// How a script is written, with the names of all messages.
QString scriptHelp();

} // namespace zyn::handset
