// The activity log of the favourites, for applications that do not own it.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>

#include <cstdint>

/// A favourite's details, as the address book has them.
struct TopPals_Details_T
{
    QString name;          ///< as it is shown
    QString number;        ///< as it is dialed
    QString imageLocation; ///< of the contact's picture
    int32_t contactId = 0; ///< in the address book
};

/// What of a favourite is unread.
struct TopPals_Missed_Details
{
    QString number;              ///< the caller sets it
    int32_t missedCallCount = 0; ///< calls that were missed and not seen
    int32_t unreadMsgCount = 0;  ///< messages that were not read
};

/**
 * Announces a changed favourite to the owner of the activity log, and counts what is unread.
 *
 * Not guarded: use it from one thread. Both operations print debug lines: see platform/QuietTrace.h.
 */
class ZYN_EXPORT RC_TopPals_AL_Interface
{
public:
    /// The object of this process, created by the first call. The library owns it.
    static RC_TopPals_AL_Interface* instance();
    /// Deletes the object; the next instance() creates another.
    static void destruction();

    RC_TopPals_AL_Interface(const RC_TopPals_AL_Interface&) = delete;
    RC_TopPals_AL_Interface& operator=(const RC_TopPals_AL_Interface&) = delete;

    /**
     * Announces a favourite's details as "MODIFY_TOPPAL_DETAILS" on "ACTIVITY_LOG_CHANNEL". Nothing is checked.
     *
     * @param oldNumber  the favourite's number before the change; may be empty
     * @param details    what is true of the favourite from now on
     * @return whether the message was handed on, not whether anybody listens
     */
    bool modifyTopPalsContactDetails(QString oldNumber, TopPals_Details_T details);

    /**
     * Counts the unread missed calls and messages of the favourite whose file is named by the last seven characters of
     * @p details.number: it must have been registered under these. A missed call that is a message, too, counts as
     * both.
     *
     * Creates this process's ActivityLog_ENG_RecordStore, which creates the file of the favourites if it is missing.
     *
     * @param details  gets the counts, 0 when there is nothing to read
     * @return 1 when the favourite's file was read, else 0
     */
    int getUnreadCount(TopPals_Missed_Details& details);

private:
    RC_TopPals_AL_Interface() = default;
    ~RC_TopPals_AL_Interface() = default;
};
