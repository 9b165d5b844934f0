// The sockets of the handset's services, and who serves them.
#include "handset/phone_server/PhoneControl.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "tools/zynphone/SocketProbe.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct Service
{
    const char* socket;
    const char* name;
    const char* program;
    const char* loss; ///< what fails without it
};

constexpr Service kServices[] = {
    {recentcall::kSocketPath, "the recent-call service", "zyn-recentcalld", "no call is logged or listed"},
    {voicecall::kSocketPath, "the phone server", "zyn-phoned", "no call is placed and no status comes"},
};

/// By it, somebody at a desk plays the network. A handset's own phone server has none.
constexpr Service kControl{phonecontrol::kSocketPath, "the phone server", "zyn-phoned",
                           "zynphone phone cannot play the network"};

/// Why the directory of an unreachable socket keeps everybody out, if it does.
std::optional<Finding> directoryFault(const Service& service, const SocketProbe& probe)
{
    const QByteArray directory = parentOf(service.socket);
    const bool isUnreached = probe.state == SocketProbe::Dead || probe.state == SocketProbe::Missing
                             || probe.state == SocketProbe::NoSocket || probe.state == SocketProbe::Unreachable;
    if (!isUnreached || !exists(directory))
        return std::nullopt;
    const std::optional<Finding> fault = writableDirectoryFault(directory);
    return fault ? std::optional(*fault) : std::nullopt;
}

Finding checkService(const Service& service)
{
    const QString path = QLatin1String(service.socket);
    const QString name = QLatin1String(service.name);
    const QString start = u"start %1: %2 &"_s.arg(name, QLatin1String(service.program));
    const SocketProbe probe = SocketProbe::at(service.socket);
    if (const auto fault = directoryFault(service, probe))
        return *fault;
    switch (probe.state) {
    case SocketProbe::Served:
        return ok(path, u"served by %1"_s.arg(processText(probe.process)));
    case SocketProbe::Stopped:
        return wrong(path, u"%1, %2, serves it, but it is stopped"_s.arg(name, processText(probe.process)),
                     u"kill -CONT %1"_s.arg(probe.process));
    case SocketProbe::Foreign:
        return wrong(path, u"%1 there belongs to user %2, whom the library does not trust"_s.arg(name).arg(probe.user),
                     u"end that user's, then %1"_s.arg(start));
    case SocketProbe::Busy:
        return wrong(path, u"%1 takes no connections: too many wait"_s.arg(name),
                     u"see what it does, or end it and %1"_s.arg(start));
    case SocketProbe::Dead:
        return wrong(path, u"nobody serves this socket: %1"_s.arg(QLatin1String(service.loss)), start);
    case SocketProbe::Missing:
        return wrong(path, u"%1 does not run: %2"_s.arg(name, QLatin1String(service.loss)), start);
    case SocketProbe::NoSocket:
        return wrong(path, u"it is not a socket, so %1 cannot listen"_s.arg(name),
                     u"move it away: mv %1 %1.old; then %2"_s.arg(path, start));
    default:
        return wrong(path, u"no connection to %1: %2"_s.arg(name, probe.error), u"end it, then %1"_s.arg(start));
    }
}

/// Nothing where the phone server's other socket has the same fault, which is reported.
std::optional<Finding> checkControl()
{
    const SocketProbe server = SocketProbe::at(voicecall::kSocketPath);
    const SocketProbe control = SocketProbe::at(kControl.socket);
    if (server.state != SocketProbe::Served
        && (control.state == SocketProbe::Missing || (control.state == server.state && control.user == server.user)))
        return std::nullopt;
    if (control.state == SocketProbe::Missing)
        return note(QLatin1String(kControl.socket),
                    u"the phone server has no such socket: %1"_s.arg(QLatin1String(kControl.loss)),
                    u"on a desk, let zyn-phoned be the phone server"_s);
    return checkService(kControl);
}

} // namespace

Findings checkServices()
{
    Findings findings;
    for (const Service& service : kServices)
        findings.push_back(checkService(service));
    if (const auto finding = checkControl())
        findings.push_back(*finding);
    return findings;
}

} // namespace zyn::tool
