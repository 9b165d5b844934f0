// Records of any kind as CSV and JSON, and files of them.
#include "tools/interchange/RecordsFile.h"

#include "handset/common/Text.h"
#include "tools/interchange/CsvText.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QVariant>

#include <algorithm>
#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using NamedText = std::pair<const StoredField*, QString>;

/// Walks the elements of an array, because Qt's parser does not report positions.
class JsonElements
{
public:
    /// @param text  a valid JSON array, which must outlive this object
    explicit JsonElements(QByteArrayView text)
        : m_text(text)
    {}

    /// The line, from 1, of the next element.
    int nextLine();

private:
    void passString();

    const QByteArrayView m_text;
    qsizetype m_at = 0;
    int m_line = 1;
    int m_depth = 0;
};

/// The bytes of @p field in @p record.
QByteArray fieldBytes(const StoredField& field, const QByteArray& record)
{
    return record.sliced(static_cast<qsizetype>(field.offset), static_cast<qsizetype>(field.size));
}

/// The field @p name; a failure with a suggestion if there is none.
const StoredField& fieldNamed(const RecordSchema& schema, const QString& name)
{
    QStringList known;
    for (const StoredField& field : schema.fields) {
        known += QLatin1String(field.name);
        if (known.last() == name)
            return field;
    }
    throw failure(u"unknown field '%1'"_s.arg(name) + suggestion(name, known));
}

/// Throws unless @p given contains every required field of @p schema, and none twice.
void requireFields(const RecordSchema& schema, const std::vector<const StoredField*>& given)
{
    for (const StoredField& field : schema.fields) {
        const auto times = std::ranges::count(given, &field);
        if (times > 1)
            throw failure(u"the field '%1' is there twice"_s.arg(QLatin1String(field.name)));
        if (times == 0 && field.presence == StoredField::Required)
            throw failure(u"the field '%1' is missing"_s.arg(QLatin1String(field.name)));
    }
}

/// The record with @p texts in its fields. Throws if a text is invalid; an optional field may be empty.
QByteArray recordOf(const RecordSchema& schema, const std::vector<NamedText>& texts)
{
    QByteArray record = schema.blank;
    for (const auto& [field, text] : texts) {
        if (text.isEmpty() && field->presence != StoredField::Required)
            continue;
        const auto size = static_cast<qsizetype>(field->size);
        record.replace(static_cast<qsizetype>(field->offset), size,
                       field->form->bytes(text, QLatin1String(field->name), size));
    }
    return record;
}

int JsonElements::nextLine()
{
    bool isBetween = false;
    for (; m_at < m_text.size(); ++m_at) {
        const char character = m_text[m_at];
        const bool isBlank = character == ' ' || character == '\t' || character == '\r' || character == '\n';
        if (isBetween && !isBlank)
            break;
        if (character == '\n')
            ++m_line;
        else if (character == '"')
            passString();
        else if (character == '[' || character == '{')
            isBetween = m_depth++ == 0;
        else if (character == ']' || character == '}')
            --m_depth;
        else if (character == ',')
            isBetween = m_depth == 1;
    }
    return m_line;
}

/// Skips to the end of this string.
void JsonElements::passString()
{
    for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at) {
        if (m_text[m_at] == '\\')
            ++m_at;
    }
}

using handset::jsonEscaped;

QString csvText(const std::vector<StoredField>& fields, const std::vector<QByteArray>& records)
{
    QStringList names;
    for (const StoredField& field : fields)
        names += QLatin1String(field.name);
    QString text = csvLine(names);
    for (const QByteArray& record : records) {
        QStringList cells;
        for (const StoredField& field : fields)
            cells += field.form->value(fieldBytes(field, record)).toVariant().toString();
        text += csvLine(cells);
    }
    return text;
}

/// The problem at @p place. Long texts are shortened in the middle, where they quote the file.
QString problem(const QString& place, const CommandError& error)
{
    const QString& message = error.message();
    constexpr qsizetype kKept = 120; // on each side
    if (message.size() <= 2 * kKept)
        return place + message;
    return place + message.left(kKept) + u'\u2026' + message.right(kKept);
}

/// Adds the record that @p read returns, or its error, to @p result.
template<typename Read>
void addTo(ReadRecords& result, const QString& place, Read read)
{
    try {
        result.records.push_back(read());
    } catch (const CommandError& error) {
        result.problems += problem(place, error);
    }
}

QString linePlace(const QString& name, int line)
{
    return u"%1:%2: "_s.arg(name, QString::number(line));
}

std::vector<const StoredField*> headerFields(const RecordSchema& schema, const CsvRow& header)
{
    if (!header.problem.isEmpty())
        throw failure(header.problem);
    std::vector<const StoredField*> columns;
    for (const QString& cell : header.cells)
        columns.push_back(&fieldNamed(schema, cell));
    requireFields(schema, columns);
    return columns;
}

