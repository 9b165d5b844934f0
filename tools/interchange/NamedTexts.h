// A record put together from texts for its fields.
#pragma once

#include "tools/interchange/StoredField.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <utility>
#include <vector>

namespace zyn::tool {

using NamedText = std::pair<const StoredField*, QString>;

/// The bytes of @p field in @p record.
QByteArray fieldBytes(const StoredField& field, const QByteArray& record);

/// The field of that name; a failure that suggests another name when there is none.
const StoredField& fieldNamed(const RecordSchema& schema, const QString& name);

/// Throws unless @p given holds every field that a record of @p schema must have, and none twice.
void requireFields(const RecordSchema& schema, const std::vector<const StoredField*>& given);

/// The record with @p texts in its fields. Throws when a text does not fit its field; an empty one of a field that may
/// miss is as good as none.
QByteArray recordOf(const RecordSchema& schema, const std::vector<NamedText>& texts);

} // namespace zyn::tool
