// Hands finished calls to the recent-call service.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>

/**
 * Hands calls over one after another.
 *
 * A call that the service does not take is tried again a few times within about three seconds, while the event loop
 * goes on; one that it never takes is told in the log with all that is known of it.
 */
class HandOver : public QObject
{
    Q_OBJECT

public:
    HandOver();

    /// Hands @p record over, at once if none waits, and calls @p done when it was taken or given up.
    void add(const PHONE_ENG_RecentCall& record, std::function<void()> done);

    /// Waits until no call is left; the event loop goes on meanwhile.
    void finish();

Q_SIGNALS:
    /// No call is left.
    void idle();

private:
    struct Item
    {
        PHONE_ENG_RecentCall record;
        std::function<void()> done;
    };

    void goOn();
    bool tryFirst();

    QList<Item> m_waiting;
    int m_failures = 0; ///< of the first that waits
    QTimer m_pause;
};
