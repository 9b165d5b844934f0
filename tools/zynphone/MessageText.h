// A message as one line for people, and as an object for programs.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QJsonObject>
#include <QtCore/QString>

namespace zyn::tool {

/// A message as a listener got it.
struct ReceivedMessage
{
    QDateTime time; ///< when it came
    QCString channel;
    QCString name;
    QByteArray payload;
};

/// Time, channel, name, enumerator and fields, without a line end; with the whole payload when @p raw is set.
/// Of what no field holds the first 64 bytes are shown. Only printable characters come out.
QString messageText(const ReceivedMessage& message, bool raw);

/// The same with the field names that the monitor's help tells, the time in UTC.
QJsonObject messageJson(const ReceivedMessage& message, bool raw);

} // namespace zyn::tool
