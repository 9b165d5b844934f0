// A program that starts, sends one message or none, and ends: what it is built with says how.
#if defined ZYN_START_DBUS
#    include <dbus/dbus.h>

#    include <cstdlib>
#    include <string>

int main()
{
    const char* const directory = std::getenv("ZYN_QCOP_PATH");
    if (!directory)
        return EXIT_FAILURE;
    const std::string address = std::string("unix:path=") + directory + "/bus";
    DBusConnection* const bus = dbus_connection_open_private(address.c_str(), nullptr);
    if (!bus || !dbus_bus_register(bus, nullptr))
        return EXIT_FAILURE;
    DBusMessage* const message = dbus_message_new_signal("/zyn/bench", "zyn.bench", "message");
    dbus_connection_send(bus, message, nullptr);
    dbus_connection_flush(bus);
    return EXIT_SUCCESS;
}
#else
#    include "bench/Transports.h"

#    include <QtCore/QCoreApplication>

#    ifdef ZYN_START_CHANNEL
#        include "platform/QCopChannel.h"
#    endif

#    include <array>
#    include <cstdlib>
#    include <string>

#    include <sys/socket.h>
#    include <sys/un.h>

namespace {

[[maybe_unused]] bool sendBare()
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const char* const directory = std::getenv("ZYN_QCOP_PATH");
    if (!directory)
        return false;
    (std::string(directory) + "/0").copy(address.sun_path, sizeof address.sun_path - 1);
    const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    std::array<char, bench::kFrameSize> frame = {};
    frame[0] = char{bench::kFrameSize};
    return ::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
           && ::send(connection, frame.data(), frame.size(), MSG_NOSIGNAL) == ssize_t{bench::kFrameSize};
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
#    if defined ZYN_START_CHANNEL
    return QCopChannel::send("/ZYN/bench", "message", bench::kPayload) ? EXIT_SUCCESS : EXIT_FAILURE;
#    elif defined ZYN_START_SOCKET
    return sendBare() ? EXIT_SUCCESS : EXIT_FAILURE;
#    else
    return EXIT_SUCCESS;
#    endif
}
#endif
