// The payload of a message, taken apart into named values.
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
    QJsonValue value; ///< undefined when the payload ends before the field does
};

struct MessageFields
{
    bool isKnown = false; ///< whether the library has such a message
    QString enumerator;   ///< of the message's type, empty when it has none
    std::vector<NamedValue> values;
    QByteArray rest; ///< what no field holds; of an unknown message all
};

/// Takes a message apart. Numbers are JSON numbers and texts JSON texts, a null one null; blocks are texts as
/// blockText() writes them, repeated fields lists, and the networks of a list objects with id and name.
MessageFields messageFields(const QCString& channel, const QCString& name, const QByteArray& payload);

} // namespace zyn::tool
