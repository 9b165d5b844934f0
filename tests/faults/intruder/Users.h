// The two users: what the first has running, and the intruder's process.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <csignal>
#include <functional>
#include <map>
#include <memory>

#include <sys/types.h>

namespace intruder {

inline constexpr uid_t kFirst = 61001; // numbers without names, as they are nobody else's
inline constexpr uid_t kIntruder = 61002;
/// How long somebody waits for what must come, in milliseconds.
inline constexpr int kTimeout = 60'000;

/// The number of the first user's call, which the intruder must not learn.
inline const QByteArray kSecret = "0305550199";
/// The number, and the message, that he tries to bring in.
inline const QByteArray kForged = "0307770133";
inline const QByteArray kForgedMessage = "INTRUDER";

inline const QByteArray kHome = "/tmp/first";
inline const QByteArray kPrecious = kHome + "/precious";
inline const QByteArray kLair = "/tmp/intruder";
inline const QByteArray kStore = "/tmp/phone";

inline constexpr const char* kServices[] = {"zyn-recentcalld", "zyn-phoned", "zyn-favourites"};

/// Makes this process the user's, for good.
void become(uid_t user);

/// What the first user's programs find around them.
struct Place
{
    uid_t owner;
    bool hasRuntimeDirectory;

    QByteArray channels() const
    {
        return hasRuntimeDirectory ? kHome + "/runtime/zynqcop" : "/tmp/zynqcop-" + QByteArray::number(owner);
    }
};

/// A program of the first user.
class Program
{
public:
    Program(const Place& place, const QString& program, const QStringList& arguments);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program() { end(SIGKILL); }

    /// Waits until it says that it serves; false when it ends instead.
    bool waitReady();
    /// Waits for its end; its exit code, -1 when it was killed or goes on.
    int finish();
    int end(int signal);
    QByteArray output() { return m_output += m_process.readAllStandardOutput(); }
    QByteArray log() { return m_log += m_process.readAllStandardError(); }
    pid_t id() const { return pid_t(m_process.processId()); }
    bool isRunning() { return m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(0); }
    /// The most memory that it has had, in KiB; 0 when it is gone.
    int memory() const;

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_log;
};

/// The folder of the programs.
extern QString programs;

struct Answer
{
    int code;
    QByteArray text;
};

/// What the tool answers the first user.
Answer ask(const Place& place, const QString& words);

/// Asks until there is an answer that has a certain text, or for long enough.
bool answers(const Place& place, const QString& words, const QByteArray& text = {});

/// Has something of everything there is: calls, favourites, settings, an emergency list.
void fill(const Place& place);

/// The services of one user.
class Handset
{
public:
    explicit Handset(const Place& place);

    void start(const char* service);
    /// Why a service is not there; empty when all are.
    QByteArray missing();
    Program& operator[](const char* name) { return *m_programs.at(QByteArray(name)); }
    const std::map<QByteArray, std::unique_ptr<Program>>& all() const { return m_programs; }
    /// By how much more than at its start a service has grown at most, in KiB.
    int growth() const;

private:
    Place m_place;
    std::map<QByteArray, std::unique_ptr<Program>> m_programs;
    QMap<QByteArray, int> m_memoryAtStart;
};

/// The intruder: what @p body writes to its descriptor is what he has achieved. He lives until it returns.
class Intruder
{
public:
    explicit Intruder(const std::function<void(int out, int stop)>& body);
    Intruder(const Intruder&) = delete;
    Intruder& operator=(const Intruder&) = delete;
    ~Intruder();

    /// The next line of what he says; empty when he has ended, or takes too long.
    QByteArray line();
    /// Tells him to end.
    void stop() { m_stop.reset(); }
    QList<QByteArray> lines();

private:
    pid_t m_process;
    zyn::posix::UniqueFd m_out;
    zyn::posix::UniqueFd m_stop;
};

/// Says a line, as the intruder.
void say(int out, const QByteArray& text);

} // namespace intruder
