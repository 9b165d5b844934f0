// The messages of the phone channel: their fields, and what becomes of each.
#pragma once

#include "platform/QCString.h"
#include "utility/PHONE_Log_p.h"
#include "utility/PHONE_Msg.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/message/Payload_p.h"
#include <QtCore/QPointer>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>
#include <type_traits>
#include <utility>

namespace zyn {

inline constexpr char kClientSource[] = "utility/PHONE_MsgClient";

/// How a field becomes what is logged or emitted of it.
enum class Rule : uint8_t { AsItIs, NotZero, IsZero, IsOne, LowByte };

struct Argument
{
    size_t field;
    Rule rule;
};

constexpr Argument value(size_t field)
{
    return {field, Rule::AsItIs};
}

constexpr Argument notZero(size_t field)
{
    return {field, Rule::NotZero};
}

constexpr Argument isZero(size_t field)
{
    return {field, Rule::IsZero};
}

constexpr Argument isOne(size_t field)
{
    return {field, Rule::IsOne};
}

constexpr Argument lowByte(size_t field)
{
    return {field, Rule::LowByte};
}

/// The number that is logged or emitted of a field.
int32_t number(const FieldValues& values, Argument argument);

/// Emits a client's signals for as long as it lives: a receiver may destroy it in the middle of a message.
class Emitter
{
public:
    /// @param line  where the client receives, for the trace lines of single messages
    Emitter(PHONE_MsgClient& client, int line)
        : m_client(&client)
        , m_line(line)
    {}

    template<typename... Parameters, typename... Arguments>
    void operator()(void (PHONE_MsgClient::*signal)(Parameters...), Arguments&&... arguments) const
    {
        if (m_client)
            std::invoke(signal, *m_client, std::forward<Arguments>(arguments)...);
    }

    /// Prints the trace line of the client's receive().
    void trace() const { logEntry(kPhoneLogLevel, kClientSource, "receive", m_line); }

private:
    QPointer<PHONE_MsgClient> m_client;
    int m_line;
};

/// The argument as the type that a signal takes.
template<typename T>
T convert(FieldValues& values, Argument argument)
{
    if constexpr (std::is_same_v<T, QString>)
        return values[argument.field].text;
    else if constexpr (std::is_same_v<T, UINT8*>)
        return reinterpret_cast<UINT8*>(values[argument.field].bytes.data());
    else
        return static_cast<T>(number(values, argument));
}

/// Emits @p Signal with @p Arguments, one for each of its parameters.
template<auto Signal, Argument... Arguments>
void emits(const Emitter& emitter, FieldValues& values)
{
    [&]<typename... Parameters>(void (PHONE_MsgClient::*signal)(Parameters...)) {
        emitter(signal, convert<Parameters>(values, Arguments)...);
    }(Signal);
}

/// @{ What is more than one signal, or a signal of more than plain fields.
void emitSnapshot(const Emitter& emitter, FieldValues& values);
void emitNetworkStatus(const Emitter& emitter, FieldValues& values);
void emitProviderName(const Emitter& emitter, FieldValues& values);
void emitNetworkList0(const Emitter& emitter, FieldValues& values);
void emitNetworkList1(const Emitter& emitter, FieldValues& values);
/// @}

/// One debug line: a printf format with at most one conversion, %d for a number or %s for a text, and its
/// argument.
struct LogLine
{
    const char* format;
    Argument argument = {};
    const char* banner = nullptr; ///< printed before and after the line

    constexpr bool printsText() const { return std::string_view(format).find("%s") != std::string_view::npos; }
};

/// One message type. A request has neither log lines nor signals: the client receives its own and ignores it.
/// For constants only: the lists do not own what is in them.
struct PhoneMessage
{
    PHONE_Msg::PHONE_MSG_TYPE_T type;
    const char* enumerator; ///< null for the number without a use
    const char* name;       ///< the type's name for people, null for the number without a use
    std::initializer_list<Field> fields;
    std::initializer_list<LogLine> log;
    void (*emitSignals)(const Emitter& emitter, FieldValues& values); ///< null when there are none

    constexpr bool isStatus() const { return emitSignals || log.size() > 0; }
};

/// All types; the index is the type.
std::span<const PhoneMessage> phoneMessages();

} // namespace zyn

class PHONE_MsgClient;

namespace zyn {

/// Reads, logs and emits one message. One that is not a status message of the phone channel is ignored.
/// @param line  of the call, for the trace lines
void deliver(PHONE_MsgClient& client, const QCString& name, const QByteArray& payload, int line = __builtin_LINE());

} // namespace zyn
