// Records of any kind as texts: CSV and JSON.
#include "tools/interchange/RecordsText.h"

#include "handset/common/Text.h"
#include "tools/interchange/CsvText.h"
#include "tools/interchange/JsonElements.h"
#include "tools/interchange/NamedTexts.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using zyn::handset::jsonEscaped;

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

/// What is wrong at @p place. A long text is cut in its middle, where what the file holds is quoted.
QString problem(const QString& place, const CommandError& error)
{
    const QString& message = error.message();
    constexpr qsizetype kKept = 120; // on each side
    if (message.size() <= 2 * kKept)
        return place + message;
    return place + message.left(kKept) + u'\u2026' + message.right(kKept);
}

/// Adds the record that @p read gives to @p result, or why it gives none.
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

std::vector<const StoredField*> columnsOf(const RecordSchema& schema, const CsvRow& header)
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
        throw failure(u"the line has %1 fields, not %2"_s.arg(row.cells.size()).arg(width));
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
        columns = columnsOf(schema, header);
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
    constexpr std::array kWanted{"no text", "no number", "neither true nor false nor a number"};
    throw failure(u"the field '%1' is %2"_s.arg(QLatin1String(field.name), QLatin1String(kWanted[kind])));
}

QByteArray recordOfObject(const RecordSchema& schema, const QJsonValue& value)
{
    if (!value.isObject())
        throw failure(u"it is no object"_s);
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

} // namespace

const RecordFormat kCsvFormat{csvText, readCsv};
const RecordFormat kJsonFormat{jsonText, readJson};

} // namespace zyn::tool
