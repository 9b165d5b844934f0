// The payload of a message as named values.
#include "tools/recording/MessageFields.h"

#include "recentcall/utility/RecentCall_Messages_p.h"
#include "tools/zynphone/BlockText.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

QJsonValue jsonOf(const QString& text)
{
    return text.isNull() ? QJsonValue() : QJsonValue(text);
}

QJsonArray listOf(const QStringList& texts)
{
    QJsonArray list;
    for (const QString& text : texts)
        list += jsonOf(text);
    return list;
}

/// The networks in @p texts, an id and a name each.
QJsonArray networksOf(const QStringList& texts)
{
    QJsonArray networks;
    for (qsizetype index = 0; index + 1 < texts.size(); index += 2)
        networks += QJsonObject{{u"id"_s, texts[index]}, {u"name"_s, texts[index + 1]}};
    return networks;
}

QJsonValue jsonOf(const Field& field, const FieldValue& value)
{
    switch (field.kind) {
    case FieldKind::Text:
        return field.occurs == Occurrence::AsCounted ? listOf(value.texts) : jsonOf(value.text);
    case FieldKind::Latin1:
        return value.text;
    case FieldKind::Raw:
        return blockText(value.bytes);
    case FieldKind::Networks:
        return networksOf(value.texts);
    default:
        return value.number;
    }
}

} // namespace

MessageFields messageFields(const QCString& channel, const QCString& name, const QByteArray& payload)
{
    MessageFields result;
    result.rest = payload;
    const Message* const message = findMessage(channel, name);
    if (!message)
        return result;
    result.isKnown = true;
    result.enumerator = QLatin1String(message->enumerator);
    const FieldValues values = decode(*message, payload);
    qsizetype next = 0;
    for (const Field& field : message->fields) {
        const bool isWhole = next < values.whole;
        const FieldValue& value = values.list[next++];
        if (!isLeftOut(field, values[0]))
            result.values.push_back(
                {QLatin1String(field.name), isWhole ? jsonOf(field, value) : QJsonValue(QJsonValue::Undefined)});
    }
    result.rest = payload.sliced(values.end);
    return result;
}

} // namespace zyn::tool
