// A file of records, as a command line names it.
#pragma once

#include "tools/interchange/RecordsText.h"
#include "tools/zynphone/Command.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <vector>

namespace zyn::tool {

class Console;

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
