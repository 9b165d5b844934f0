// What the messages of the phone channel emit.
#pragma once

#include "utility/PHONE_Log.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_PayloadFields_p.h"

#include <QtCore/QPointer>

#include <cstdint>
#include <functional>
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

} // namespace zyn
