// One call: its parties, its course, and how long they talked.
#pragma once

#include "handset/phone_server/CallCourse.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

namespace zyn::handset {

/// The other party of a call.
struct Party
{
    QString number;
    QString name = {}; ///< empty when nobody gave one
};

/// Whether @p number is one that can be dialed: 1 to 41 digits, `*`, `#`, `+`, pauses and waits.
bool isDialable(const QString& number);

/// A call from its beginning, which is now, to its end.
class Call
{
public:
    Call(CallCourse course, Party party, RC_CALL_TYPE_T type = RC_CALL_TYPE_VOICE);

    const CallCourse& course() const { return m_course; }
    const Party& party() const { return m_party; }
    bool isPtt() const { return m_type == RC_CALL_TYPE_PTT1; }

    /// As CallCourse::take().
    bool take(CallEvent event);

    /// How long the parties talked, in whole seconds and at least 1; 0 when they never did.
    int duration() const;
    /// What the log of recent calls keeps of a call that is over.
    PHONE_ENG_RecentCall record() const;

private:
    CallCourse m_course;
    Party m_party;
    RC_CALL_TYPE_T m_type;
    QDateTime m_start;
    QElapsedTimer m_talk;
    qint64 m_talked = 0; ///< in milliseconds, of a call that is over
};

} // namespace zyn::handset
