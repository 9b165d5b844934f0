// A message as one line for people, and as JSON for programs.
#include "tools/recording/MessageText.h"

#include "handset/common/Text.h"
#include "tools/recording/MessageFields.h"
#include "tools/recording/ValueWords.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr qsizetype kSenderWidth = 15;
constexpr qsizetype kChannelWordWidth = 11;
constexpr qsizetype kMessageWordWidth = 20;
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

/// The word for the value of @p field, empty when there is none.
QString fieldWord(const ReceivedMessage& message, const NamedValue& field)
{
    return field.value.isDouble() ? valueWord(message.channel, message.name, field.name, field.value.toInteger())
                                  : QString();
}

QJsonObject participantJson(const Participant& participant)
{
    return {{u"program"_s, participant.program}, {u"process"_s, qint64{participant.process}}};
}

} // namespace

QString ParticipantNames::nameOf(const Participant& participant)
{
    if (!participant.isKnown())
        return u"?"_s;
    const QString program = participant.program.isEmpty() ? u"?"_s : handset::printable(participant.program);
    QSet<int64_t>& processes = m_processes[program];
    processes += participant.process;
    return processes.size() == 1 ? program : u"%1[%2]"_s.arg(program).arg(participant.process);
}

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

QString channelWord(const QCString& channel)
{
    const qsizetype slash = channel.lastIndexOf('/');
    return nameText(slash + 1 < channel.size() ? QCString(channel.sliced(slash + 1)) : channel);
}

QString messageWord(const QCString& channel, const QCString& name)
{
    const PhoneMessage* const message = channel == kPhoneChannel ? phoneMessage(name) : nullptr;
    if (message && message->word)
        return QLatin1String(message->word);
    constexpr QLatin1String kPrefix("RECENTCALL_MSG_");
    constexpr QLatin1String kSuffix("_S");
    const QString enumerator = messageFields(channel, name, {}).enumerator;
    if (!enumerator.startsWith(kPrefix) || !enumerator.endsWith(kSuffix))
        return nameText(name);
    return enumerator.sliced(kPrefix.size()).chopped(kSuffix.size()).toLower().replace(u'_', u'-');
}

QStringList valueTexts(const ReceivedMessage& message, bool tellsUnknown)
{
    const MessageFields fields = messageFields(message.channel, message.name, message.payload);
    QStringList texts;
    for (const NamedValue& field : fields.values) {
        const QString word = fieldWord(message, field);
        const QString value = word.isEmpty() ? nestedText(field.value) : word;
        // A word that is all of a message needs no name.
        texts += word.isEmpty() || fields.values.size() > 1 ? field.name + u'=' + value : value;
    }
    if (!fields.rest.isEmpty())
        texts += u"rest="_s + restText(fields.rest);
    if (tellsUnknown && !fields.isKnown)
        texts.prepend(u"unknown"_s);
    return texts;
}

QString messageText(const ReceivedMessage& message, const MessageLook& look, ParticipantNames& names)
{
    const QString time = message.time.toLocalTime().toString(u"HH:mm:ss.zzz");
    const QString sender = names.nameOf(message.sender).leftJustified(kSenderWidth);
    const QString word = messageWord(message.channel, message.name).leftJustified(kMessageWordWidth);
    QStringList values = valueTexts(message);
    if (message.isLate)
        values.prepend(u"(late)"_s);
    if (look.isRaw)
        values += {nameText(message.name), u"payload="_s + hexText(message.payload)};
    QString rest =
        channelWord(message.channel).leftJustified(kChannelWordWidth) + u"  "_s + word + u"  "_s + values.join(u' ');
    while (rest.endsWith(u' '))
        rest.chop(1);
    if (look.width > 0)
        rest = elided(rest, std::max<qsizetype>(look.width - time.size() - sender.size() - 4, 1));
    const auto shown = [&](const QString& text, Colour colour) {
        return look.isColourful ? coloured(text, colour) : text;
    };
    return shown(time, Colour::Green) + u"  "_s + shown(sender, Colour::Yellow) + u"  "_s + rest;
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
    QJsonObject words;
    for (const NamedValue& field : fields.values) {
        const QString word = fieldWord(message, field);
        if (!word.isEmpty())
            words.insert(field.name, word);
    }
    object.insert(u"words"_s, words);
    object.insert(u"from"_s, message.sender.isKnown() ? participantJson(message.sender) : QJsonValue());
    if (message.hearers) {
        QJsonArray hearers;
        for (const Participant& hearer : *message.hearers)
            hearers += participantJson(hearer);
        object.insert(u"hearers"_s, hearers);
    }
    object.insert(u"late"_s, message.isLate);
    if (raw)
        object.insert(u"payload"_s, hexText(message.payload));
    return object;
}

} // namespace zyn::tool
