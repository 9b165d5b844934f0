// How the tool ends: exit codes, errors of verbs, and the diagnosis of a service that does not answer.
#include "tools/zynphone/ExitCode.h"

#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"

#include <QtCore/QFile>

#include <chrono>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr std::chrono::seconds kProbeTimeout{1};

} // namespace

CommandError serviceError(const QString& service, const QString& path)
{
    const posix::UniqueFd probe = posix::connectUnix(QFile::encodeName(path), kProbeTimeout);
    if (!probe.isValid())
        return failure(u"no %1 at %2"_s.arg(service, path));
    if (!posix::isPeerTrusted(probe.get()))
        return failure(u"the %1 at %2 belongs to another user"_s.arg(service, path));
    return failure(u"the %1 at %2 could not do it"_s.arg(service, path));
}

CommandError recentCallServiceError()
{
    return serviceError(u"recent-call service"_s, QLatin1String(recentcall::kSocketPath));
}

} // namespace zyn::tool
