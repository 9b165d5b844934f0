// A message as one line for people, and as JSON for programs.
#include "tools/recording/MessageText.h"

#include "handset/common/Text.h"
#include "tools/recording/MessageFields.h"
#include "tools/zynphone/BlockText.h"

#include <QtCore/QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::jsonEscaped;

constexpr qsizetype kChannelWidth = 20;
constexpr qsizetype kNameWidth = 16;
constexpr qsizetype kShownRest = 64;

QString quoted(QString text)
{
    text.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + jsonEscaped(text) + u'"';
}

QString valueText(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Double:
        return QString::number(value.toInteger());
    case QJsonValue::String:
        return quoted(value.toString());
    case QJsonValue::Undefined:
        return u"missing"_s;
    default:
        return u"null"_s;
    }
}

/// A value that may contain others; there are at most two levels.
QString nestedText(const QJsonValue& value)
{
    QStringList parts;
    if (value.isArray()) {
        for (const QJsonValue element : value.toArray())
            parts += nestedText(element);
        return u'[' + parts.join(u' ') + u']';
    }
    if (!value.isObject())
        return valueText(value);
    const QJsonObject object = value.toObject();
    for (auto member = object.begin(); member != object.end(); ++member)
        parts += member.key() + u'=' + valueText(member.value());
    return u'{' + parts.join(u' ') + u'}';
}

QString restText(const QByteArray& rest)
{
    const QString shown = hexText(rest.first(std::min(rest.size(), kShownRest)));
    return rest.size() > kShownRest ? u"%1...(%2 bytes)"_s.arg(shown).arg(rest.size()) : shown;
}

QString kindText(const MessageFields& fields)
{
    if (!fields.isKnown)
        return u"unknown"_s;
    return fields.enumerator.isEmpty() ? u"-"_s : fields.enumerator;
}

} // namespace

QString nameText(const QCString& name)
{
    const QString text = QString::fromUtf8(name);
    const QString inQuotes = quoted(text);
    const bool isWord = !text.isEmpty() && inQuotes.size() == text.size() + 2
                        && std::ranges::none_of(text, [](QChar character) { return character.isSpace(); });
    return isWord ? text : inQuotes;
}

QStringList fieldTexts(const MessageFields& fields)
{
    QStringList texts;
    for (const NamedValue& field : fields.values)
        texts += field.name + u'=' + nestedText(field.value);
    if (!fields.rest.isEmpty())
        texts += u"rest="_s + restText(fields.rest);
    return texts;
}

QString messageText(const ReceivedMessage& message, bool raw)
{
    const MessageFields fields = messageFields(message.channel, message.name, message.payload);
    QStringList values = fieldTexts(fields);
    if (raw)
        values += u"payload="_s + hexText(message.payload);
    QStringList columns{message.time.toString(u"HH:mm:ss.zzz"), nameText(message.channel).leftJustified(kChannelWidth),
                        nameText(message.name).leftJustified(kNameWidth), kindText(fields)};
    if (!values.isEmpty())
        columns += values.join(u' ');
    return columns.join(u"  "_s);
}

QJsonObject messageJson(const ReceivedMessage& message, bool raw)
{
    const MessageFields fields = messageFields(message.channel, message.name, message.payload);
    QJsonObject values;
    QJsonArray missing;
    for (const NamedValue& field : fields.values) {
        if (field.value.isUndefined())
            missing += field.name;
        else
            values.insert(field.name, field.value);
    }
    QJsonObject object{{u"time"_s, message.time.toUTC().toString(Qt::ISODateWithMs)},
                       {u"channel"_s, QString::fromUtf8(message.channel)},
                       {u"name"_s, QString::fromUtf8(message.name)},
                       {u"known"_s, fields.isKnown},
                       {u"enumerator"_s, fields.enumerator.isEmpty() ? QJsonValue() : fields.enumerator},
                       {u"fields"_s, values},
                       {u"missing"_s, missing},
                       {u"rest"_s, hexText(fields.rest)}};
    if (raw)
        object.insert(u"payload"_s, hexText(message.payload));
    return object;
}

} // namespace zyn::tool
