// The time line of a desk: what happens to the handset, and when; read from a file or as it is typed.
#pragma once

#include "handset/common/LineInput.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

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

/// Reads a script, as scriptHelp() explains it. Nothing when it cannot be read or a line cannot be understood; the log
/// says which and why.
std::optional<Script> readScript(const QString& path);

/// The step of a line that is no comment. Throws a ScriptError when it cannot be understood.
ScriptStep scriptStep(const QString& line, int lineNumber);

/// Lets @p step happen; one that means nothing at the time is told in the log.
void runScriptStep(const ScriptStep& step, PhoneLine& line);

/// How a script is written, with the names of all messages.
QString scriptHelp();

/// Plays one script, once.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    ScriptPlayer(Script script, PhoneLine& line);

    void start() { waitForNext(); }
    void stop() { m_next.stop(); }

private:
    void waitForNext();
    void runNext();

    const Script m_script;
    PhoneLine& m_line;
    size_t m_position = 0;
    QTimer m_next;
};

/// Plays the lines of standard input as they come. A line that is wrong is told in the log and left out.
class ScriptInput : public QObject
{
    Q_OBJECT

public:
    explicit ScriptInput(PhoneLine& line);

    void start() { m_input.ask(); }
    void stop();

private:
    void readLine(const QString& text);
    void runStep();

    PhoneLine& m_line;
    LineInput m_input;
    int m_lineNumber = 0;
    std::optional<ScriptStep> m_step; ///< the one that waits for its time
    QTimer m_next;
};

} // namespace zyn::handset
