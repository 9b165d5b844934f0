// The module's connection to the phone server's control socket.
#pragma once

#include "handset/phone_server/PhoneControl.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zyn::qml {

/// The first of phonecontrol::kCallStates that a call has when it is over; all behind it are such.
inline constexpr int kFirstOver = 6;

/// One call of the line, as the phone server tells it.
struct LineCall
{
    int id;
    QString number;
    QString name;
    QString type;
    bool isPlaced;
    int state; ///< an index of phonecontrol::kCallStates
    QDateTime since;

    int key() const { return id; }
    /// Whether it is on the line no more.
    bool isOver() const { return state >= kFirstOver; }
    bool operator==(const LineCall&) const = default;
};

/**
 * Follows the calls of the phone server, and tells it what is to happen, without ever waiting.
 *
 * While there is no server, the directory of its socket is watched, which costs nothing; a server that does not answer
 * is tried again at growing intervals. All of it is used from the thread of the user interface.
 */
class PhoneControlClient : public QObject, public std::enable_shared_from_this<PhoneControlClient>
{
    Q_OBJECT

public:
    /// Called when the server has done what it was told, or with the reason why that did not happen.
    using Answer = std::function<void(const QString& refusal)>;

    /// The one client of the process, which lives as long as somebody has it.
    static std::shared_ptr<PhoneControlClient> shared();

    PhoneControlClient();
    ~PhoneControlClient() override;

    /// Whether the server has told its calls, and tells each change.
    bool isFollowing() const { return m_isFollowing; }

    /// Tells the server @p words, as a script's line has them, and hands its answer to @p answer, later and only if @p
    /// receiver still lives.
    void say(const QStringList& words, const QObject* receiver, Answer answer);
    /// Asks for the calls again; without a connection, tries to connect.
    void refresh();

Q_SIGNALS:
    void followingChanged();
    /// These are the calls on the line.
    void callsTold(const std::vector<LineCall>& calls);
    /// One of them, which may be new or over, has changed.
    void callChanged(const LineCall& call);
    /// There is no connection, because of @p reason.
    void lost(const QString& reason);

private:
    class Connection;

    void connectNow();
    void retryLater(bool mayWaitForSocket);
    bool watch();
    void ask(phonecontrol::Command command, const QByteArray& data, phonecontrol::Reply expected,
             const Answer& answer = {});
    bool take(int32_t code, const QByteArray& data);
    bool takeCalls(const QByteArray& json);
    bool takeChange(const QByteArray& json);
    bool noteChange(const LineCall& call);
    void lose(const QString& reason);
    void setFollowing(bool isFollowing);

    QFileSystemWatcher m_watcher;
    QTimer m_retry;
    std::chrono::milliseconds m_nextRetry;
    QElapsedTimer m_connected;
    Connection* m_connection = nullptr; ///< a child of this object
    bool m_isFollowing = false;
    std::vector<int> m_onLine; ///< the ids of the calls on the line
};

} // namespace zyn::qml
