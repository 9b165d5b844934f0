// Words and units for the values of messages, where their meaning is known.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QString>

#include <cstdint>

namespace zyn::tool {

/// What @p number means in the field @p field of the message @p name of @p channel: a word, or the number with its
/// unit. Empty when only the handset's platform knows.
QString valueWord(const QCString& channel, const QCString& name, const QString& field, int64_t number);

} // namespace zyn::tool
