// The fields of calls and of favourites' entries, with their names in CSV and JSON.
#pragma once

#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "tools/interchange/StoredField.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

/// Every byte of a PHONE_ENG_RecentCall. Fields shown in a list of calls have the same name here.
const RecordSchema& callSchema();

/// Every byte of a PHONE_ENG_ActivityLog, and the number and place of its favourite. Fields shown in the lists of calls
/// or entries have the same name here. A record whose flag inUse is 0 is a favourite without entries.
const RecordSchema& favouriteSchema();

/// The record for @p entry of the favourite @p number in @p place, 0 to 4.
QByteArray favouriteRecord(int place, const QString& number, const PHONE_ENG_ActivityLog& entry);

/// The favourite's number in @p record.
QString favouriteNumber(const QByteArray& record);
/// Copies @p record to @p entry, by reference: copying an entry writes trace text.
void readEntry(PHONE_ENG_ActivityLog& entry, const QByteArray& record);

} // namespace zyn::tool
