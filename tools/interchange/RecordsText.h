// Records of any kind as texts: CSV and JSON.
#pragma once

#include "tools/interchange/StoredField.h"
#include "tools/zynphone/Words.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <vector>

namespace zyn::tool {

/// What a text of records holds.
struct ReadRecords
{
    std::vector<QByteArray> records; ///< in their order
    QStringList problems;            ///< of each record that cannot be read: its place and why
};

struct RecordFormat
{
    /// The text of @p records, with the values of @p fields.
    QString (*write)(const std::vector<StoredField>& fields, const std::vector<QByteArray>& records);
    /// The records of @p text, which has the name @p name in errors and problems. Throws when it is no such text at
    /// all.
    ReadRecords (*read)(const RecordSchema& schema, const QByteArray& text, const QString& name);
};

/// A header that names the columns, then a line for each record.
extern const RecordFormat kCsvFormat;
/// An array of one object for each record.
extern const RecordFormat kJsonFormat;

inline constexpr std::array<Word<const RecordFormat*>, 2> kRecordFormats{{
    {"csv", &kCsvFormat},
    {"json", &kJsonFormat},
}};

} // namespace zyn::tool
