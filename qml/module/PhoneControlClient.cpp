// The module's connection to the phone server's control socket: frames, answers, and coming back.
#include "qml/module/PhoneControlClient.h"

#include "platform/CommandFrame_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPointer>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::qml {
namespace {

using phonecontrol::Command;
using phonecontrol::Reply;

/// A server that is seen to come listens a moment later.
constexpr std::chrono::milliseconds kFirstRetry{20};
constexpr std::chrono::milliseconds kSlowestRetry{10'000};
/// The more is read at once, the longer the user interface waits.
constexpr int kReadsPerTurn = 8;
/// The most requests that wait for an answer: a server that has more of them is stuck.
constexpr size_t kMostRequests = 64;
constexpr qsizetype kMostCalls = 64;
constexpr qsizetype kLongestReason = 256;

std::optional<QString> textIn(const QJsonObject& object, QLatin1String key)
{
    const QJsonValue value = object.value(key);
    return value.isString() ? std::optional(value.toString()) : std::nullopt;
}

std::optional<LineCall> callFrom(const QJsonValue& json)
{
    const QJsonObject object = json.toObject();
    const int id = object.value("id"_L1).toInt();
    const auto number = textIn(object, "number"_L1);
    const auto name = textIn(object, "name"_L1);
    const auto type = textIn(object, "type"_L1);
    const auto direction = textIn(object, "direction"_L1);
    const auto state = std::ranges::find(phonecontrol::kCallStates, textIn(object, "state"_L1).value_or(QString()),
                                         [](const char* text) { return QLatin1String(text); });
    const QDateTime since = QDateTime::fromString(textIn(object, "since"_L1).value_or(QString()), Qt::ISODateWithMs);
    if (id < 1 || !number || !name || !type || !direction || state == std::end(phonecontrol::kCallStates)
        || !since.isValid())
        return std::nullopt;
    return LineCall{.id = id,
                    .number = *number,
                    .name = *name,
                    .type = *type,
                    .isPlaced = *direction == QLatin1String(phonecontrol::kPlacedCall),
                    .state = static_cast<int>(state - std::begin(phonecontrol::kCallStates)),
                    .since = since};
}

} // namespace

/// One connection. It tells its owner what has come, and why it is over.
class PhoneControlClient::Connection : public QObject
{
public:
    Connection(posix::UniqueFd socket, PhoneControlClient& client)
        : QObject(&client)
        , m_client(client)
        , m_socket(std::move(socket))
        , m_readable(m_socket.get(), QSocketNotifier::Read)
        , m_writable(m_socket.get(), QSocketNotifier::Write)
        , m_frame(CommandFrameHeader::kSize)
    {
        m_writable.setEnabled(false);
        m_patience.setSingleShot(true);
        m_patience.setInterval(kCommandTimeout);
        connect(&m_readable, &QSocketNotifier::activated, this, [this] { receive(); });
        connect(&m_writable, &QSocketNotifier::activated, this, [this] { sendUnsent(); });
        connect(&m_patience, &QTimer::timeout, this,
                [this] { m_client.lose(PhoneControlClient::tr("The phone server does not answer")); });
    }

    /// A request that waits for its answer.
    struct Request
    {
        Reply expected;
        Answer answer; ///< null for a question
    };

    bool isFull() const { return m_requests.size() >= kMostRequests; }

    void send(Command command, const QByteArray& data, Request request)
    {
        const auto header = CommandFrameHeader{command, static_cast<int32_t>(data.size())}.encode();
        m_unsent += QByteArray(reinterpret_cast<const char*>(header.data()), header.size()) + data;
        m_requests.push_back(std::move(request));
        if (!m_patience.isActive())
            m_patience.start();
        sendUnsent();
    }

    /// The request that an answer @p reply is for; nothing if there is none.
    std::optional<Request> answered(Reply reply)
    {
        const bool isFor =
            !m_requests.empty()
            && (m_requests.front().expected == reply || (reply == phonecontrol::Refused && m_requests.front().answer));
        if (!isFor)
            return std::nullopt;
        Request request = std::move(m_requests.front());
        m_requests.pop_front();
        return request;
    }

