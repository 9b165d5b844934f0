// Lets happen what is typed.
#pragma once

#include "handset/common/LineInput.h"
#include "handset/phone_server/Script.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

namespace zyn::handset {

/// Plays the lines of standard input as they come. A line that is wrong is told in the log and left out.
class ScriptInput : public QObject
{
    Q_OBJECT

public:
    explicit ScriptInput(PhoneLine& line);

    void start() { m_input.ask(); }
    void stop();

private:
    void take(const QString& text);
    void runStep();

    PhoneLine& m_line;
    LineInput m_input;
    int m_lineNumber = 0;
    std::optional<ScriptStep> m_step; ///< the one that waits for its time
    QTimer m_next;
};

} // namespace zyn::handset
