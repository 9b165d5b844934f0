// The unread missed calls, for applications.
#pragma once

#include "platform/QValueList.h"
#include "platform/ZynExport.h"

#include <QtCore/QDate>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <cstdint>
#include <memory>

class RecentCall_MsgClient;

/// One unread missed call. The engine gives the members their meaning; the library passes them on unread.
struct RC_MissedCallItem
{
    QDate date;         ///< not interpreted
    int32_t value = 0;  ///< not interpreted
    QString first;      ///< not interpreted
    QString second;     ///< not interpreted
    uint32_t word1 = 0; ///< not interpreted
    uint32_t word2 = 0; ///< not interpreted
};

/// Unread missed calls in the engine's order.
using RC_MissedCallList = QValueList<RC_MissedCallItem>;

/**
 * The recent-call engine: it knows the unread missed calls.
 *
 * Its list is the first virtual operation, which is part of the interface; hence no virtual destructor: an engine is
 * not deleted through this class, and is best a final one.
 */
class ZYN_EXPORT RC_EngineStub
{
public:
    /// The unread missed calls, in an order of the engine's choice.
    virtual RC_MissedCallList getUnreadMissedCallList() = 0;

protected:
    /// @{ Only an engine makes, copies or ends this part of itself.
    RC_EngineStub() = default;
    RC_EngineStub(const RC_EngineStub&) = default;
    RC_EngineStub& operator=(const RC_EngineStub&) = default;
    ~RC_EngineStub() = default;
    /// @}
};

/// The engine of this process, null until the process sets it. The library neither sets nor deletes it.
extern ZYN_EXPORT RC_EngineStub* g_rcEngineStub;

/**
 * Reports changes of the missed calls, and gives those that are unread.
 *
 * Use it in the thread of the event loop that receives the channel's messages. Every object of the process emits
 * dataUpdate() for every change. Messages print debug lines: see platform/QuietTrace.h.
 */
class ZYN_EXPORT RC_MissedCallInterface : public QObject
{
    Q_OBJECT

public:
    /// The shared object, created by the first call.
    static RC_MissedCallInterface* instance();
    /// Deletes the shared object; the next instance() creates another.
    static void destruction();

    /// An object beside the shared one; both report the same.
    RC_MissedCallInterface();
    ~RC_MissedCallInterface() override;

    /// The engine's list as it is; an empty one, and a line on standard error, when the process has no engine.
    RC_MissedCallList getUnreadMissedCalls();

Q_SIGNALS:
    /// The missed calls have changed: fetch them anew.
    void dataUpdate();

private:
    struct Holder;
    std::unique_ptr<Holder> m_holder;
};
