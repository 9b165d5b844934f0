// A record put together from texts for its fields.
#include "tools/interchange/NamedTexts.h"

#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/Nearest.h"

#include <QtCore/QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {

QByteArray fieldBytes(const StoredField& field, const QByteArray& record)
{
    return record.sliced(static_cast<qsizetype>(field.offset), static_cast<qsizetype>(field.size));
}

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

} // namespace zyn::tool
