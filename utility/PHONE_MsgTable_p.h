// The messages of the phone channel: their fields, and what becomes of each.
#pragma once

#include "utility/PHONE_Msg.h"
#include "utility/PHONE_MsgSignals_p.h"
#include "utility/PHONE_PayloadFields_p.h"

#include <initializer_list>
#include <span>
#include <string_view>

namespace zyn {

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
