// What a program of the handset tells the service manager that started it.
#include "handset/common/ServiceManager.h"

#include "handset/common/Log.h"
#include "platform/posix/UniqueFd_p.h"
#include "platform/posix/UnixSocket_p.h"

#include <cerrno>
#include <chrono>
#include <cstring>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using namespace std::chrono_literals;

constexpr char kReady[] = "READY=1";
constexpr auto kTimeout = 5s;
/// Begins the name of a socket that has no file; in its address a NUL stands there.
constexpr char kAbstractMark = '@';

bool sendDatagram(QByteArray path, const QByteArray& text)
{
    using namespace zyn;
    if (path.size() > posix::kUnixPathLimit) {
        errno = ENAMETOOLONG;
        return false;
    }
    if (path.front() == kAbstractMark)
        path.front() = '\0';
    const posix::UniqueFd fd(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!fd.isValid())
        return false;
    posix::limitSends(fd.get(), kTimeout);
    const posix::UnixAddress address = posix::unixAddress(path);
    return posix::retry([&] {
               return ::sendto(fd.get(), text.constData(), size_t(text.size()), MSG_NOSIGNAL, address.get(),
                               address.length);
           })
           == text.size();
}

} // namespace

void tellServiceManagerReady()
{
    const QByteArray path = qgetenv("NOTIFY_SOCKET");
    if (!path.isEmpty() && !sendDatagram(path, kReady))
        log(u"the service manager at %1 does not hear: %2"_s.arg(QString::fromLocal8Bit(path),
                                                                 QString::fromLocal8Bit(std::strerror(errno))));
}

} // namespace zyn::handset
