// Why a service of the handset did not do what was asked.
#pragma once

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QString>

namespace zyn::tool {

/// Why a request to @p service, which listens at @p path, failed: found out by a connection to it, since the
/// library's results do not tell.
CommandError serviceError(const QString& service, const QString& path);

/// The same of a request to the recent-call service.
CommandError recentCallServiceError();

} // namespace zyn::tool
