// The payload of a message as named values.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QByteArray>
#include <QtCore/QJsonValue>
#include <QtCore/QString>

#include <vector>

namespace zyn::tool {

/// One field of a message, or of the record that is its payload.
struct NamedValue
{
    QString name;
    QJsonValue value; ///< undefined if the payload ends before it
};

struct MessageFields
{
    bool isKnown = false; ///< the library defines this message
    QString enumerator;   ///< of the message's type; empty if it has none
    std::vector<NamedValue> values;
    QByteArray rest; ///< bytes after the last field; of an unknown message, all
};

/// Decodes a message. Numbers and texts are JSON numbers and texts, a null text is null; blocks are texts in the format
/// of blockText(), repeated fields are lists, and networks are objects with id and name.
MessageFields messageFields(const QCString& channel, const QCString& name, const QByteArray& payload);

} // namespace zyn::tool
