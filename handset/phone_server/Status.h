// The status messages of the phone server.
#pragma once

#include "utility/PHONE_Msg.h"

#include <QtCore/QByteArray>

#include <cstdint>
#include <initializer_list>

namespace zyn::handset {

/// Sends the message of @p type with @p payload to all who listen to the phone channel.
void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, const QByteArray& payload);
/// The same with a payload of numbers of 32 bits.
void reportStatus(PHONE_Msg::PHONE_MSG_TYPE_T type, std::initializer_list<int32_t> numbers = {});

} // namespace zyn::handset
