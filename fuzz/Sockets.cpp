// The command sockets: what servers make of their clients' bytes, and clients of their server's.
#include "fuzz/Fuzz.h"

#include "handset/phone_server/ClientConnection.h"
#include "handset/phone_server/ControlConnection.h"
#include "handset/phone_server/DeskModem.h"
#include "handset/phone_server/PhoneControl.h"
#include "handset/recentcall_service/ServiceConnection.h"
#include "platform/Socket_Command.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RC_Interface.h"
#include "tests/support/ScriptedService.h"
#include "utility/PHONE_VoiceCallConnection_p.h"
#include "utility/PHONE_VoiceSTK.h"

#include <QtCore/QCoreApplication>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <sys/socket.h>

namespace zyn::fuzz {
namespace {

/// Nothing ends by itself in a run: what would, is ended by its client.
constexpr std::chrono::hours kTimeout{1};

std::pair<posix::UniqueFd, posix::UniqueFd> connectedSockets()
{
    std::array<int, 2> ends{};
    require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) == 0,
            "there are sockets");
    return {posix::UniqueFd(ends[0]), posix::UniqueFd(ends[1])};
}

struct Command
{
    int32_t code;
    QByteArray data;

    bool operator==(const Command&) const = default;
};

QByteArray frame(int32_t code, const QByteArray& data = {})
{
    return ScriptedService::frame(code, data);
}

template<typename Plain>
QByteArray frameOf(int32_t code, const Plain& plain)
{
    return frame(code, bytesOf(plain).toByteArray());
}

/// The whole commands at the start of @p bytes; @p rest, if it is not null, becomes what follows them.
std::vector<Command> commandsIn(QByteArrayView bytes, QByteArrayView* rest = nullptr)
{
    std::vector<Command> commands;
    while (bytes.size() >= qsizetype{CommandFrameHeader::kSize}) {
        const auto header = std::as_bytes(std::span(bytes.data(), CommandFrameHeader::kSize));
        const auto decoded = CommandFrameHeader::decode(header.first<CommandFrameHeader::kSize>());
        const auto behind = bytes.sliced(qsizetype{CommandFrameHeader::kSize});
        if (!decoded || decoded->dataLength > behind.size())
            break;
        commands.push_back({decoded->code, behind.first(decoded->dataLength).toByteArray()});
        bytes = behind.sliced(decoded->dataLength);
    }
    if (rest)
        *rest = bytes;
    return commands;
}

void receiveInto(QByteArray& received, int socket)
{
    std::array<char, 16 * 1024> buffer; // NOLINT: only what is read is used
    for (ssize_t size = 0; (size = ::recv(socket, buffer.data(), buffer.size(), 0)) > 0;)
        received.append(buffer.data(), size);
}

