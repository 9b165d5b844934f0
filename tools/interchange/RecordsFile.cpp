// A file of records, as a command line names it.
#include "tools/interchange/RecordsFile.h"

#include "tools/zynphone/Console.h"
#include "tools/zynphone/Counted.h"
#include "tools/zynphone/OutputFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Many times what the largest lists take.
constexpr qint64 kSizeLimit = qint64{16} * 1024 * 1024;

constexpr qsizetype kHelpWidth = 90;

QString nameOf(const StoredField& field)
{
    return QLatin1String(field.name);
}

const RecordFormat& formatFrom(const Invocation& invocation, const QString& path)
{
    const QString format = u"format"_s;
    if (invocation.isSet(format))
        return *wordNamed(kRecordFormats, invocation.value(format), format).value;
    if (path.isNull())
        return kCsvFormat;
    return *wordNamed(kRecordFormats, QFileInfo(path).suffix().toLower(), u"file ending"_s).value;
}

QCommandLineOption formatOption()
{
    return valueOption(u"format"_s, u"FORMAT"_s,
                       wordTexts(kRecordFormats).join(u" or "_s)
                           + u"; the file's ending by default, csv on standard input and output"_s);
}

} // namespace

QList<QCommandLineOption> RecordsFile::exportOptions()
{
    return {formatOption(), flagOption(u"all"_s, u"write too what an import leaves to the store"_s)};
}

QList<QCommandLineOption> RecordsFile::importOptions()
{
    return {formatOption(), flagOption(u"strict"_s, u"take none unless all can be read"_s)};
}

QMap<QString, QStringList> RecordsFile::words()
{
    return {{u"FORMAT"_s, wordTexts(kRecordFormats)}};
}

QString RecordsFile::fieldList(const RecordSchema& schema)
{
    QStringList lines{QString()};
    for (const StoredField& field : schema.fields) {
        if (lines.last().size() + nameOf(field).size() > kHelpWidth)
            lines += QString();
        lines.last() += u"  "_s + nameOf(field);
    }
    return lines.join(u'\n') + u'\n';
}

RecordsFile::RecordsFile(const Invocation& invocation, const RecordSchema& schema, const QString& path)
    : m_call(invocation)
    , m_schema(schema)
    , m_path(path == "-"_L1 || path.isEmpty() ? QString() : path)
    , m_format(formatFrom(invocation, m_path))
{}

void RecordsFile::write(const std::vector<QByteArray>& records, Console& console) const
{
    std::vector<StoredField> fields = m_schema.fields;
    if (!m_call.isSet(u"all"_s))
        std::erase_if(fields, [](const StoredField& field) { return field.presence == StoredField::OfStore; });
    const QString text = m_format.write(fields, records);
    if (m_path.isNull()) {
        console.write(text);
        return;
    }
    writeFile(m_path, text.toUtf8());
    console.write(u"wrote %1\n"_s.arg(counted(static_cast<qsizetype>(records.size()), m_schema.thing)));
}

ReadRecords RecordsFile::read(Console& console) const
{
    ReadRecords result = m_format.read(m_schema, readWhole(), inputName());
    for (const QString& problem : result.problems)
        console.writeError(u"zynphone: "_s + problem);
    if (!result.problems.isEmpty() && m_call.isSet(u"strict"_s))
        throw failure(u"%1 cannot be read; none was taken"_s.arg(counted(result.problems.size(), m_schema.thing)));
    return result;
}

QString RecordsFile::inputName() const
{
    return m_path.isNull() ? u"standard input"_s : m_path;
}

QByteArray RecordsFile::readWhole() const
{
    QFile file(m_path);
    const bool isOpen = m_path.isNull() ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    QByteArray bytes;
    // A pipe may give less than there is to come.
    for (QByteArray part = isOpen ? file.read(kSizeLimit) : bytes; !part.isEmpty(); part = file.read(kSizeLimit)) {
        bytes += part;
        if (bytes.size() > kSizeLimit)
            throw failure(u"%1 is longer than %2 bytes"_s.arg(inputName(), QString::number(kSizeLimit)));
    }
    if (file.error() != QFileDevice::NoError)
        throw failure(u"cannot read %1: %2"_s.arg(inputName(), file.errorString()));
    return bytes;
}

} // namespace zyn::tool
