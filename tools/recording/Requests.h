// The messages that ask for something, apart from those that only tell.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QString>

namespace zyn::tool {

/// What the programs of a handset do when the message @p name comes on @p channel; empty when it only tells something.
QString requestedAction(const QCString& channel, const QCString& name);

} // namespace zyn::tool
