// The status messages of a script.
#include "handset/phone_server/ScriptMessage.h"

#include "handset/common/FieldWords.h"
#include "handset/common/ScriptReader.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

int number(const QString& word, const QString& /*what*/, int lowest, int highest)
{
    return scriptNumber(word, lowest, highest);
}

/// The block of @p size bytes that begins with the hexadecimal digits @p word and goes on with zeros.
QByteArray block(const QString& word, const QString& /*what*/, qsizetype size)
{
    const QByteArray digits = word.toLatin1();
    QByteArray bytes = QByteArray::fromHex(digits);
    if (bytes.toHex() != digits.toLower() || bytes.size() > size)
        throw ScriptError{
            u"'%1' is no pairs of hexadecimal digits, at most %2 of them"_s.arg(word, QString::number(size))};
    return bytes.leftJustified(size, '\0');
}

constexpr WordReader kWords{number, block, nullptr};

/// How @p message is written: its word, then a value for each of these.
QStringList valueNames(const PhoneMessage& message)
{
    if (message.isRecord())
        return {QLatin1String(message.record)};
    QStringList names;
    for (const Field& field : message.fields)
        names += QLatin1String(field.name);
    return names;
}

QString usage(const PhoneMessage& message)
{
    return (QStringList(QLatin1String(message.word)) + valueNames(message)).join(u' ');
}

} // namespace

const PhoneMessage& scriptMessage(const QString& word)
{
    const auto messages = phoneMessages();
    const auto found = std::ranges::find_if(messages, [&](const PhoneMessage& message) {
        return message.isStatus() && word == QLatin1String(message.word);
    });
    if (found == messages.end())
        throw ScriptError{u"'%1' is nothing that can happen"_s.arg(word)};
    return *found;
}

QByteArray scriptPayload(const PhoneMessage& message, const QStringList& words)
{
    if (words.size() != valueNames(message).size())
        throw ScriptError{u"it is '%1'"_s.arg(usage(message))};
    if (message.isRecord())
        return block(words.first(), {}, recordSize(message));
    std::vector<FieldValue> values;
    for (const Field& field : message.fields)
        values.push_back(valueFrom(kWords, field, words[qsizetype(values.size())], {}));
    return encode(message, values);
}

QString scriptMessagesHelp()
{
    QString help;
    for (const PhoneMessage& message : phoneMessages()) {
        if (message.isStatus())
            help += u"  %1\n"_s.arg(usage(message));
    }
    return help;
}

} // namespace zyn::handset
