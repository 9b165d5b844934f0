// How the tool ends: exit codes, errors of verbs, and the diagnosis of a service that does not answer.
#include "tools/zynphone/ExitCode.h"

#include "platform/CommandFrame_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tools/zynphone/SocketProbe.h"
#include "utility/PHONE_CommandSocket_p.h"

#include <QtCore/QFile>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <span>
#include <thread>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using posix::Clock;
using posix::Delivery;

constexpr std::chrono::seconds kProbeTimeout{1};
constexpr std::chrono::milliseconds kProbeInterval{10};

/// Whether the service at @p path reads what it is sent, which one that hangs does not.
bool isReading(const QByteArray& path)
{
    const posix::UniqueFd connection = posix::connectUnixAtOnce(path);
    const auto deadline = Clock::now() + kProbeTimeout;
    const auto greeting = CommandFrameHeader{kGreetingCommand, sizeof(int32_t)}.encode();
    const std::byte data[sizeof(int32_t)] = {};
    if (!connection.isValid() || !posix::sendAll(connection.get(), std::as_bytes(std::span(greeting)), data, deadline))
        return false;
    while (posix::deliveryOn(connection.get()) == Delivery::Pending) {
        if (Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(kProbeInterval);
    }
    return true;
}

} // namespace

CommandError serviceError(const QString& service, const QString& path)
{
    const QByteArray file = QFile::encodeName(path);
    const SocketProbe probe = SocketProbe::at(file);
    switch (probe.state) {
    case SocketProbe::Foreign:
        return failure(u"the %1 at %2 belongs to another user"_s.arg(service, path));
    case SocketProbe::Served:
    case SocketProbe::Stopped:
    case SocketProbe::Busy:
        if (probe.state == SocketProbe::Served && isReading(file))
            return failure(u"the %1 at %2 could not do it"_s.arg(service, path));
        return noAnswerError(service, path);
    default:
        return failure(u"no %1 at %2"_s.arg(service, path));
    }
}

CommandError noAnswerError(const QString& service, const QString& path)
{
    using std::chrono::seconds;
    return failure(u"the %1 at %2 did not answer within %3 seconds"_s.arg(service, path)
                       .arg(std::chrono::duration_cast<seconds>(kCommandTimeout).count()));
}

CommandError recentCallServiceError()
{
    return serviceError(u"recent-call service"_s, QLatin1String(recentcall::kSocketPath));
}

} // namespace zyn::tool
