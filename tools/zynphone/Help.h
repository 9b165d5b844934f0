// The help of a verb, made from its row of the verb table.
#pragma once

#include <QtCore/QString>

namespace zyn::tool {

struct Command;

/// The help of @p command, whose name with that of its groups is @p path.
QString helpText(const Command& command, const QString& path);

} // namespace zyn::tool
