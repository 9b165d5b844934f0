// zynphone send: any message with any payload.
#include "tools/commands/MessageSending.h"

#include "tools/commands/Commands.h"

#include "platform/QCopChannel.h"
#include "tools/commands/Channels.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/HexText.h"
#include "tools/zynphone/Text.h"
#include "utility/message/Payload_p.h"

#include <array>
#include <cstdint>
#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using zyn::PayloadWriter;

using WriteValue = void (*)(PayloadWriter&, const QString& value);

constexpr Word<WriteValue> kNull{"null",
                                 [](PayloadWriter& writer, const QString& /*value*/) { writer.writeText(QString()); }};

constexpr std::array<Word<WriteValue>, 7> kTypes{{
    {"int", [](PayloadWriter& writer, const QString& value) { writer.writeInt(wholeNumber(value, u"int"_s)); }},
    {"char",
     [](PayloadWriter& writer, const QString& value) {
         using Limits = std::numeric_limits<int8_t>;
         writer.writeByte(static_cast<uint8_t>(wholeNumber(value, u"char"_s, Limits::min(), Limits::max())));
     }},
    {"byte",
     [](PayloadWriter& writer, const QString& value) {
         const int highest = std::numeric_limits<uint8_t>::max();
         writer.writeByte(static_cast<uint8_t>(wholeNumber(value, u"byte"_s, 0, highest)));
     }},
    {"bool",
     [](PayloadWriter& writer, const QString& value) { writer.writeBool(wholeNumber(value, u"bool"_s, 0, 1) == 1); }},
    {"text", [](PayloadWriter& writer, const QString& value) { writer.writeText(value); }},
    kNull,
    {"hex",
     [](PayloadWriter& writer, const QString& value) {
         const QByteArray bytes = bytesFromHex(value);
         writer.writeRaw(
             std::span(reinterpret_cast<const uint8_t*>(bytes.constData()), static_cast<size_t>(bytes.size())));
     }},
}};

void writeTyped(PayloadWriter& writer, const QString& typed)
{
    const qsizetype colon = typed.indexOf(u':');
    const QString name = typed.left(colon);
    const Word<WriteValue> type = wordNamed(kTypes, name, u"type"_s);
    const bool takesValue = type.value != kNull.value;
    if (takesValue && colon < 0)
        throw usageError(u"missing value after '%1:'"_s.arg(name));
    if (!takesValue && colon >= 0)
        throw usageError(u"'%1' takes no value"_s.arg(name));
    type.value(writer, typed.mid(colon + 1));
}

ExitCode send(const Invocation& invocation, Console& console)
{
    if (invocation.argument(0).isEmpty())
        throw usageError(u"the channel's name is empty"_s);
    if (invocation.argument(1).isEmpty())
        throw usageError(u"the message's name is empty"_s);
    PayloadWriter writer;
    for (const QString& typed : invocation.arguments().mid(2))
        writeTyped(writer, typed);
    sendMessage(invocation.argument(0), invocation.argument(1), writer.payload(), console);
    return Done;
}

} // namespace

void sendMessage(const QString& channel, const QString& message, const QByteArray& payload, Console& console)
{
    if (!QCopChannel::send(channel.toUtf8(), message.toUtf8(), payload))
        throw failure(u"cannot send on %1"_s.arg(channel));
    console.write(u"sent\n"_s);
}

void requireChannel(const char* channel, const QString& use)
{
    // Who can listen can send: both need the channels' directory, and nothing else.
    if (!QCopChannel(channel).isListening())
        throw failure(u"cannot %1 %2"_s.arg(use, QLatin1String(channel)));
}

Command sendCommand()
{
    return {.name = u"send"_s,
            .summary = u"Send any message with any payload"_s,
            .details = u"\nThe payload's fields, in their order:\n"
                       "  int:-5       a number of 32 bits\n"
                       "  char:-1      a byte, -128 to 127\n"
                       "  byte:200     a byte, 0 to 255\n"
                       "  bool:1       0 or 1, as a number of 32 bits\n"
                       "  text:Hello   a text\n"
                       "  null         a null text\n"
                       "  hex:00ff12   bytes as they are\n"_s,
            .arguments = {{u"CHANNEL"_s, u"such as /ZYN/phone"_s},
                          {u"MESSAGE"_s, u"such as PHONE_MSG_13"_s},
                          {u"TYPE:VALUE"_s, u"a field of the payload"_s, Argument::Any}},
            .words = {{u"CHANNEL"_s, channelNames()}},
            .run = send};
}

} // namespace zyn::tool