    /// Closes the connection; what waits for an answer does so in vain.
    std::deque<Request> close()
    {
        m_readable.setEnabled(false);
        m_writable.setEnabled(false);
        m_patience.stop();
        m_socket.reset();
        deleteLater();
        return std::exchange(m_requests, {});
    }

private:
    void receive()
    {
        const auto keepsClient = m_client.shared_from_this();
        for (int read = 0; read < kReadsPerTurn && m_socket.isValid(); ++read) {
            const ssize_t n = posix::receiveSome(m_socket.get(), std::span(m_frame).subspan(m_received));
            if (n < 0)
                return;
            if (n == 0)
                return m_client.lose(PhoneControlClient::tr("The phone server has ended"));
            m_received += static_cast<size_t>(n);
            if (m_received == m_frame.size() && !goOn())
                return m_client.lose(
                    PhoneControlClient::tr("The phone server gave an answer that no phone server gives"));
        }
    }

    /// Makes room for the data of the frame whose header has come, or hands the frame on if it is whole. False for what
    /// no server sends.
    bool goOn()
    {
        constexpr size_t kHeader = CommandFrameHeader::kSize;
        const auto header = CommandFrameHeader::decode(std::span(std::as_const(m_frame)).first<kHeader>());
        if (!header)
            return false;
        m_frame.resize(kHeader + static_cast<size_t>(header->dataLength));
        m_patience.start();
        if (m_received < m_frame.size())
            return true;
        const QByteArray data(reinterpret_cast<const char*>(m_frame.data()) + kHeader, header->dataLength);
        m_frame.resize(kHeader);
        m_frame.shrink_to_fit();
        m_received = 0;
        const bool isTaken = m_client.take(header->code, data);
        if (m_requests.empty())
            m_patience.stop();
        return isTaken;
    }

    /// Sends as much as the server accepts and keeps the rest. That the server has gone is noticed by reading.
    void sendUnsent()
    {
        posix::sendUnsent(m_socket.get(), m_unsent);
        m_writable.setEnabled(m_socket.isValid() && !m_unsent.isEmpty());
    }

    PhoneControlClient& m_client;
    posix::UniqueFd m_socket;
    QSocketNotifier m_readable;
    QSocketNotifier m_writable;
    QTimer m_patience;              ///< runs while an answer, or the rest of one, is to come
    std::vector<std::byte> m_frame; ///< the current one: its header, and its data once that has come
    size_t m_received = 0;          ///< of m_frame
    QByteArray m_unsent;
    std::deque<Request> m_requests;
};

std::shared_ptr<PhoneControlClient> PhoneControlClient::shared()
{
    static std::weak_ptr<PhoneControlClient> instance;
    std::shared_ptr<PhoneControlClient> client = instance.lock();
    if (!client) {
        client = std::make_shared<PhoneControlClient>();
        instance = client;
    }
    return client;
}

PhoneControlClient::PhoneControlClient()
    : m_nextRetry(kFirstRetry)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &PhoneControlClient::connectNow);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (m_connection)
            return;
        m_nextRetry = kFirstRetry;
        // Whoever keeps changing the directory does not put it off.
        if (!m_retry.isActive() || m_retry.remainingTimeAsDuration() > kFirstRetry)
            m_retry.start(kFirstRetry);
    });
    // Later, so that those who have just asked for the client hear of it.
    m_retry.start(std::chrono::milliseconds(0));
}

PhoneControlClient::~PhoneControlClient() = default;

void PhoneControlClient::say(const QStringList& words, const QObject* receiver, Answer answer)
{
    const auto tell = [receiver = QPointer(receiver), answer = std::move(answer)](const QString& refusal) {
        if (receiver)
            answer(refusal);
    };
    QByteArray data;
    for (const QString& word : words)
        data += word.toUtf8() + '\0';
    QString obstacle;
    if (data.count('\0') != words.size())
        obstacle = tr("A text holds a character that cannot be sent");
    else if (static_cast<size_t>(data.size()) > phonecontrol::kLongestSaying)
        obstacle = tr("That is more than the phone server takes at once");
    else if (!m_isFollowing)
        obstacle = tr("The phone server does not run");
    else if (m_connection->isFull())
        obstacle = tr("The phone server does not answer");
    if (obstacle.isEmpty())
        return ask(phonecontrol::Say, data, phonecontrol::Done, tell);
    QMetaObject::invokeMethod(
        this, [obstacle, tell] { tell(obstacle); }, Qt::QueuedConnection);
}

void PhoneControlClient::refresh()
{
    if (!m_connection)
        m_retry.start(std::chrono::milliseconds(0));
    else if (m_isFollowing && !m_connection->isFull())
        ask(phonecontrol::ListCalls, {}, phonecontrol::Calls);
}

