// Lets happen what is typed.
#include "handset/phone_server/ScriptInput.h"

namespace zyn::handset {
namespace {

/// Status messages hold records, of which each byte is two digits.
constexpr qsizetype kLongestLine = qsizetype{16} * 1024;

} // namespace

ScriptInput::ScriptInput(PhoneLine& line)
    : m_line(line)
    , m_input(kLongestLine)
{
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_input, &LineInput::entered, this, &ScriptInput::take);
    connect(&m_next, &QTimer::timeout, this, &ScriptInput::runStep);
}

void ScriptInput::stop()
{
    m_input.cancel();
    m_next.stop();
}

void ScriptInput::take(const QString& text)
{
    if (text.isNull())
        return;
    m_step = readScriptLine(QStringLiteral("standard input"), ++m_lineNumber, text);
    if (m_step)
        m_next.start(m_step->delay);
    else
        m_input.ask();
}

void ScriptInput::runStep()
{
    runScriptStep(*m_step, m_line);
    m_input.ask();
}

} // namespace zyn::handset
