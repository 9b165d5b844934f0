// Lets the steps of a script happen.
#include "handset/phone_server/ScriptPlayer.h"

#include "handset/common/Log.h"

namespace zyn::handset {

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
    runScriptStep(m_script[m_position++], m_line);
    waitForNext();
}

} // namespace zyn::handset
