// The status messages of a script.
#include "handset/phone_server/ScriptMessage.h"

#include "handset/phone_server/ScriptError.h"
#include "handset/phone_server/ScriptWords.h"
#include "platform/TAPI.h"
#include "utility/message/AllStatus_p.h"
#include "utility/message/Payload_p.h"

#include <algorithm>
#include <limits>

namespace zyn::handset {
namespace {

template<typename Number>
int numberAs(const QString& word)
{
    return scriptNumber(word, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
}

/// The block of @p size bytes that begins with the hexadecimal digits @p word and goes on with zeros.
QByteArray block(const QString& word, qsizetype size)
{
    const QByteArray digits = word.toLatin1();
    QByteArray bytes = QByteArray::fromHex(digits);
    if (bytes.toHex() != digits.toLower() || bytes.size() > size)
        throw ScriptError{QStringLiteral("'%1' is no pairs of hexadecimal digits, at most %2 of them")
                              .arg(word, QString::number(size))};
    return bytes.leftJustified(size, '\0');
}

void write(PayloadWriter& writer, const QByteArray& bytes)
{
    writer.writeRaw(std::span(reinterpret_cast<const uint8_t*>(bytes.constData()), static_cast<size_t>(bytes.size())));
}

void write(PayloadWriter& writer, const Field& field, const QString& word)
{
    switch (field.kind) {
    case FieldKind::Int:
        writer.writeInt(numberAs<int32_t>(word));
        break;
    case FieldKind::Byte:
        writer.writeByte(static_cast<uint8_t>(numberAs<uint8_t>(word)));
        break;
    case FieldKind::Char:
        writer.writeByte(static_cast<uint8_t>(numberAs<int8_t>(word)));
        break;
    case FieldKind::Text:
        writer.writeText(word);
        break;
    case FieldKind::Raw:
        write(writer, block(word, field.size));
        break;
    case FieldKind::AllStatusRecord:
        write(writer, block(word, sizeof(AllStatus)));
        break;
    case FieldKind::NetworkListRecord:
        write(writer, block(word, sizeof(TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S)));
        break;
    }
}

/// How @p message is written: its name, then its fields' names.
QString usage(const PhoneMessage& message)
{
    QString text = QLatin1String(message.name);
    for (const Field& field : message.fields)
        text += QLatin1Char(' ') + QLatin1String(field.name);
    return text;
}

} // namespace

const PhoneMessage& scriptMessage(const QString& name)
{
    const auto messages = phoneMessages();
    const auto found = std::ranges::find_if(messages, [&](const PhoneMessage& message) {
        return message.isStatus() && name == QLatin1String(message.name);
    });
    if (found == messages.end())
        throw ScriptError{QStringLiteral("'%1' is nothing that can happen").arg(name)};
    return *found;
}

QByteArray scriptPayload(const PhoneMessage& message, const QStringList& values)
{
    if (static_cast<size_t>(values.size()) != message.fields.size())
        throw ScriptError{QStringLiteral("it is '%1'").arg(usage(message))};
    PayloadWriter writer;
    auto value = values.begin();
    for (const Field& field : message.fields)
        write(writer, field, *value++);
    return writer.payload();
}

QString scriptMessagesHelp()
{
    QString help;
    for (const PhoneMessage& message : phoneMessages()) {
        if (message.isStatus())
            help += QStringLiteral("  %1\n").arg(usage(message));
    }
    return help;
}

} // namespace zyn::handset
