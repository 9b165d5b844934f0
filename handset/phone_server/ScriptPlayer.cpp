// Lets the steps of a script happen.
#include "handset/phone_server/ScriptPlayer.h"

#include "handset/common/Log.h"

using zyn::handset::log;

ScriptPlayer::ScriptPlayer(Script script, PhoneLine& line)
    : m_script(std::move(script))
    , m_line(line)
{
    m_next.setSingleShot(true);
    m_next.setTimerType(Qt::PreciseTimer);
    connect(&m_next, &QTimer::timeout, this, &ScriptPlayer::runNext);
}

void ScriptPlayer::waitForNext()
{
    if (m_position < m_script.size())
        m_next.start(m_script[m_position].delay);
    else if (!m_script.empty())
        log(QStringLiteral("the script is over"));
}

void ScriptPlayer::runNext()
{
    const ScriptStep& step = m_script[m_position++];
    if (!step.run(m_line))
        log(QStringLiteral("line %1 of the script means nothing now").arg(step.lineNumber));
    waitForNext();
}
