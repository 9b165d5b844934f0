// Scripts of the phone server: what happens to the handset, and when; from a file or from standard input.
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

/// One event.
struct ScriptStep
{
    int lineNumber;
    std::chrono::milliseconds delay; ///< after the previous step, or after the start
    /// Makes it happen; false if it does not apply now.
    std::function<bool(PhoneLine&)> run;
};

using Script = std::vector<ScriptStep>;

/// Reads a script; scriptHelp() describes the format. Nothing on an error, which is logged.
std::optional<Script> readScript(const QString& path);

/// Parses a line that is not a comment, or its words, one or more. Throws a ScriptError.
ScriptStep scriptStep(const QString& line, int lineNumber);
ScriptStep scriptStep(QStringList words, int lineNumber);

/// Runs @p step; logs a step that does not apply now.
void runScriptStep(const ScriptStep& step, PhoneLine& line);

/// The format of scripts, with the names of all messages.
QString scriptHelp();

/// Plays a script once.
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

/// Plays the lines of standard input as they arrive. Invalid lines are logged and skipped.
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
    std::optional<ScriptStep> m_step; ///< waits for its delay
    QTimer m_next;
};

} // namespace zyn::handset