void PhoneControlClient::connectNow()
{
    // First, so that nothing is missed in between.
    const bool isWatched = watch();
    posix::UniqueFd socket = posix::connectUnixAtOnce(phonecontrol::kSocketPath);
    const bool isAbsent = !socket.isValid() && (errno == ENOENT || errno == ECONNREFUSED);
    if (socket.isValid() && posix::isPeerTrusted(socket.get())) {
        m_connection = new Connection(std::move(socket), *this);
        m_connected.start();
        return ask(phonecontrol::FollowCalls, {}, phonecontrol::Calls);
    }
    const QString reason =
        socket.isValid() ? tr("Another user has taken the phone server's place") : tr("The phone server does not run");
    retryLater(isWatched && isAbsent);
    Q_EMIT lost(reason);
}

/// Tries again later, at growing intervals. @p mayWaitForSocket tells that a server that comes is noticed.
void PhoneControlClient::retryLater(bool mayWaitForSocket)
{
    if (mayWaitForSocket && m_nextRetry >= kSlowestRetry)
        return;
    m_retry.start(m_nextRetry);
    m_nextRetry = std::min(2 * m_nextRetry, kSlowestRetry);
}

/// Watches the directory of the socket; false if that is impossible.
bool PhoneControlClient::watch()
{
    const QString directory = QLatin1String(voicecall::kSocketDirectory);
    if (m_watcher.directories().contains(directory))
        return true;
    // Not made while it is watched: that changes its mode, which would be noticed as a server that comes.
    phonecontrol::socketPath();
    return m_watcher.addPath(directory);
}

void PhoneControlClient::ask(Command command, const QByteArray& data, Reply expected, const Answer& answer)
{
    m_connection->send(command, data, {expected, answer});
}

/// Takes an answer; false for what no server sends now.
bool PhoneControlClient::take(int32_t code, const QByteArray& data)
{
    if (code == phonecontrol::CallChanged)
        return m_isFollowing && takeChange(data);
    const auto request = m_connection->answered(static_cast<Reply>(code));
    if (!request)
        return false;
    if (code == phonecontrol::Calls)
        return takeCalls(data);
    const QString refusal = code == phonecontrol::Refused ? QString::fromUtf8(data).left(kLongestReason) : QString();
    if (code == phonecontrol::Refused && refusal.isEmpty())
        return false;
    request->answer(refusal);
    return true;
}

bool PhoneControlClient::takeCalls(const QByteArray& json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const QJsonArray array = document.array();
    if (!document.isArray() || array.size() > kMostCalls)
        return false;
    std::vector<LineCall> calls;
    for (const QJsonValue value : array) {
        std::optional<LineCall> call = callFrom(value);
        const bool isKnown = call && std::ranges::find(calls, call->id, &LineCall::id) != calls.end();
        if (!call || isKnown)
            return false;
        calls.push_back(std::move(*call));
    }
    m_onLine.clear();
    std::ranges::transform(calls, std::back_inserter(m_onLine), &LineCall::id);
    setFollowing(true);
    Q_EMIT callsTold(calls);
    return true;
}

bool PhoneControlClient::takeChange(const QByteArray& json)
{
    const std::optional<LineCall> call = callFrom(QJsonDocument::fromJson(json).object());
    if (!call || !noteChange(*call))
        return false;
    Q_EMIT callChanged(*call);
    return true;
}

/// Notes whether @p call is on the line now; false when no line has that many.
bool PhoneControlClient::noteChange(const LineCall& call)
{
    std::erase(m_onLine, call.id);
    if (!call.isOver())
        m_onLine.push_back(call.id);
    return std::ssize(m_onLine) <= kMostCalls;
}

/// The connection is over. A server that was well until now comes back at once, as a rule.
void PhoneControlClient::lose(const QString& reason)
{
    if (!m_connection)
        return;
    const auto keepsThis = shared_from_this();
    const auto requests = std::exchange(m_connection, nullptr)->close();
    if (m_connected.hasExpired(kSlowestRetry.count()))
        m_nextRetry = kFirstRetry;
    retryLater(false);
    setFollowing(false);
    Q_EMIT lost(reason);
    for (const Connection::Request& request : requests) {
        if (request.answer)
            request.answer(reason);
    }
}

void PhoneControlClient::setFollowing(bool isFollowing)
{
    if (std::exchange(m_isFollowing, isFollowing) != isFollowing)
        Q_EMIT followingChanged();
}

} // namespace zyn::qml
