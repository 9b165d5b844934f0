// The status messages of the phone server, and what they have told so far.
#pragma once

#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QByteArray>

#include <chrono>
#include <initializer_list>
#include <span>
#include <vector>

namespace zyn::handset {

/// Sends status messages to all listeners of the phone channel, and remembers the states that they tell: for listeners
/// that come later.
class PhoneStatus
{
public:
    /// Sends the status message @p message with @p payload.
    void report(const PhoneMessage& message, const QByteArray& payload);
    /// Sends the status message of @p type with @p values for its fields.
    void report(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<FieldValue> values = {});

    /// Sends it unless it was the last one of its type, and told the same.
    void tell(PHONE_Msg::PHONE_MSG_TYPE_T type, std::span<const FieldValue> values);

    using Clock = std::chrono::steady_clock;

    /// Sends the last message of each state again, in the order in which they were told, but only what was told up to
    /// @p time; false when that is nothing.
    bool tellAgain(Clock::time_point time = Clock::now()) const;

private:
    struct Told
    {
        const PhoneMessage* message;
        QByteArray payload;
        Clock::time_point time;
    };
    std::vector<Told> m_told; ///< one for each message, the last one at the end
};

} // namespace zyn::handset
