// The status messages of the phone server.
#pragma once

#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QByteArray>

#include <initializer_list>

namespace zyn::handset {

/// Sends @p message with @p payload to all who listen to the phone channel.
void reportStatus(const PhoneMessage& message, const QByteArray& payload);
/// Sends the message of @p type with @p values for its fields.
void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<FieldValue> values = {});

} // namespace zyn::handset