/// What the connection that @p make gives for a socket answers to @p bytes, behind which its client closes.
template<typename Make>
std::vector<Command> answersTo(QByteArrayView bytes, Make make)
{
    constexpr int kMostTurns = 100'000;
    auto [client, server] = connectedSockets();
    const auto connection = make(std::move(server));
    bool isOver = false;
    QObject::connect(connection.get(), &handset::CommandConnection::finished, [&] { isOver = true; });
    QByteArray answers;
    for (int turn = 0; turn < kMostTurns && !isOver; ++turn) {
        const ssize_t sent = ::send(client.get(), bytes.data(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
        if (sent > 0)
            bytes = bytes.sliced(sent);
        if (bytes.isEmpty())
            ::shutdown(client.get(), SHUT_WR);
        connection->serve();
        receiveInto(answers, client.get());
        QCoreApplication::processEvents();
    }
    require(isOver, "a connection ends when its client has closed");
    receiveInto(answers, client.get());
    QByteArrayView rest;
    std::vector<Command> commands = commandsIn(answers, &rest);
    require(rest.isEmpty(), "answers are whole");
    return commands;
}

/// Reading commands from a socket, and writing them.
void readCommands(Input& input)
{
    const QByteArray bytes = input.rest();
    auto [reader, writer] = connectedSockets();
    require(::send(writer.get(), bytes.data(), static_cast<size_t>(bytes.size()), 0) == bytes.size(),
            "a socket holds an input");
    ::shutdown(writer.get(), SHUT_WR);
    for (const Command& expected : commandsIn(bytes)) {
        const std::unique_ptr<UTIL_CommandBody> command(Socket_ReadCommand(reader.get()));
        require(command != nullptr, "a whole command is read");
        const auto data = commandData(*command);
        require(command->commandId == expected.code
                    && QByteArrayView(data.data(), std::ssize(data)) == QByteArrayView(expected.data),
                "a command comes as it was sent");
        require(Socket_WriteCommand(reader.get(), command.get()) == 0, "it can be sent on");
    }
    require(!std::unique_ptr<UTIL_CommandBody>(Socket_ReadCommand(reader.get())), "a broken command is none");
}

QList<QByteArray> commandSeeds()
{
    return {frame(0, QByteArray(4, '\0')) + frame(3) + frame(-1, "data"), frame(1).chopped(1), frame(7, "x").chopped(1),
            QByteArray::fromHex("01000000ffffffff"), QByteArray::fromHex("0100000001001000")};
}

PHONE_ENG_RecentCall call(RC_CALL_CATEGORY_T category, int32_t uid)
{
    PHONE_ENG_RecentCall record(QStringLiteral("0301112222"), QDateTime::fromSecsSinceEpoch(1'700'000'000), 60);
    record.setDisplayName(QStringLiteral("Dora"));
    record.category = category;
    record.inUse = 1;
    record.uid = uid;
    return record;
}

/// The recent-call service: a client that sends anything.
void serveRecentCalls(Input& input)
{
    const Folder folder;
    handset::CallLog calls;
    const auto answers = answersTo(input.rest(), [&](posix::UniqueFd socket) {
        return std::make_unique<handset::ServiceConnection>(std::move(socket), calls, kTimeout);
    });
    for (const auto& [code, data] : answers) {
        require(code >= recentcall::Success && code <= recentcall::Failure, "an answer has a status");
        if (data.isEmpty())
            continue;
        require(data.size() >= qsizetype{sizeof(recentcall::ListHeader)}, "a list has a header");
        const auto header = toPlain<recentcall::ListHeader>(std::as_bytes(std::span(data)));
        constexpr auto kHeader = qsizetype{sizeof header};
        constexpr auto kRecord = qsizetype{sizeof(PHONE_ENG_RecentCall)};
        require(header.count >= 0 && header.count <= header.limit && data.size() == kHeader + header.count * kRecord,
                "a list holds what it says");
    }
}

QList<QByteArray> recentCallSeeds()
{
    using namespace recentcall;
    const QByteArray greeting = frameOf(0, int32_t{0});
    const QByteArray all = frameOf(ListRecords, Selection{RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE});
    const PHONE_ENG_RecentCall missed = call(RC_CALL_CATEGORY_MISSED, 0);
    const QByteArray added = frameOf(AddRecord, missed);
    return {
        greeting + all,
        greeting + added,
        greeting + added + frameOf(AddRecord, call(RC_CALL_CATEGORY_DIALED, 1)) + all,
        greeting + added + frameOf(MarkRead, missed) + frameOf(DeleteRecord, missed) + all,
        greeting + added + frameOf(DeleteAll, Selection{RC_CALL_CATEGORY_MISSED, RC_CALL_TYPE_VOICE}) + all,
        frameOf(0, int32_t{1}) + all,
        all,
    };
}

/// A telephone line with the states that it tells; placed calls proceed at once.
struct Line
{
    Folder folder;
    handset::PhoneStatus status;
    handset::DeskModem modem{{.step = std::chrono::milliseconds(0), .talk = std::chrono::milliseconds(0)}};
    handset::PhoneLine line{modem, status};
};

/// The phone server's socket for applications.
void servePhoneClients(Input& input)
{
    Line phone;
    const auto answers = answersTo(input.rest(), [&](posix::UniqueFd socket) {
        return std::make_unique<handset::ClientConnection>(std::move(socket), phone.line, kTimeout);
    });
    for (const Command& answer : answers)
        require(voicecall::isReply(answer.code) && answer.data.isEmpty(), "an answer is the state of a call");
}

QList<QByteArray> phoneClientSeeds()
{
    using namespace voicecall;
    const QByteArray toolkit = frameOf(PHONE_VOICECALL_CMD_REGISTER, int32_t{SimToolkit});
    const QByteArray java = frameOf(PHONE_VOICECALL_CMD_REGISTER, int32_t{Java});
    const QByteArray ends = frame(PHONE_VOICECALL_CMD_END_CALL) + frame(PHONE_VOICECALL_CMD_UNREGISTER);
    const SimCall simCall{"0301112222", {}};
    const JavaCall javaCall{1, "0301112222", {}};
    return {
        toolkit + frameOf(PHONE_VOICECALL_CMD_MAKE_CALL, simCall) + ends,
        java + frameOf(PHONE_VOICECALL_CMD_MAKE_CALL, javaCall) + frame(PHONE_VOICECALL_CMD_DIAL_EXTENSION, "5") + ends,
        java + java,
        ends,
    };
}

/// The phone server's socket for who plays network and parties.
void serveControl(Input& input)
{
    Line phone;
    const auto answers = answersTo(input.rest(), [&](posix::UniqueFd socket) {
        return std::make_unique<handset::ControlConnection>(std::move(socket), phone.line, kTimeout);
    });
    for (const Command& answer : answers)
        require(answer.code >= phonecontrol::Done && answer.code <= phonecontrol::ModemIs, "an answer is known");
}

QList<QByteArray> controlSeeds()
{
    using namespace phonecontrol;
    const auto say = [](const QByteArrayList& words) { return frame(Say, words.join('\0') + '\0'); };
    const QByteArray rings = say({"incoming", "0301112222", "Dora"});
    return {
        rings + frame(ListCalls) + say({"answer"}) + say({"hangup"}),
        frame(FollowCalls) + rings + say({"missed"}),
        say({"battery-capacity", "80"}) + say({"snapshot"}),
        say({"fail"}) + say({"+5", "answer"}) + frame(Say),
        frame(AskModem) + frame(Unlock, QByteArray("1234", 5)) + frame(Unlock, QByteArray("12345678\0004321", 14)),
    };
}

/// The library's interface to the recent calls: a service that answers anything.
void askForRecentCalls(Input& input)
{
    const int what = input.below(4);
    socketDirectory(recentcall::kSocketDirectory);
    const ScriptedService service(recentcall::kSocketPath, input.rest());
    PHONE_ENG_RecentCall record = call(RC_CALL_CATEGORY_MISSED, 1);
    if (what == 1) {
        PHONE_RecentCall_DeleteRecord(record);
    } else if (what == 2) {
        PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE);
    } else if (what == 3) {
        recentcall::markRead(record);
    } else {
        QPtrList<RC_RecordInterface> calls;
        const int result = RC_Interface().getRecordList(calls, RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE);
        require(result == 0 || calls.isEmpty(), "a failure gives no calls");
        for (const RC_RecordInterface* shown : calls)
            require(shown->getPhoneNumber().size() <= qsizetype{sizeof record.phoneNumber}, "a number fits its field");
    }
}

QList<QByteArray> recentCallAnswerSeeds()
{
    using namespace recentcall;
    const QByteArray record = bytesOf(call(RC_CALL_CATEGORY_MISSED, 1)).toByteArray();
    const auto list = [&](int32_t count, int32_t limit, const QByteArray& records) {
        return '\0' + frame(Success, bytesOf(ListHeader{count, limit}).toByteArray() + records);
    };
    return {list(2, 150, record + record), list(9, 150, record.chopped(1)), list(-1, 3, record),       list(0, 0, {}),
            '\1' + frame(Success),         '\2' + frame(Failure),           '\3' + frame(NoSuchRecord)};
}

class VoiceCallClient : public QObject
{
public:
    void readReply(int /*socket*/) {}
};

/// The clients of the phone server's socket: a server that sends anything.
void hearPhoneServer(Input& input)
{
    const QByteArray bytes = input.rest();
    auto [client, server] = connectedSockets();
    require(::send(server.get(), bytes.data(), static_cast<size_t>(bytes.size()), 0) == bytes.size(),
            "a socket holds an input");
    ::shutdown(server.get(), SHUT_WR);
    const int socket = client.get();
    VoiceCallClient receiver;
    VoiceCallConnection connection(client.release(), &receiver, &VoiceCallClient::readReply);
    size_t replies = 0;
    while (connection.isOpen()) {
        const auto reply = connection.readReply(socket);
        require(!reply || voicecall::isReply(reply->commandId), "a reply means something");
        replies += reply ? 1 : 0;
    }
    require(replies <= commandsIn(bytes).size(), "no reply is made up");
}

QList<QByteArray> phoneServerSeeds()
{
    using namespace voicecall;
    return {frame(CallDialing) + frame(CallAlerting) + frame(CallConnected) + frame(CallEnded),
            frame(CallFailed, "data"), frame(0) + frame(1) + frame(CallEnded).chopped(1)};
}

constexpr std::array kSocketTargets{
    Target{"socket_commands", "Socket_ReadCommand() and Socket_WriteCommand()", readCommands, commandSeeds},
    Target{"recentcall_service", "zyn-recentcalld's commands", serveRecentCalls, recentCallSeeds},
    Target{"recentcall_client", "answers of the recent-call service", askForRecentCalls, recentCallAnswerSeeds},
    Target{"phone_service", "zyn-phoned's commands of applications", servePhoneClients, phoneClientSeeds},
    Target{"phone_control", "zyn-phoned's commands of who plays the network", serveControl, controlSeeds},
    Target{"phone_client", "answers of the phone server", hearPhoneServer, phoneServerSeeds},
};

} // namespace

std::span<const Target> socketTargets()
{
    return kSocketTargets;
}

} // namespace zyn::fuzz
