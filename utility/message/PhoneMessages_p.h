// The messages of the phone channel: their fields, and what a client makes of each.
#pragma once

#include "platform/QCString.h"
#include "utility/PHONE_Msg.h"
#include "utility/message/Payload_p.h"

#include <initializer_list>
#include <span>
#include <string_view>

class PHONE_MsgClient;

namespace zyn {

/// The source that the trace lines of a client name.
inline constexpr char kClientSource[] = "utility/PHONE_MsgClient";

/// How a field becomes what is logged or emitted of it: not at all, for one.
enum class Rule : uint8_t { Unused, AsItIs, NotZero, IsZero, IsOne, LowByte };

struct Argument
{
    size_t field;
    Rule rule;
};

/// One debug line: a text, and behind it an argument, a number or a text, if it has one.
struct LogLine
{
    const char* text;
    Argument argument = {};
    const char* banner = nullptr; ///< printed before and after the line
    const char* end = nullptr;    ///< what follows the argument
};

class Emitter;
class LogText;

/// One message type. A request has neither log lines nor signals: the client receives its own and ignores it.
struct PhoneMessage : Message
{
    const char* word; ///< the type's name for people, null for the number without a use
    std::initializer_list<LogLine> log;
    /// Null when there are none. A record comes as its payload alone, any other message as its values.
    void (*emitSignals)(const Emitter& emitter, FieldValues& values, const QByteArray& payload);

    /// Whether clients are told of something, rather than the phone server asked.
    constexpr bool isStatus() const { return emitSignals || log.size() > 0; }
    constexpr bool isRequest() const { return !isStatus(); }
};

/// All types; the index is the type.
std::span<const PhoneMessage> phoneMessages();

/// The message of @p type, which is one of the enumerators.
inline const PhoneMessage& phoneMessage(PHONE_Msg::PHONE_MSG_TYPE_T type)
{
    return phoneMessages()[static_cast<size_t>(type)];
}

/// The message whose name is @p name to the byte; null when there is none.
const PhoneMessage* phoneMessage(const QCString& name);

/// Reads, logs and emits one message. One that is not a status message of the phone channel is ignored.
/// @param log   lines to write before those of the message
/// @param line  of the call, for the trace lines
void deliver(PHONE_MsgClient& client, const QCString& name, const QByteArray& payload, LogText& log,
             int line = __builtin_LINE());

} // namespace zyn
