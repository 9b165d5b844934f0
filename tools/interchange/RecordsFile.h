// Records of any kind as CSV and JSON, and files of them.
#pragma once

#include "tools/interchange/StoredField.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <vector>

namespace zyn::tool {

class Console;

/// The contents of a text of records.
struct ReadRecords
{
    std::vector<QByteArray> records; ///< in order
    QStringList problems;            ///< the place and the reason of each unreadable record
};

struct RecordFormat
{
    /// @p records as text, with the values of @p fields.
    QString (*write)(const std::vector<StoredField>& fields, const std::vector<QByteArray>& records);
    /// The records in @p text, called @p name in errors. Throws if the whole text is invalid.
    ReadRecords (*read)(const RecordSchema& schema, const QByteArray& text, const QString& name);
};

/// A header with the column names, then one line per record.
extern const RecordFormat kCsvFormat;
/// An array with one object per record.
extern const RecordFormat kJsonFormat;

inline constexpr std::array<Word<const RecordFormat*>, 2> kRecordFormats{{
    {"csv", &kCsvFormat},
    {"json", &kJsonFormat},
}};

class RecordsFile
{
public:
    /// @{ The options and arguments of the constructor and the two operations, and the words for their values.
    static QList<QCommandLineOption> exportOptions();
    static QList<QCommandLineOption> importOptions();
    static QMap<QString, QStringList> words();
    /// @}
    /// The possible fields, for help texts.
    static QString fieldList(const RecordSchema& schema);

    /// The file @p path, or standard input or output if that is "-" or empty. A usage error if neither the suffix nor
    /// an option gives the format.
    /// @p call and @p schema must outlive it.
    RecordsFile(const Invocation& invocation, const RecordSchema& schema, const QString& path);

    /// Writes @p records, replacing the file atomically; a device or a pipe is written to.
    void write(const std::vector<QByteArray>& records, Console& console) const;

    /// Reads the file. Unreadable records are reported on the console, and are a failure with --strict.
    ReadRecords read(Console& console) const;

private:
    QString inputName() const;
    QByteArray readWhole() const;

    const Invocation& m_call;
    const RecordSchema& m_schema;
    const QString m_path; ///< null for standard input and output
    const RecordFormat& m_format;
};

} // namespace zyn::tool
