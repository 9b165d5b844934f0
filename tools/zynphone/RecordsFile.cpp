// A file of records: what the command line says of it, reading and writing.
#include "tools/zynphone/RecordsFile.h"

#include "tools/zynphone/Console.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;

/// Many times what the largest lists take.
constexpr qint64 kSizeLimit = qint64{16} * 1024 * 1024;

QString shownName(const QString& path)
{
    return path == kStandardStream ? u"standard input"_s : path;
}

bool openForReading(QFile& file, const QString& path)
{
    if (path == kStandardStream)
        return file.open(stdin, QIODevice::ReadOnly);
    file.setFileName(path);
    return file.open(QIODevice::ReadOnly);
}

QByteArray readWhole(const QString& path)
{
    QFile file;
    QByteArray bytes;
    if (openForReading(file, path)) {
        // A pipe may give less than there is to come.
        for (QByteArray part = file.read(kSizeLimit); !part.isEmpty() && bytes.size() <= kSizeLimit;
             part = file.read(kSizeLimit))
            bytes += part;
    }
    if (file.error() != QFileDevice::NoError)
        throw failure(u"cannot read %1: %2"_s.arg(shownName(path), file.errorString()));
    if (bytes.size() > kSizeLimit)
        throw failure(u"%1 is longer than %2 bytes"_s.arg(shownName(path)).arg(kSizeLimit));
    return bytes;
}

} // namespace

namespace zyn::tool {

QCommandLineOption formatOption()
{
    return valueOption(u"format"_s, u"FORMAT"_s,
                       wordTexts(kRecordFormats).join(u" or "_s)
                           + u"; the file's ending by default, csv on standard input and output"_s);
}

QMap<QString, QStringList> formatWords(QMap<QString, QStringList> others)
{
    others.insert(u"FORMAT"_s, wordTexts(kRecordFormats));
    return others;
}

const RecordFormat& formatFrom(const Invocation& call, const QString& path)
{
    const QString format = u"format"_s;
    if (call.isSet(format))
        return *wordNamed(kRecordFormats, call.value(format), format).value;
    if (path == kStandardStream)
        return kCsvFormat;
    return *wordNamed(kRecordFormats, QFileInfo(path).suffix().toLower(), u"file ending"_s).value;
}

ReadRecords readRecords(const RecordSchema& schema, const RecordFormat& format, const QString& path)
{
    return format.read(schema, readWhole(path), shownName(path));
}

void writeText(const QString& path, const QString& text, Console& console)
{
    if (path == kStandardStream) {
        console.write(text);
        return;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0 || !file.commit())
        throw failure(u"cannot write %1: %2"_s.arg(path, file.errorString()));
}

} // namespace zyn::tool
