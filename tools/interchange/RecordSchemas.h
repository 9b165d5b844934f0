// The fields of calls, and of favourites' entries, under the names they have in CSV and JSON.
#pragma once

#include "recentcall/utility/PHONE_ENG_ActivityLog.h"
#include "tools/interchange/StoredField.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

/// Every byte of a PHONE_ENG_RecentCall. The names are those of a list of calls where it has the field.
const RecordSchema& callSchema();

/// Every byte of a PHONE_ENG_ActivityLog, and the number and the place of the favourite whose entry it is. The names
/// are those of a list of calls and of a favourite's entries where these have the field. A record whose flag inUse is 0
/// is a favourite without entries.
const RecordSchema& favouriteSchema();

/// The record of @p entry of the favourite @p number in @p place, 0 to 4.
QByteArray favouriteRecord(int place, const QString& number, const PHONE_ENG_ActivityLog& entry);

/// The favourite's number in @p record.
QString favouriteNumber(const QByteArray& record);
/// Makes @p entry that of @p record. Not by value: to copy an entry prints.
void readEntry(PHONE_ENG_ActivityLog& entry, const QByteArray& record);

} // namespace zyn::tool
