// zynphone java and stk: calls placed over a connection to the phone server.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "platform/CommandFrame_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/Text.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"
#include "utility/PHONE_VoiceJava.h"
#include "utility/PHONE_VoiceSTK.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QObject>
#include <QtCore/QScopeGuard>
#include <QtCore/QTimer>

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/un.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/**
 * Ends the event loop when the library closes its connection to a server, which it does not report.
 *
 * It closes the connection in the event loop, so this checks whenever the loop becomes idle.
 */
class ConnectionWatch
{
public:
    /// Watches the process's connection to the server socket @p socketName.
    explicit ConnectionWatch(const char* socketName);
    ConnectionWatch(const ConnectionWatch&) = delete;
    ConnectionWatch& operator=(const ConnectionWatch&) = delete;

    bool isLost() const;

private:
    QObject m_context;
    int m_socket;
    ino_t m_inode; ///< the descriptor's number may be reused
};

constexpr int kNoSocket = -1;

/// The path of the socket that @p fd is connected to; empty if there is none.
QByteArray peerName(int fd)
{
    sockaddr_un peer = {};
    socklen_t length = sizeof peer;
    if (::getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &length) != 0 || peer.sun_family != AF_UNIX)
        return {};
    const QByteArray path(peer.sun_path, qsizetype(qstrnlen(peer.sun_path, sizeof peer.sun_path)));
    return path.mid(path.lastIndexOf('/') + 1);
}

int findConnection(const char* socketName)
{
    const QDir descriptors(u"/proc/self/fd"_s);
    for (const QString& entry : descriptors.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        if (const int fd = entry.toInt(); peerName(fd) == socketName)
            return fd;
    }
    return kNoSocket;
}

/// The inode of @p fd.
std::optional<ino_t> inodeOf(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 ? std::optional(status.st_ino) : std::nullopt;
}

ConnectionWatch::ConnectionWatch(const char* socketName)
    : m_socket(findConnection(socketName))
    , m_inode(inodeOf(m_socket).value_or(0))
{
    QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &m_context, [this] {
        if (isLost())
            QCoreApplication::quit();
    });
}

bool ConnectionWatch::isLost() const
{
    return inodeOf(m_socket) != m_inode;
}

constexpr std::array<Word<int>, 5> kReplies{{
    {"dialing", voicecall::CallDialing},
    {"alerting", voicecall::CallAlerting},
    {"connected", voicecall::CallConnected},
    {"ended", voicecall::CallEnded},
    {"failed", voicecall::CallFailed},
}};

/// Shows the server's replies up to the call's last one.
class Replies
{
public:
    explicit Replies(Console& console)
        : m_console(console)
    {}

    void show(int code)
    {
        // More may arrive in the turn of the event loop that ends it.
        if (isOver())
            return;
        m_console.write(wordFor(kReplies, code) + u'\n');
        m_last = code;
        if (isOver() || !m_console.isValid())
            QCoreApplication::quit();
    }

    bool hasBegun() const { return m_last != 0; }
    bool isOver() const { return m_last == voicecall::CallEnded || hasFailed(); }
    bool hasFailed() const { return m_last == voicecall::CallFailed; }

private:
    Console& m_console;
    int m_last = 0;
};

QString serverPath()
{
    return QLatin1String(voicecall::kSocketDirectory) + u'/' + QLatin1String(voicecall::kSocketName);
}

CommandError serverError()
{
    return serviceError(u"phone server"_s, serverPath());
}

/// Runs the event loop until the call, the connection or the time ends, or a signal arrives.
ExitCode follow(const Replies& replies, const TimeLimit& limit)
{
    const handset::TerminationSignals signalsThatEnd;
    const ConnectionWatch watch(voicecall::kSocketName);
    limit.start();
    bool isSilent = false;
    QTimer patience;
    patience.setSingleShot(true);
    patience.callOnTimeout([&] {
        isSilent = !replies.hasBegun();
        if (isSilent)
            QCoreApplication::quit();
    });
    patience.start(kCommandTimeout);
    QCoreApplication::exec();
    if (isSilent)
        throw noAnswerError(u"phone server"_s, serverPath());
    if (watch.isLost() && !replies.isOver())
        throw failure(u"the phone server closed the connection"_s);
    if (signalsThatEnd.hasCome() && !replies.isOver())
        return Interrupted;
    return replies.hasFailed() ? Failed : Done;
}

