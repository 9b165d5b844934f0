// A message as one line for people, and as JSON for programs.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QJsonObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

struct MessageFields;

/// A received message.
struct ReceivedMessage
{
    QDateTime time; ///< of arrival
    QCString channel;
    QCString name;
    QByteArray payload;
};

/// A channel's or message's name, quoted unless it is one printable word.
QString nameText(const QCString& name);

/// "name=value" for each field, and up to 64 of the bytes after the last one. All characters are printable.
QStringList fieldTexts(const MessageFields& fields);

/// Time, channel, name, enumerator and fields, without a line end; with the whole payload if @p raw is set.
QString messageText(const ReceivedMessage& message, bool raw);

/// The same as JSON, with the field names in the monitor's help, the time in UTC.
QJsonObject messageJson(const ReceivedMessage& message, bool raw);

} // namespace zyn::tool
