// The activity log in a store directory of a test's own, and the words in which tests speak of it.
#pragma once

#include "StoreFixture.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"

/// Each makes the log's store anew on its first use, as a process does that starts.
class ActivityLogFixture : public StoreFixture
{
public:
    ActivityLogFixture() { ActivityLog_ENG_RecordStore::destroy(); }
    ~ActivityLogFixture() { ActivityLog_ENG_RecordStore::destroy(); }

    /// Sets how many slots a contact's file has, from the next operation on.
    void setSlots(const QString& text) const
    {
        SETUP_SET_Manager settings(path() + QLatin1String("/setup/zyn_toppals.cfg"), false);
        settings.setSettingInfo(QStringLiteral("TopPals-UI"), QStringLiteral("MaxItemsToLog"), text);
    }
};

namespace activity {

inline QByteArray bytes(const PHONE_ENG_ActivityLog& record)
{
    return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
}

inline QByteArray blankSlot()
{
    QByteArray slot(300, '\0');
    slot[80] = 1;
    return slot.replace(228, 8, QByteArray(8, '\xFF'));
}

inline ActivityLog_ENG_RecordStore& log()
{
    return *ActivityLog_ENG_RecordStore::instance();
}

inline int revamp(const QString& oldNumber, const QString& newNumber)
{
    return log().revampTopPalsAvlStorage(oldNumber, newNumber);
}

inline PHONE_ENG_ActivityLog entry(const QString& number, int32_t start = 0, int32_t pos = -1)
{
    PHONE_ENG_ActivityLog record;
    record.setPhoneNumber(number);
    record.startTime = start;
    record.inUse = 1;
    record.topPalsAvlPos = pos;
    return record;
}

/// Adds an entry and gives its slot; -1 when the store refused.
inline int add(const QString& number, int32_t start = 0)
{
    PHONE_ENG_ActivityLog record = entry(number, start);
    return log().addTopPalsAvlItem(record) == 1 ? record.topPalsAvlPos : -1;
}

/// The result of reading a number's file, and the start times that this gives.
inline QString read(const QString& number)
{
    QSortedList<PHONE_ENG_ActivityLog> list;
    list.setAutoDelete(true);
    QString result = QString::number(log().readTopPalsAvlContactRecordList(list, number));
    for (const PHONE_ENG_ActivityLog* record : list)
        result += u' ' + QString::number(record->startTime);
    return result;
}

} // namespace activity