/// Receives the Java connection's replies: the process has one, and its callback takes no context.
Replies* javaReplies = nullptr;

ExitCode callFromJava(const Invocation& invocation, Console& console)
{
    const QByteArray number = callNumber(invocation.argument(0)).toLatin1();
    const int value = numberFrom(invocation, u"value"_s, 0);
    const TimeLimit limit(invocation);
    Replies replies(console);
    javaReplies = &replies;
    const int handle = PHONE_VoiceCall_Java_Init([](char code) { javaReplies->show(static_cast<uint8_t>(code)); });
    const auto disconnect = qScopeGuard([handle] {
        PHONE_VoiceCall_Java_DeInit(handle);
        javaReplies = nullptr;
    });
    if (PHONE_VoiceCall_Java_MakeCall(handle, number.constData(), value) != 0)
        throw serverError();
    const ExitCode code = follow(replies, limit);
    if (!replies.isOver())
        PHONE_VoiceCall_Java_EndCall(handle);
    return code;
}

PHONE_VoiceSTK_PARAMETER parameterFrom(const QString& text)
{
    PHONE_VoiceSTK_PARAMETER parameter = {};
    const QByteArray bytes = text.startsWith("hex:"_L1) ? blockFrom(text, u"parameter"_s, sizeof parameter.bytes)
                                                        : callNumber(text).toLatin1();
    std::memcpy(parameter.bytes, bytes.constData(), static_cast<size_t>(bytes.size()));
    return parameter;
}

ExitCode callFromSimToolkit(const Invocation& invocation, Console& console)
{
    PHONE_VoiceSTK_PARAMETER parameter = parameterFrom(invocation.argument(0));
    const TimeLimit limit(invocation);
    Replies replies(console);
    PHONE_VoiceSTK* const client = PHONE_VoiceSTK_Init();
    const auto disconnect = qScopeGuard([client] { PHONE_VoiceSTK_DeInit(client); });
    if (PHONE_VOICESTK_MakeCall(client, &parameter) != 0)
        throw serverError();
    QObject::connect(client, &PHONE_VoiceSTK::MessageReceived, client,
                     [&replies](int code, char* /*data*/) { replies.show(code); });
    return follow(replies, limit);
}

QString details()
{
    QStringList words;
    for (const Word<int>& reply : kReplies)
        words += QLatin1String(reply.text);
    return u"\nThe server's replies are shown as they come: %1, any other as a number.\n"
           "The verb ends with the call; a connection that ends first is a failure.\n"
           "The exit code is %2 when a signal ends it before the call has ended.\n"_s.arg(words.join(u", "_s))
               .arg(int{Interrupted});
}

} // namespace

Command javaCommand()
{
    Command call{.name = u"call"_s,
                 .summary = u"Place a call as the Java runtime does, and end it when the time is over"_s,
                 .details = details(),
                 .arguments = {{u"NUMBER"_s, callNumberMeaning()}},
                 .options = {valueOption(u"value"_s, u"N"_s, u"the number in front of the call's; 0 by default"_s),
                             TimeLimit::option()},
                 .sources = {{u"NUMBER"_s, callNumbers}},
                 .run = callFromJava};
    return {.name = u"java"_s, .summary = u"Calls of the Java runtime"_s, .verbs = {std::move(call)}};
}

Command stkCommand()
{
    Command call{
        .name = u"call"_s,
        .summary = u"Place a call as the SIM-toolkit application does, which never ends one"_s,
        .details = details() + u"A call that goes on when the time is over stays; 'zynphone hangup' has it ended.\n"_s,
        .arguments = {{u"PARAMETER"_s, u"hex: and the block's %1 bytes, or the number that it begins with, %2"_s
                                           .arg(sizeof(PHONE_VoiceSTK_PARAMETER))
                                           .arg(callNumberMeaning())}},
        .options = {TimeLimit::option()},
        .run = callFromSimToolkit};
    return {.name = u"stk"_s, .summary = u"Calls that the SIM card sets up"_s, .verbs = {std::move(call)}};
}

} // namespace zyn::tool
