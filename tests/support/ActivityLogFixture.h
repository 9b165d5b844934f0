// The activity log in a store directory of a test's own.
#pragma once

#include "StoreFixture.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"

#include <QtCore/QDir>

/// Each makes the log's store anew on its first use, as a process does that starts.
class ActivityLogFixture : public StoreFixture
{
public:
    ActivityLogFixture() { ActivityLog_ENG_RecordStore::destroy(); }
    ~ActivityLogFixture() { ActivityLog_ENG_RecordStore::destroy(); }

    static ActivityLog_ENG_RecordStore& log() { return *ActivityLog_ENG_RecordStore::instance(); }

    /// Sets how many slots a contact's file has, from the next operation on.
    void setSlots(const QString& text) const
    {
        SETUP_SET_Manager settings(path() + QLatin1String("/setup/zyn_toppals.cfg"), false);
        settings.setSettingInfo(QStringLiteral("TopPals-UI"), QStringLiteral("MaxItemsToLog"), text);
    }

    static int join(const QString& number) { return log().revampTopPalsAvlStorage({}, number); }

    /// The favourites' numbers, a comma behind each of the first four.
    static QString favourites()
    {
        QStringList names(ActivityLog_ENG_RecordStore::kFavourites);
        return log().getCurrentTopPalsFileNames(names.data()) ? names.join(u',') : QString();
    }

    static PHONE_ENG_ActivityLog entry(const QString& number, int32_t start = 0)
    {
        PHONE_ENG_ActivityLog record;
        record.setPhoneNumber(number);
        record.startTime = start;
        record.inUse = 1;
        return record;
    }
    /// Adds an entry and gives its slot; -1 when the store refused.
    static int add(const QString& number, int32_t start = 0)
    {
        PHONE_ENG_ActivityLog record = entry(number, start);
        return log().addTopPalsAvlItem(record) == 1 ? record.topPalsAvlPos : -1;
    }
    static QByteArray bytes(const PHONE_ENG_ActivityLog& record)
    {
        return QByteArray(reinterpret_cast<const char*>(&record), sizeof record);
    }

    /// The start times that reading a number's file gives, with the result in front.
    static QList<int> starts(const QString& number)
    {
        QSortedList<PHONE_ENG_ActivityLog> list;
        list.setAutoDelete(true);
        QList<int> result = {log().readTopPalsAvlContactRecordList(list, number)};
        for (const PHONE_ENG_ActivityLog* record : list)
            result.append(record->startTime);
        return result;
    }

    /// The names of all files in the store directory.
    QString files() const
    {
        return QDir(file(QString())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden).join(u' ');
    }
};
