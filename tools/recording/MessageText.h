// A message as one line for people, and as an object for programs.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

struct MessageFields;

/// A message as a listener got it.
struct ReceivedMessage
{
    QDateTime time; ///< when it came
    QCString channel;
    QCString name;
    QByteArray payload;
};

/// The name of a channel or a message: quoted unless it is one printable word.
QString nameText(const QCString& name);

/// "name=value" for each field, and for what no field holds, of which the first 64 bytes are shown. Only printable
/// characters come out.
QStringList fieldTexts(const MessageFields& fields);

/// Time, channel, name, enumerator and fields, without a line end; with the whole payload when @p raw is set.
QString messageText(const ReceivedMessage& message, bool raw);

/// The same with the field names that the monitor's help tells, the time in UTC.
QJsonObject messageJson(const ReceivedMessage& message, bool raw);

} // namespace zyn::tool
