// zynphone status: the phone server's status messages by name.
#include "tools/commands/Commands.h"

#include "handset/common/FieldWords.h"
#include "platform/TAPI.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"
#include "tools/zynphone/Text.h"
#include "utility/message/PhoneMessages_p.h"

#include <iterator>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr handset::WordReader kStatusWords{wholeNumber, blockFrom, latin1Field};

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
        names += QLatin1String(message->word);
    return names;
}

const PhoneMessage& statusNamed(const QString& name)
{
    for (const PhoneMessage* message : statusMessages()) {
        if (name == QLatin1String(message->word))
            return *message;
    }
    throw usageError(u"unknown status '%1'"_s.arg(name) + suggestion(name, statusNames()));
}

QString argumentName(const Field& field)
{
    return QString(QLatin1String(field.name)).toUpper();
}

QString fieldMeaning(const Field& field)
{
    switch (field.kind) {
    case FieldKind::Raw:
        return u"at most %1 characters, or hex: and %1 bytes"_s.arg(field.size);
    case FieldKind::Latin1:
        return u"Latin-1, at most %1 characters"_s.arg(field.size - 1);
    case FieldKind::Text:
        return u"text"_s;
    case FieldKind::Byte:
        return u"0 to 255"_s;
    default:
        return u"number"_s;
    }
}

const PhoneMessage& snapshot()
{
    return phoneMessage(PHONE_Msg::PHONE_MSG_ALL_STATUS_S);
}

/// An option for each field of a snapshot.
QList<QCommandLineOption> snapshotOptions()
{
    QList<QCommandLineOption> options;
    for (const Field& field : snapshot().fields) {
        const QString meaning = field.kind == FieldKind::Int ? u"a whole number"_s : fieldMeaning(field);
        options += valueOption(QLatin1String(field.name), u"VALUE"_s, u"of a snapshot, "_s + meaning);
    }
    return options;
}

std::vector<FieldValue> snapshotValues(const QStringList& words, const Invocation& invocation)
{
    if (!words.isEmpty())
        throw usageError(u"superfluous argument '%1'"_s.arg(words.first()));
    std::vector<FieldValue> values;
    for (const Field& field : snapshot().fields) {
        const QString name = QLatin1String(field.name);
        const bool isSet = invocation.isSet(name);
        values.push_back(isSet ? valueFrom(kStatusWords, field, invocation.value(name), u"--"_s + name) : FieldValue());
    }
    return values;
}

/// The networks in @p words, an id and a name each.
std::vector<FieldValue> networkValues(const QStringList& words)
{
    using Network = TAPI_NETWORK_PREFERED_ENTRY_S;
    constexpr auto kMost = std::ssize(TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S{}.entries);
    if (words.size() % 2 != 0)
        throw usageError(u"missing name of network '%1'"_s.arg(words.last()));
    if (words.size() / 2 > kMost)
        throw usageError(u"%1 networks; at most %2 fit"_s.arg(words.size() / 2).arg(kMost));
    for (qsizetype index = 0; index < words.size(); index += 2) {
        latin1Field(words[index], u"network id"_s, sizeof Network::id - 1);
        latin1Field(words[index + 1], u"network name"_s, sizeof Network::name - 1);
    }
    return {static_cast<int32_t>(words.size() / 2), words};
}

std::vector<FieldValue> plainValues(const PhoneMessage& message, const QStringList& words)
{
    std::vector<FieldValue> values;
    for (const Field& field : message.fields) {
        const QString name = argumentName(field);
        if (std::ssize(values) == words.size())
            throw usageError(u"missing argument %1"_s.arg(name));
        values.push_back(valueFrom(kStatusWords, field, words[std::ssize(values)], name));
    }
    if (std::ssize(values) < words.size())
        throw usageError(u"superfluous argument '%1'"_s.arg(words[std::ssize(values)]));
    return values;
}

/// Rejects options that only a snapshot uses.
void refuseSnapshotOptions(const Invocation& invocation)
{
    for (const Field& field : snapshot().fields) {
        if (const QString name = QLatin1String(field.name); invocation.isSet(name))
            throw usageError(u"--%1 is for 'snapshot'"_s.arg(name));
    }
}

ExitCode sendStatus(const Invocation& invocation, Console& console)
{
    const PhoneMessage& message = statusNamed(invocation.argument(0));
    const QStringList words = invocation.arguments().mid(1);
    const bool isSnapshot = &message == &snapshot();
    if (!isSnapshot)
        refuseSnapshotOptions(invocation);
    const std::vector<FieldValue> values = isSnapshot           ? snapshotValues(words, invocation)
                                           : message.isRecord() ? networkValues(words)
                                                                : plainValues(message, words);
    return sendMessage(QLatin1String(message.channel), QLatin1String(message.name), encode(message, values), console);
}

/// The help for @p message and its arguments.
QStringList nameRow(const PhoneMessage& message)
{
    const QString name = u"  "_s + QLatin1String(message.word);
    if (&message == &snapshot())
        return {name + u" [OPTION...]"_s, u"what no option sets is 0"_s};
    if (message.isRecord())
        return {name + u" [ID NAME]..."_s, u"Latin-1, at most 15 and 31 characters"_s};
    QStringList words{name};
    QStringList meanings;
    for (const Field& field : message.fields) {
        words += argumentName(field);
        meanings += fieldMeaning(field);
    }
    return {words.join(u' '), meanings.join(u", "_s)};
}

QString nameList()
{
    QList<QStringList> rows;
    for (const PhoneMessage* message : statusMessages())
        rows += nameRow(*message);
    return u"\nNames and their arguments:\n"_s + alignedLines(rows);
}

} // namespace

Command statusCommand()
{
    return {.name = u"status"_s,
            .summary = u"Send a status message as the phone server does"_s,
            .details = nameList() + sendingDetails(),
            .arguments = {{u"NAME"_s, u"which status"_s}, {u"ARG"_s, u"as the name takes them"_s, Argument::Any}},
            .options = snapshotOptions(),
            .words = {{u"NAME"_s, statusNames()}},
            .run = sendStatus};
}

} // namespace zyn::tool
