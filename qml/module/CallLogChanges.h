// What has changed the log of recent calls, for all that show it in this process.
#pragma once

#include "qml/module/Lanes.h"
#include "recentcall/utility/RC_MissedCallInterface.h"
#include "utility/PHONE_MsgClient.h"

#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <memory>

namespace zyn::qml {

/**
 * Tells that the log of recent calls may have changed, once for a burst of changes.
 *
 * The service announces changes of the missed calls only, and those when it starts; a call that is over is in the log
 * when the phone tells that the calls have changed; and what this process itself does to the log goes through change().
 */
class CallLogChanges : public QObject
{
    Q_OBJECT

public:
    /// The object of the process, which lives as long as somebody holds it. For the thread of the user interface.
    static std::shared_ptr<CallLogChanges> shared();

    /// Sends the service a request that changes the log, with @p request, on the lane, and hands its result to @p then
    /// if @p receiver still lives. The others learn of the change in any case.
    template<typename Request, typename Then>
    void change(const QObject* receiver, Request request, Then then)
    {
        runBeside(Lane::CallLog, this, std::move(request),
                  [this, asking = QPointer(receiver), then = std::move(then)](int result) mutable {
                      note();
                      if (asking)
                          then(result);
                  });
    }

    /// The service is back: calls that waited for it may follow.
    void noteReturn() { m_later.start(); }

Q_SIGNALS:
    /// The log may have changed: read it again.
    void changed();

private:
    CallLogChanges();

    void note();
    void noteFromOutside();

    RC_MissedCallInterface m_missedCalls;
    PHONE_MsgClient m_phone;
    QTimer m_soon;
    QTimer m_later;
};

} // namespace zyn::qml
