// The records of the telephony platform that are a message's whole payload, taken apart.
#pragma once

#include "tools/recording/MessageFields.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QByteArray>

#include <span>

namespace zyn::tool {

/// The kind of the first of @p fields, which tells whether the payload is a record; Int when there is none.
inline FieldKind leadingKind(std::span<const Field> fields)
{
    return fields.empty() ? FieldKind::Int : fields.front().kind;
}

/// @{ Adds the values of the record that @p payload holds to @p message, and what lies behind them.
void readAllStatusInto(MessageFields& message, const QByteArray& payload);
void readNetworkListInto(MessageFields& message, const QByteArray& payload);
/// @}

} // namespace zyn::tool
