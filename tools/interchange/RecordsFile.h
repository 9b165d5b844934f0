// Records of any kind as CSV and JSON, and the files of these.
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

class RecordsFile
{
public:
    /// @{ What the constructor and the two operations read of a command line, and the words of the options' values.
    static QList<QCommandLineOption> exportOptions();
    static QList<QCommandLineOption> importOptions();
    static QMap<QString, QStringList> words();
    /// @}
    /// The fields that a file of such records may have, as a help text lists them.
    static QString fieldList(const RecordSchema& schema);

    /// The file at @p path; standard input or output when that is "-" or empty. A usage error when neither its ending
    /// nor an option tells its format.
    /// @p call and @p schema must outlive it.
    RecordsFile(const Invocation& invocation, const RecordSchema& schema, const QString& path);

    /// Writes @p records, whole or not at all, in place of what the file was; a device or a pipe is written to.
    void write(const std::vector<QByteArray>& records, Console& console) const;

    /// Reads the file, and tells on the console which records cannot be read; that is a failure when --strict is set.
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
