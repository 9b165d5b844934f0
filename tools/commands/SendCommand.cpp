// zynphone send: any message with any payload.
#include "tools/commands/MessageSending.h"

#include "tools/commands/Commands.h"

#include "handset/common/FieldWords.h"
#include "platform/QCopChannel.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "tools/commands/Candidates.h"
#include "tools/commands/Channels.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/SocketProbe.h"
#include "tools/zynphone/Text.h"

#include <algorithm>
#include <array>
#include <span>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr handset::WordReader kSendWords{wholeNumber, nullptr, nullptr};

/// A value type: its field kind, and its own parser if it needs one.
struct Type
{
    const char* text;
    FieldKind kind;
    FieldValue (*read)(const QString& word) = nullptr;
};

constexpr std::array kSentTypes{
    Type{"int", FieldKind::Int},
    Type{"char", FieldKind::Char},
    Type{"byte", FieldKind::Byte},
    Type{"bool", FieldKind::Int, [](const QString& word) -> FieldValue { return wholeNumber(word, u"bool"_s, 0, 1); }},
    Type{"text", FieldKind::Text},
    Type{"null", FieldKind::Text, [](const QString& /*word*/) { return FieldValue(); }},
    Type{"hex", FieldKind::Raw, [](const QString& word) -> FieldValue { return bytesFromHex(word); }},
};

/// The bytes of @p typed, a type and a value.
QByteArray typedBytes(const QString& typed)
{
    const qsizetype colon = typed.indexOf(u':');
    const QString name = typed.left(colon);
    const QString word = typed.mid(colon + 1);
    const Type type = wordNamed(kSentTypes, name, u"type"_s);
    const bool takesValue = QLatin1String(type.text) != "null"_L1;
    if (takesValue && colon < 0)
        throw usageError(u"missing value after '%1:'"_s.arg(name));
    if (!takesValue && colon >= 0)
        throw usageError(u"'%1' takes no value"_s.arg(name));
    const Field field{type.kind, type.text};
    const FieldValue value = type.read ? type.read(word) : valueFrom(kSendWords, field, word, name);
    return encode(std::span(&field, 1), std::span(&value, 1));
}

ExitCode send(const Invocation& invocation, Console& console)
{
    if (invocation.argument(0).isEmpty())
        throw usageError(u"the channel's name is empty"_s);
    if (invocation.argument(1).isEmpty())
        throw usageError(u"the message's name is empty"_s);
    QByteArray payload;
    for (const QString& typed : invocation.arguments().mid(2))
        payload += typedBytes(typed);
    return sendMessage(invocation.argument(0), invocation.argument(1), payload, console);
}

} // namespace

bool isHeard(const QCString& channel)
{
    const auto directory = ChannelDirectory::open(ChannelEnvironment::current().root(), channel);
    const auto listeners = directory ? directory->listeners() : QList<QByteArray>();
    return !listeners || std::ranges::any_of(*listeners, [&](const QByteArray& name) {
        const SocketProbe::State state = SocketProbe::of(directory->connectTo(name)).state;
        return state != SocketProbe::Dead && state != SocketProbe::Missing && state != SocketProbe::Foreign;
    });
}

CommandError nobodyListens(const QCString& channel)
{
    return {NobodyListens, u"sent; nobody listens on %1"_s.arg(QString::fromUtf8(channel))};
}

ExitCode sendOn(const QCString& channel, Console& console, const std::function<void()>& send)
{
    // Whoever begins to listen afterwards hears nothing of it.
    const bool reachesSomebody = isHeard(channel);
    send();
    if (!reachesSomebody)
        throw nobodyListens(channel);
    console.write(u"sent\n"_s);
    return Done;
}

ExitCode sendMessage(const QString& channel, const QString& message, const QByteArray& payload, Console& console)
{
    return sendOn(channel.toUtf8(), console, [&] {
        if (!QCopChannel::send(channel.toUtf8(), message.toUtf8(), payload))
            throw failure(u"cannot send on %1"_s.arg(channel));
    });
}

QString sendingDetails()
{
    return u"\nThe exit code is %1 when nobody listens on the channel: what was sent is lost.\n"_s.arg(
        int{NobodyListens});
}

void requireChannel(const char* channel, const QString& use)
{
    // Listening requires the channels' directory, just as sending does.
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
                       "  hex:00ff12   bytes as they are\n"_s
                       + sendingDetails(),
            .arguments = {{u"CHANNEL"_s, u"such as /ZYN/phone"_s},
                          {u"MESSAGE"_s, u"such as PHONE_MSG_13"_s},
                          {u"TYPE:VALUE"_s, u"a field of the payload"_s, Argument::Any}},
            .words = {{u"CHANNEL"_s, channelNames()}},
            .sources = {{u"MESSAGE"_s, messageNames}},
            .run = send};
}

} // namespace zyn::tool
