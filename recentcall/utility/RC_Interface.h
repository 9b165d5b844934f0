// The log of recent calls, for applications.
#pragma once

#include "platform/QPtrList.h"
#include "platform/ZynExport.h"
#include "recentcall/utility/RC_RecordInterface.h"

#include <QtCore/QString>

/**
 * The log of recent calls, kept by the recent-call service.
 *
 * Each request opens a connection of its own to the service, which must run as this user or as root, and blocks until
 * it is sent and answered; a service that accepts or sends nothing for 5 seconds counts as gone. Nothing is retried.
 *
 * Where an int is returned it is 0 on success, 1 when the service has no such record, and 3 for every other outcome.
 *
 * No request marks a call as read. The recent-call screens do that with the calls that they show (RC_MsgInterface), and
 * `zynphone calls read` with any.
 */
class ZYN_EXPORT RC_Interface
{
public:
    RC_Interface();
    ~RC_Interface();

    /// Hands the service a copy of @p record to store. No answer is read: 0 says that it was sent. Any record but an
    /// RC_RecordInterfaceImpl gives 3.
    int addRecord(const RC_RecordInterface& record);

    /// Deletes the call with the record's uid from the list of its category. Any record but an RC_RecordInterfaceImpl
    /// gives 3.
    int deleteRecord(const RC_RecordInterface& record);

    /// Deletes all calls of one @p callType from the list of @p category, or from all three for RC_CALL_CATEGORY_ALL.
    int deleteRecordAll(RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T callType);

    /**
     * Fetches the calls of one call type from one list, or from all three, in the service's order: newest first.
     *
     * One request fetches one type: for calls of all types, ask once for each, and sort what comes by the uid, the
     * greatest of which is the newest call. Names are in the record behind an item: see RC_RecordInterface.
     *
     * @param list      set to delete its items as soon as the service is there. On success its items are deleted and
     *                  new RC_RecordInterfaceImpl take their place; on any other result its items stay.
     * @param category  a list, or RC_CALL_CATEGORY_ALL for all three
     * @param callType  which calls of it
     * @return 0; 3 on any failure, 1 when the service says so
     */
    int getRecordList(QPtrList<RC_RecordInterface>& list, RC_CALL_CATEGORY_T category, RC_CALL_TYPE_T callType);

    /// Sets @p number to the number dialed last, read from the file without the service. Without such a call it returns
    /// false and leaves @p number as it is. Creates this process's RecentCall_ENG_RecordStore, which prints debug
    /// lines: see platform/QuietTrace.h.
    bool getLastDialedNumber(QString& number);
};