QByteArray recordOfRow(const RecordSchema& schema, const std::vector<const StoredField*>& columns, const CsvRow& row)
{
    const auto width = static_cast<qsizetype>(columns.size());
    if (!row.problem.isEmpty())
        throw failure(row.problem);
    if (row.cells.size() != width)
        throw failure(
            u"the line has %1, not %2"_s.arg(handset::counted(row.cells.size(), "field"), QString::number(width)));
    std::vector<NamedText> texts;
    for (qsizetype place = 0; place < width; ++place)
        texts.emplace_back(columns[static_cast<size_t>(place)], row.cells[place]);
    return recordOf(schema, texts);
}

ReadRecords readCsv(const RecordSchema& schema, const QByteArray& text, const QString& name)
{
    CsvReader reader(text);
    if (reader.atEnd())
        throw failure(linePlace(name, 1) + u"no line names the fields"_s);
    const CsvRow header = reader.next();
    std::vector<const StoredField*> columns;
    try {
        columns = headerFields(schema, header);
    } catch (const CommandError& error) {
        throw failure(problem(linePlace(name, header.line), error));
    }
    ReadRecords result;
    while (!reader.atEnd()) {
        const CsvRow row = reader.next();
        addTo(result, linePlace(name, row.line), [&] { return recordOfRow(schema, columns, row); });
    }
    return result;
}

QString jsonText(const std::vector<StoredField>& fields, const std::vector<QByteArray>& records)
{
    QStringList lines;
    for (const QByteArray& record : records) {
        QJsonObject object;
        for (const StoredField& field : fields)
            object.insert(QLatin1String(field.name), field.form->value(fieldBytes(field, record)));
        lines += jsonEscaped(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
    }
    return u"[\n"_s + lines.join(u",\n"_s) + (lines.isEmpty() ? u"]\n"_s : u"\n]\n"_s);
}

void requireKind(const StoredField& field, const QJsonValue& value)
{
    const FieldForm::Kind kind = field.form->kind;
    const bool isRight =
        kind == FieldForm::Text ? value.isString() : value.isDouble() || (kind == FieldForm::Flag && value.isBool());
    if (isRight)
        return;
    constexpr std::array kWanted{"not a text", "not a number", "neither true nor false nor a number"};
    throw failure(u"the field '%1' is %2"_s.arg(QLatin1String(field.name), QLatin1String(kWanted[kind])));
}

QByteArray recordOfObject(const RecordSchema& schema, const QJsonValue& value)
{
    if (!value.isObject())
        throw failure(u"it is not an object"_s);
    const QJsonObject object = value.toObject();
    std::vector<const StoredField*> given;
    std::vector<NamedText> texts;
    for (auto member = object.begin(); member != object.end(); ++member) {
        const QString name = member.key();
        const StoredField& field = fieldNamed(schema, name);
        requireKind(field, *member);
        given.push_back(&field);
        texts.emplace_back(&field, member->toVariant().toString());
    }
    requireFields(schema, given);
    return recordOf(schema, texts);
}

int lineAt(const QByteArray& text, qsizetype offset)
{
    return 1 + static_cast<int>(text.first(std::clamp<qsizetype>(offset, 0, text.size())).count('\n'));
}

ReadRecords readJson(const RecordSchema& schema, const QByteArray& text, const QString& name)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) {
        throw failure(linePlace(name, lineAt(text, error.offset)) + u"no JSON: "_s + error.errorString());
    }
    if (!document.isArray())
        throw failure(linePlace(name, lineAt(text, text.indexOf('{'))) + u"no array of objects"_s);
    ReadRecords result;
    JsonElements elements(text);
    int number = 0;
    for (const QJsonValue value : document.array()) {
        const QString place = linePlace(name, elements.nextLine()) + u"record %1: "_s.arg(++number);
        addTo(result, place, [&] { return recordOfObject(schema, value); });
    }
    return result;
}

/// Many times the size of the largest lists.
constexpr qint64 kInputLimit = qint64{16} * 1024 * 1024;

constexpr qsizetype kHelpWidth = 90;

QString fieldName(const StoredField& field)
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

const RecordFormat kCsvFormat{csvText, readCsv};
const RecordFormat kJsonFormat{jsonText, readJson};

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
        if (lines.last().size() + fieldName(field).size() > kHelpWidth)
            lines += QString();
        lines.last() += u"  "_s + fieldName(field);
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
    // A pipe may return fewer bytes than will follow.
    for (QByteArray part = isOpen ? file.read(kInputLimit) : bytes; !part.isEmpty(); part = file.read(kInputLimit)) {
        bytes += part;
        if (bytes.size() > kInputLimit)
            throw failure(u"%1 is longer than %2 bytes"_s.arg(inputName(), QString::number(kInputLimit)));
    }
    if (file.error() != QFileDevice::NoError)
        throw failure(u"cannot read %1: %2"_s.arg(inputName(), file.errorString()));
    return bytes;
}

} // namespace zyn::tool
