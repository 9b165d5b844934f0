// Many announcements, one reaction.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>

namespace zyn::handset {

/**
 * Reacts once to all announcements that come in one turn of the event loop, as soon as they have all been taken.
 *
 * A reaction that waits for a service is not for the signal itself: a burst would then be waited for one by one, and
 * nothing else be seen meanwhile.
 */
class Coalescing : public QObject
{
    Q_OBJECT

public:
    explicit Coalescing(const std::function<void()>& reaction);

    /// For the signal that announces.
    void trigger();

private:
    QTimer m_timer;
};

} // namespace zyn::handset
