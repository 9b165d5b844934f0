// Lets the steps of a script happen.
#pragma once

#include "handset/phone_server/Script.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace zyn::handset {

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

} // namespace zyn::handset
