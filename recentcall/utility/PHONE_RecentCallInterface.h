// The older interfaces to the log of recent calls.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QString>

/// The log of recent calls on plain records. Results and waiting are those of RC_Interface.
class ZYN_EXPORT PHONE_RecentCall_Interface
{
public:
    PHONE_RecentCall_Interface();
    ~PHONE_RecentCall_Interface();

    /// Hands the service @p record to store. No answer is read: 0 says that it was sent.
    int rc_add(PHONE_ENG_RecentCall record);
    /// Deletes the call with the record's uid from the list of its category.
    int rc_delete(const PHONE_ENG_RecentCall& record);
    /// Deletes all voice calls from the list of @p category, or from all three for RC_CALL_CATEGORY_ALL.
    int rc_deleteAll(CALL_CATEGORY_T category);
    /// As RC_Interface::getLastDialedNumber(), which prints debug lines: see platform/QuietTrace.h.
    bool getLastDialedNumber(QString& number);
};

/// The number dialed last.
class ZYN_EXPORT PHONE_RecentCallInterface
{
public:
    PHONE_RecentCallInterface();
    virtual ~PHONE_RecentCallInterface();

    /// As RC_Interface::getLastDialedNumber(), which prints debug lines: see platform/QuietTrace.h.
    bool getLastDialedNumber(QString& number);
};
