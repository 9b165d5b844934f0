// How far a verb has come that takes its time.
#pragma once

#include <QtCore/QString>
#include <QtCore/QTimer>

#include <functional>

namespace zyn::tool {

/// While it lives and the event loop runs, a line on standard error that is written over and over; only on a terminal,
/// and only once a second has passed.
class Progress
{
public:
    /// @p text gives what the line says, printable characters only.
    explicit Progress(std::function<QString()> text);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

private:
    void show();

    const std::function<QString()> m_text;
    QTimer m_timer;
    bool m_isShown = false;
};

} // namespace zyn::tool
