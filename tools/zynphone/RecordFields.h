// The records of the telephony platform that are a message's whole payload: taken apart, and put together.
#pragma once

#include "tools/zynphone/Command.h"
#include "tools/zynphone/MessageFields.h"
#include "utility/PHONE_PayloadFields_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QStringList>

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

/// The options of allStatusFrom(), one for each field of the all-status record.
QList<QCommandLineOption> allStatusOptions();
/// The all-status record with the fields that @p call sets; the others are 0.
QByteArray allStatusFrom(const Invocation& call);

/// The network list of @p words, which are an id and a name for each network.
QByteArray networkListFrom(const QStringList& words);

} // namespace zyn::tool
