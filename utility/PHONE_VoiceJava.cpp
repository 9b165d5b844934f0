// Calls of the Java runtime, placed over a connection to the phone server.
#include "utility/PHONE_VoiceJava.h"

#include "utility/FixedText_p.h"
#include "utility/PHONE_VoiceCallConnection_p.h"

#include <QtCore/QObject>

#include <cstring>
#include <utility>

/// The connection of the Java runtime, of which a process has one at most.
class JavaPrivateData : public QObject
{
    Q_OBJECT

public:
    using Callback = void (*)(char);

    /// @param socket    connected and registered; the client owns it
    /// @param callback  called with the low 8 bits of each reply's code; it may delete the client
    JavaPrivateData(int socket, Callback callback);
    ~JavaPrivateData() override;

    zyn::VoiceCallConnection& connection() { return m_connection; }

public Q_SLOTS:
    /// Reads one reply; called when @p socket, which is the client's, has something to read.
    void ReadData(int socket);

private:
    zyn::VoiceCallConnection m_connection;
    Callback m_callback;
};

namespace vc = zyn::voicecall;

namespace {

constexpr int kHandle = 1;
constexpr size_t kLongestNumber = sizeof(vc::JavaCall::number) - 1;

JavaPrivateData* g_instance = nullptr;

/// The instance that @p handle stands for; null when there is none or its connection is lost.
JavaPrivateData* connected(int handle)
{
    return handle == kHandle && g_instance && g_instance->connection().isOpen() ? g_instance : nullptr;
}

int send(int handle, vc::Command command, std::span<const std::byte> data = {})
{
    JavaPrivateData* const client = connected(handle);
    return client && client->connection().send(command, data) ? 0 : -1;
}

} // namespace

JavaPrivateData::JavaPrivateData(int socket, Callback callback)
    : m_connection(socket, this, &JavaPrivateData::ReadData)
    , m_callback(callback)
{}

JavaPrivateData::~JavaPrivateData() = default;

void JavaPrivateData::ReadData(int socket)
{
    if (const auto reply = m_connection.readReply(socket))
        m_callback(static_cast<char>(reply->commandId & 0xFF)); // which may have deleted this client
}

int PHONE_VoiceCall_Java_Init(void (*callback)(char))
{
    if (!callback || g_instance)
        return 0;
    zyn::posix::UniqueFd socket = zyn::VoiceCallConnection::open(vc::Java);
    if (!socket.isValid())
        return 0;
    g_instance = zyn::required(new (std::nothrow) JavaPrivateData(socket.release(), callback), "JavaPrivateData");
    return kHandle;
}

int PHONE_VoiceCall_Java_MakeCall(int handle, const char* number, int value)
{
    const size_t length = number ? qstrnlen(number, kLongestNumber + 1) : 0;
    if (length == 0 || length > kLongestNumber)
        return -1;
    vc::JavaCall call = {value, {}, {}};
    std::memcpy(call.number, number, length);
    return send(handle, vc::PHONE_VOICECALL_CMD_MAKE_CALL, std::as_bytes(std::span(&call, 1)));
}

int PHONE_VoiceCall_Java_EndCall(int handle)
{
    return send(handle, vc::PHONE_VOICECALL_CMD_END_CALL);
}

int PHONE_VoiceCall_Java_DialExtension(int handle, char character)
{
    return send(handle, vc::PHONE_VOICECALL_CMD_DIAL_EXTENSION, std::as_bytes(std::span(&character, 1)));
}

void PHONE_VoiceCall_Java_DeInit(int handle)
{
    if (handle != kHandle || !g_instance)
        return;
    g_instance->connection().unregister();
    delete std::exchange(g_instance, nullptr);
}

#include "PHONE_VoiceJava.moc"
