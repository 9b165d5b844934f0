// A call that is added through the recent-call service, beside a bare server that stores what it is sent.
#include "bench/Service.h"

#include "bench/Child.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/RecordFile_p.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace bench {
namespace {

using Call = PHONE_ENG_RecentCall;
using Add = std::function<void(const Call& call)>;

constexpr auto kServedList = RC_CALL_CATEGORY_ANSWERED;
constexpr int kAdds = 50;

std::string filePath(const QByteArray& directory)
{
    return directory.toStdString() + "/phone" + zyn::recordFileName(kServedList);
}

/// The list's file as it is now, whoever writes it.
class SeenFile
{
public:
    explicit SeenFile(const std::string& path)
    {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        m_image = ::mmap(nullptr, static_cast<size_t>(zyn::RecordFile::size()), PROT_READ, MAP_SHARED, fd, 0);
        ::close(fd);
        require(m_image != MAP_FAILED, "the list's file");
    }
    SeenFile(const SeenFile&) = delete;
    SeenFile& operator=(const SeenFile&) = delete;
    ~SeenFile() { ::munmap(m_image, static_cast<size_t>(zyn::RecordFile::size())); }

    /// Looks until the call that started at @p start is stored.
    void waitFor(int32_t start) const
    {
        const auto* const calls =
            reinterpret_cast<const volatile Call*>(static_cast<const std::byte*>(m_image) + zyn::RecordFile::offset(0));
        for (const int64_t end = now() + 10'000'000'000; now() < end;) {
            for (int slot = 0; slot < zyn::kRecordSlots; ++slot) {
                if (calls[slot].startTime == start)
                    return;
            }
        }
        require(false, "a call that is stored");
    }

private:
    void* m_image;
};

/// The median of some additions, until they returned or until they were stored.
double sampleAdds(const Add& add, const SeenFile& file, bool untilStored)
{
    static int32_t start = 1'000'000;
    std::vector<double> taken;
    for (int i = 0; i < kAdds; ++i) {
        Call call;
        call.category = kServedList;
        call.inUse = 1;
        call.startTime = ++start;
        const int64_t begin = now();
        add(call);
        const int64_t returned = now();
        file.waitFor(start);
        taken.push_back(static_cast<double>((untilStored ? now() : returned) - begin));
    }
    std::ranges::sort(taken);
    return taken[taken.size() / 2];
}

void makeFile(const QByteArray& directory)
{
    require(QDir().mkpath(QString::fromLocal8Bit(directory + "/phone")), "the store's directory");
    zyn::RecordFile::create(QByteArray::fromStdString(filePath(directory)));
}

void addThroughService(const Call& call)
{
    Call copy = call;
    require(PHONE_RecentCall_AddRecord(copy) == 0, "adding through the service");
}

sockaddr_un bareAddress(const std::string& directory)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    (directory + "/bare").copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

int bareSocket()
{
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

/// What the library sends in all, in one piece.
void addThroughSocket(const sockaddr_un& address, const Call& call)
{
    struct
    {
        std::array<int32_t, 5> greetingAndCommand = {};
        Call call;
    } request;
    request.call = call;
    const int connection = bareSocket();
    require(::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
                && ::send(connection, &request, sizeof request, MSG_NOSIGNAL) == ssize_t{sizeof request},
            "adding through a bare socket");
    ::close(connection);
}

Prepare addOurs(bool untilStored)
{
    return [untilStored](const QByteArray& directory) -> Job {
        const auto service = std::make_shared<Service>("zyn-recentcalld", directory);
        const auto file = std::make_shared<SeenFile>(filePath(directory));
        return {.run = nullptr,
                .sample = [service, file, untilStored] { return sampleAdds(addThroughService, *file, untilStored); }};
    };
}

Prepare addBare(bool untilStored)
{
    return [untilStored](const QByteArray& directory) -> Job {
        makeFile(directory);
        const auto server = std::make_shared<Child>(inRole({"server", directory.toStdString()}));
        server->line();
        const auto file = std::make_shared<SeenFile>(filePath(directory));
        const Add add = [address = bareAddress(directory.toStdString())](const Call& call) {
            addThroughSocket(address, call);
        };
        return {.run = nullptr,
                .sample = [server, file, add, untilStored] { return sampleAdds(add, *file, untilStored); }};
    };
}

} // namespace

std::string program(const std::string& name)
{
    return QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath().toStdString() + '/' + name;
}

Service::Service(const std::string& name, const QByteArray& directory)
{
    makeFile(directory);
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", directory);
    qputenv("ZYN_APP_WRITE_PATH", directory);
    const int64_t start = now();
    m_process.emplace(Child::Words{program(name), "--ready-fd", "0"}, Child::Log::Dropped);
    m_process->line();
    m_readyAfter = static_cast<double>(now() - start);
}

int serveBare(const std::vector<std::string>& words)
{
    const sockaddr_un address = bareAddress(words.at(0));
    const int listener = bareSocket();
    const int file = ::open(filePath(QByteArray::fromStdString(words.at(0))).c_str(), O_RDWR | O_CLOEXEC);
    require(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
                && ::listen(listener, 16) == 0 && file >= 0,
            "a bare server");
    answer("ready");
    std::array<std::byte, 20 + sizeof(Call)> request = {};
    for (int slot = 0;; slot = (slot + 1) % zyn::kRecordSlots) {
        const int connection = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        require(
            ::recv(connection, request.data(), request.size(), MSG_WAITALL) == ssize_t{request.size()}
                && ::pwrite(file, request.data() + 20, sizeof(Call), static_cast<off_t>(zyn::RecordFile::offset(slot)))
                       == ssize_t{sizeof(Call)},
            "a bare server");
        ::close(connection);
    }
}

/// With as many clients that have greeted the service and say nothing.
Prepare addBesideClients(int clients)
{
    return [clients](const QByteArray& directory) -> Job {
        const auto service = std::make_shared<Service>("zyn-recentcalld", directory);
        const auto file = std::make_shared<SeenFile>(filePath(directory));
        const auto sample = [service, file, clients] {
            std::vector<zyn::posix::UniqueFd> others;
            for (int i = 1; i < clients; ++i) {
                others.push_back(zyn::recentcall::connectToService());
                require(others.back().isValid(), "a client of the service");
            }
            return sampleAdds(addThroughService, *file, true);
        };
        return {.run = nullptr, .sample = sample};
    };
}

std::vector<Row> serviceRows()
{
    return {
        {"add through the service, until returned", 2, kLimit, {{kOurs, addOurs(false)}, {kLimit, addBare(false)}}},
        {"add through the service, until stored", 2, kLimit, {{kOurs, addOurs(true)}, {kLimit, addBare(true)}}},
    };
}

} // namespace bench
