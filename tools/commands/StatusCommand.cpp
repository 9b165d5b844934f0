// zynphone status: the phone server's status messages by name.
#include "tools/commands/Commands.h"

#include "tools/commands/MessageSending.h"
#include "tools/commands/RecordInput.h"
#include "tools/recording/RecordFields.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"
#include "tools/zynphone/Text.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"
#include "utility/message/PhoneMessages_p.h"

#include <cstdint>
#include <limits>
#include <span>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The messages that the phone server sends.
std::vector<const PhoneMessage*> statusMessages()
{
    std::vector<const PhoneMessage*> messages;
    for (const PhoneMessage& message : phoneMessages()) {
        if (message.isStatus())
            messages.push_back(&message);
    }
    return messages;
}

QStringList statusNames()
{
    QStringList names;
    for (const PhoneMessage* message : statusMessages())
        names += QLatin1String(message->name);
    return names;
}

const PhoneMessage& statusNamed(const QString& name)
{
    for (const PhoneMessage* message : statusMessages()) {
        if (name == QLatin1String(message->name))
            return *message;
    }
    throw usageError(u"unknown status '%1'"_s.arg(name) + suggestion(name, statusNames()));
}

QString argumentName(const Field& field)
{
    return QString(QLatin1String(field.name)).toUpper();
}

void writeField(PayloadWriter& writer, const Field& field, const QString& word)
{
    const QString name = argumentName(field);
    if (field.kind == FieldKind::Int) {
        writer.writeInt(wholeNumber(word, name));
    } else if (field.kind == FieldKind::Byte) {
        writer.writeByte(static_cast<uint8_t>(wholeNumber(word, name, 0, std::numeric_limits<uint8_t>::max())));
    } else if (field.kind == FieldKind::Text) {
        writer.writeText(word);
    } else {
        const QByteArray block = blockFrom(word, name, field.size);
        writer.writeRaw(std::span(reinterpret_cast<const uint8_t*>(block.constData()), field.size));
    }
}

QByteArray payloadFrom(const PhoneMessage& message, const QStringList& words)
{
    PayloadWriter writer;
    qsizetype place = 0;
    for (const Field& field : message.fields) {
        if (place == words.size())
            throw usageError(u"missing argument %1"_s.arg(argumentName(field)));
        writeField(writer, field, words[place++]);
    }
    if (place < words.size())
        throw usageError(u"superfluous argument '%1'"_s.arg(words[place]));
    return writer.payload();
}

/// What only a snapshot takes must not be lost without a word.
void refuseSnapshotOptions(const Invocation& invocation)
{
    for (const QCommandLineOption& option : allStatusOptions()) {
        if (const QString name = option.names().constFirst(); invocation.isSet(name))
            throw usageError(u"--%1 is for 'snapshot'"_s.arg(name));
    }
}

QByteArray statusPayload(const PhoneMessage& message, const Invocation& invocation)
{
    const QStringList words = invocation.arguments().mid(1);
    const FieldKind kind = leadingKind(message.fields);
    if (kind == FieldKind::AllStatusRecord) {
        if (!words.isEmpty())
            throw usageError(u"superfluous argument '%1'"_s.arg(words.first()));
        return allStatusFrom(invocation);
    }
    refuseSnapshotOptions(invocation);
    return kind == FieldKind::NetworkListRecord ? networkListFrom(words) : payloadFrom(message, words);
}

ExitCode sendStatus(const Invocation& invocation, Console& console)
{
    const QString status = invocation.argument(0);
    const PhoneMessage& message = statusNamed(status);
    const QCString name = messageName(kPhonePrefix, static_cast<unsigned>(message.type), kPhoneTypes);
    sendMessage(QLatin1String(kPhoneChannel), QLatin1String(name), statusPayload(message, invocation), console);
    return Done;
}

QString fieldSyntax(const Field& field)
{
    switch (field.kind) {
    case FieldKind::AllStatusRecord:
        return u"[OPTION...]"_s;
    case FieldKind::NetworkListRecord:
        return u"[ID NAME]..."_s;
    default:
        return argumentName(field);
    }
}

QString fieldMeaning(const Field& field)
{
    switch (field.kind) {
    case FieldKind::AllStatusRecord:
        return u"what no option sets is 0"_s;
    case FieldKind::NetworkListRecord:
        return u"Latin-1, at most 15 and 31 characters"_s;
    case FieldKind::Raw:
        return u"at most %1 characters, or hex: and %1 bytes"_s.arg(field.size);
    case FieldKind::Text:
        return u"text"_s;
    case FieldKind::Byte:
        return u"0 to 255"_s;
    default:
        return u"number"_s;
    }
}

/// The names with their arguments and what those are.
QString nameList()
{
    QList<QStringList> rows;
    for (const PhoneMessage* message : statusMessages()) {
        QStringList words{u"  "_s + QLatin1String(message->name)};
        QStringList meanings;
        for (const Field& field : message->fields) {
            words += fieldSyntax(field);
            meanings += fieldMeaning(field);
        }
        rows += {words.join(u' '), meanings.join(u", "_s)};
    }
    return u"\nNames and their arguments:\n"_s + alignedLines(rows);
}

} // namespace

Command statusCommand()
{
    return {.name = u"status"_s,
            .summary = u"Send a status message as the phone server does"_s,
            .details = nameList(),
            .arguments = {{u"NAME"_s, u"which status"_s}, {u"ARG"_s, u"as the name takes them"_s, Argument::Any}},
            .options = allStatusOptions(),
            .words = {{u"NAME"_s, statusNames()}},
            .run = sendStatus};
}

} // namespace zyn::tool
