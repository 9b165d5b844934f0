// A second user against the first: everything that he can do to the services' sockets, files, channels and names.
//
// Root plays both: it starts the services as the first user, or as itself, and forks the intruder, who gives up all
// rights. What he achieves is a breach, unless a row of kOpen says that it is open to all users on purpose.
#include "platform/CommandFrame_p.h"
#include "platform/QCopChannel.h"
#include "platform/posix/UniqueFd_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "platform/qcop/ChannelFrame_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/faults/ProcessStatus.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QCryptographicHash>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtCore/QThread>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/shm.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;

namespace {

constexpr uid_t kFirst = 61001; // numbers without names, as they are nobody else's
constexpr uid_t kIntruder = 61002;
constexpr int kSkipped = 77;
constexpr int kTimeout = 60'000;

/// The number of the first user's call, which the intruder must not learn.
const QByteArray kSecret = "0305550199";
/// The number, and the message, that he tries to bring in.
const QByteArray kForged = "0307770133";
const QByteArray kForgedMessage = "INTRUDER";

const QByteArray kHome = "/tmp/first";
const QByteArray kPrecious = kHome + "/precious";
const QByteArray kLair = "/tmp/intruder";
const QByteArray kStore = "/tmp/phone";

struct Service
{
    const char* name;
    const char* socket; ///< its own, or none
};
constexpr Service kServices[] = {{"zyn-recentcalld", zyn::recentcall::kSocketPath},
                                 {"zyn-phoned", zyn::voicecall::kSocketPath},
                                 {"zyn-favourites", nullptr}};

// What is counted.

struct Report
{
    int attempts = 0;
    int checks = 0;
    int open = 0;    ///< attempts that succeeded, as they may
    int keptOut = 0; ///< services that said who has their place, as they must where a name is free for all to take
    QStringList breaches;
    QJsonObject memory;

    void breach(const QString& what)
    {
        breaches.append(what);
        std::fprintf(stderr, "BREACH  %s\n", qPrintable(what));
    }
    void check(bool holds, const QString& what)
    {
        ++checks;
        if (!holds)
            breach(what);
    }
};

Report report;

/// What is open to all users on purpose: the reasons are in docs/testing.md.
struct Open
{
    const char* path; ///< a regular expression, of the whole path
    const char* operations;
};
constexpr Open kOpen[] = {
    {"/tmp/zyn(recentcall|phone)com", "list read watch enter lock touch set-attribute make-file make-link make-socket"},
    {"/tmp/zyn(recentcall|phone)com/[^/]+", "remove rename replace"},
    {"/tmp/emergency_call", "read watch lock"},
    {"/tmp/first", "enter"},
};

bool isOpen(const QByteArray& operation, const QByteArray& path)
{
    return std::ranges::any_of(kOpen, [&](const Open& open) {
        const QRegularExpression form(u'^' + QLatin1String(open.path) + u'$');
        return form.match(QFile::decodeName(path)).hasMatch()
               && QByteArray(open.operations).split(' ').contains(operation);
    });
}

/// Notes an attempt, and whether it succeeded.
void note(const QByteArray& operation, const QByteArray& path, bool hasSucceeded)
{
    ++report.attempts;
    if (!hasSucceeded)
        return;
    if (isOpen(operation, path))
        ++report.open;
    else
        report.breach(QString::fromLocal8Bit(operation + " of " + path + " succeeded"));
}

// Both users.

void become(uid_t user)
{
    if (::setgroups(0, nullptr) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0)
        ::_exit(EXIT_FAILURE);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

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
    Program(const Place& place, const QString& program, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, QFile::decodeName(kHome));
        environment.remove(u"XDG_RUNTIME_DIR"_s);
        if (place.hasRuntimeDirectory)
            environment.insert(u"XDG_RUNTIME_DIR"_s, QFile::decodeName(kHome + "/runtime"));
        m_process.setProcessEnvironment(environment);
        m_process.setWorkingDirectory(u"/"_s);
        m_process.setChildProcessModifier([owner = place.owner] {
            become(owner);
            ::umask(077); // as their units have it
        });
        m_process.start(program, arguments);
    }
    Program(const Program&) = delete;
    ~Program() { end(SIGKILL); }

    /// Waits until it says that it serves; false when it ends instead.
    bool waitReady()
    {
        const QDeadlineTimer deadline(kTimeout);
        m_process.waitForStarted(kTimeout);
        while (!m_output.contains("ready\n") && !deadline.hasExpired()) {
            if (!m_process.waitForReadyRead(int(deadline.remainingTime())) && m_process.state() == QProcess::NotRunning)
                break;
            m_output += m_process.readAllStandardOutput();
        }
        return m_output.contains("ready\n");
    }
    int finish(int timeout = kTimeout)
    {
        return (m_process.state() == QProcess::NotRunning || m_process.waitForFinished(timeout))
                       && m_process.exitStatus() == QProcess::NormalExit
                   ? m_process.exitCode()
                   : -1;
    }
    int end(int signal)
    {
        if (m_process.state() != QProcess::NotRunning && m_process.processId() > 0)
            ::kill(pid_t(m_process.processId()), signal);
        return finish();
    }
    QByteArray output() { return m_output += m_process.readAllStandardOutput(); }
    QByteArray log() { return m_log += m_process.readAllStandardError(); }
    pid_t id() const { return pid_t(m_process.processId()); }
    bool isRunning() { return m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(0); }
    /// The most memory that it has had, in KiB; 0 when it is gone.
    int memory() const { return int(std::max<qint64>(faults::memoryOf(id(), "VmHWM"), 0)); }

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_log;
};

QString programs; ///< the folder of the programs

struct Answer
{
    int code;
    QByteArray text;
};

/// What the tool answers the first user.
Answer ask(const Place& place, const QString& words)
{
    Program tool(place, programs + u"/zynphone"_s, words.split(u' '));
    const int code = tool.finish();
    return {code, tool.output() + tool.log()};
}

/// Waits until something is so, or for long enough.
bool comesTrue(const std::function<bool()>& condition)
{
    const QDeadlineTimer deadline(kTimeout);
    while (!condition() && !deadline.hasExpired())
        QThread::msleep(20);
    return condition();
}

/// Asks until there is an answer that has a certain text, or for long enough.
bool answers(const Place& place, const QString& words, const QByteArray& text = {})
{
    return comesTrue([&] {
        const Answer answer = ask(place, words);
        return answer.code == 0 && answer.text.contains(text);
    });
}

/// The services of one user, and a program that hears everything.
class Handset
{
public:
    explicit Handset(const Place& place)
        : m_place(place)
    {
        for (const Service& service : kServices)
            start(service);
    }

    void start(const Service& service)
    {
        auto& program = m_programs[QByteArray(service.name)];
        program = std::make_unique<Program>(m_place, programs + u'/' + QLatin1String(service.name),
                                            QStringList{u"--ready-fd"_s, u"1"_s});
        if (program->waitReady())
            m_memoryAtStart[service.name] = program->memory();
    }
    /// Why a service is not there; empty when all are.
    QByteArray missing()
    {
        for (const auto& [name, program] : m_programs) {
            if (!program->output().contains("ready\n") || !program->isRunning())
                return name + ": " + program->log().trimmed() + (program->isRunning() ? " (and hangs)" : "");
        }
        return {};
    }
    Program& operator[](const char* name) { return *m_programs.at(QByteArray(name)); }
    const std::map<QByteArray, std::unique_ptr<Program>>& all() const { return m_programs; }
    /// By how much more than at its start a service has grown at most, in KiB.
    int growth() const
    {
        int most = 0;
        for (const auto& [name, program] : m_programs)
            most = std::max(most, program->memory() - m_memoryAtStart.value(name));
        return most;
    }

private:
    Place m_place;
    std::map<QByteArray, std::unique_ptr<Program>> m_programs;
    QMap<QByteArray, int> m_memoryAtStart;
};

/// The intruder: what @p body writes to its descriptor is what he has achieved. He lives until it returns.
class Intruder
{
public:
    explicit Intruder(const std::function<void(int out, int stop)>& body)
    {
        int out[2];
        int stop[2];
        if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(stop, O_CLOEXEC) != 0)
            qFatal("no pipe");
        m_process = ::fork();
        if (m_process == 0) {
            ::close(out[0]);
            ::close(stop[1]);
            ::signal(SIGPIPE, SIG_IGN);
            become(kIntruder);
            ::umask(0);
            if (::chdir(kLair.constData()) != 0)
                ::_exit(EXIT_FAILURE);
            body(out[1], stop[0]);
            ::_exit(EXIT_SUCCESS);
        }
        ::close(out[1]);
        ::close(stop[0]);
        m_out = UniqueFd(out[0]);
        m_stop = UniqueFd(stop[1]);
    }
    Intruder(const Intruder&) = delete;
    ~Intruder()
    {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }

    /// The next line of what he says; empty when he has ended, or takes too long.
    QByteArray line()
    {
        char byte = 0;
        QByteArray text;
        while (
            zyn::posix::waitUntilReadable(m_out.get(), zyn::posix::Clock::now() + std::chrono::milliseconds(kTimeout))
            && ::read(m_out.get(), &byte, 1) == 1 && byte != '\n')
            text += byte;
        return text;
    }
    /// Tells him to end.
    void stop() { m_stop.reset(); }
    QList<QByteArray> lines()
    {
        QList<QByteArray> all;
        for (QByteArray next = line(); !next.isEmpty(); next = line())
            all.append(next);
        return all;
    }

private:
    pid_t m_process;
    UniqueFd m_out;
    UniqueFd m_stop;
};

void say(int out, const QByteArray& text)
{
    const QByteArray bytes = text + '\n';
    if (::write(out, bytes.constData(), size_t(bytes.size())) < 0)
        ::_exit(EXIT_FAILURE);
}

// Paths.

void makeFile(const QByteArray& path, const QByteArray& contents, uid_t owner, mode_t mode)
{
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size())
        qFatal("%s cannot be made", path.constData());
    file.close();
    if (::chown(path.constData(), owner, owner) != 0 || ::chmod(path.constData(), mode) != 0)
        qFatal("%s cannot be given away", path.constData());
}

void makeFolder(const QByteArray& path, uid_t owner, mode_t mode)
{
    if (::mkdir(path.constData(), mode) != 0 || ::chown(path.constData(), owner, owner) != 0
        || ::chmod(path.constData(), mode) != 0)
        qFatal("%s cannot be made", path.constData());
}

/// Whether a name in /tmp is the handset's or one of the two users'.
bool isOurs(const QByteArray& name)
{
    return name.startsWith("zynqcop-") || name.startsWith("zynrecentcallcom") || name.startsWith("zynphonecom")
           || name.startsWith("phone") || name.startsWith("emergency_call") || name == "first" || name == "intruder";
}

QList<QByteArray> ourTops()
{
    QList<QByteArray> tops;
    for (const QString& name : QDir(u"/tmp"_s).entryList(QDir::AllEntries | QDir::Hidden | QDir::System))
        if (isOurs(QFile::encodeName(name)))
            tops.append("/tmp/" + QFile::encodeName(name));
    return tops;
}

/// Everything in /tmp that is not the intruder's, by path.
QList<QByteArray> allPaths()
{
    QList<QByteArray> paths;
    for (const QByteArray& top : ourTops()) {
        if (top == kLair)
            continue;
        paths.append(top);
        std::error_code ignored;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(top.toStdString(), ignored))
            paths.append(QByteArray::fromStdString(entry.path().string()));
    }
    return paths;
}

/// An empty /tmp, but for the homes of both.
void clearTmp(const Place& place)
{
    for (const QByteArray& top : ourTops())
        std::filesystem::remove_all(top.toStdString());
    makeFolder(kHome, place.owner, 0711);
    makeFolder(kHome + "/runtime", place.owner, 0700);
    makeFile(kPrecious, "precious " + kSecret, place.owner, 0600);
    makeFolder(kLair, kIntruder, 0700);
    makeFile(kLair + "/bait", "bait", kIntruder, 0666);
}

/// What is the first user's: path, kind, owner, mode and contents. Sockets and locks come and go, and the favourites'
/// owner notes each call that it has seen.
QMap<QByteArray, QByteArray> snapshot()
{
    QMap<QByteArray, QByteArray> all;
    for (const QByteArray& path : allPaths()) {
        struct stat status = {};
        if (::lstat(path.constData(), &status) != 0 || status.st_uid == kIntruder || S_ISSOCK(status.st_mode)
            || path.endsWith(".lock") || path.endsWith("/topPalsLock") || path.endsWith("/topPalsCalls"))
            continue;
        QByteArray contents;
        if (QFile file(QFile::decodeName(path)); S_ISREG(status.st_mode) && file.open(QIODevice::ReadOnly))
            contents = QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex();
        all[path] = QByteArray::number(status.st_uid) + ' ' + QByteArray::number(status.st_mode, 8) + ' ' + contents;
    }
    return all;
}

void compare(const QMap<QByteArray, QByteArray>& before, const QMap<QByteArray, QByteArray>& after, const QString& when)
{
    for (auto it = before.begin(); it != before.end(); ++it)
        report.check(after.value(it.key()) == it.value(),
                     u"%1: %2 was changed: %3, now %4"_s.arg(when, QFile::decodeName(it.key()),
                                                             QString::fromLatin1(*it),
                                                             QString::fromLatin1(after.value(it.key()))));
}

// At the doors: every operation on every path.

bool isOpened(const QByteArray& path, int flags)
{
    return UniqueFd(::open(path.constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666)).isValid();
}

bool connects(const QByteArray& path)
{
    const zyn::posix::UnixAddress address = zyn::posix::unixAddress(path);
    for (const int type : {SOCK_DGRAM, SOCK_STREAM, SOCK_SEQPACKET}) {
        const UniqueFd fd(::socket(AF_UNIX, type | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        if (::connect(fd.get(), address.get(), address.length) == 0 || errno == EPROTOTYPE)
            return true;
    }
    return false;
}

bool binds(const QByteArray& path)
{
    const bool isBound = zyn::posix::listenUnix(path, 0666).isValid();
    if (isBound)
        ::unlink(path.constData());
    return isBound;
}

bool locks(const QByteArray& path)
{
    const UniqueFd fd(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return fd.isValid() && (::flock(fd.get(), LOCK_EX | LOCK_NB) == 0 || errno == EWOULDBLOCK);
}

bool watches(const QByteArray& path)
{
    const UniqueFd fd(::inotify_init1(IN_CLOEXEC));
    return ::inotify_add_watch(fd.get(), path.constData(), IN_ALL_EVENTS) >= 0;
}

bool lists(const QByteArray& path)
{
    DIR* const stream = ::opendir(path.constData());
    return stream && ::closedir(stream) == 0;
}

bool makesFile(const QByteArray& path)
{
    const QByteArray inside = path + "/intruders";
    return isOpened(inside, O_WRONLY | O_CREAT | O_EXCL) && ::unlink(inside.constData()) == 0;
}

bool makesLink(const QByteArray& path)
{
    const QByteArray inside = path + "/intruders";
    return ::symlink(kPrecious.constData(), inside.constData()) == 0 && ::unlink(inside.constData()) == 0;
}

struct Operation
{
    const char* name;
    const char* kinds; ///< of files: d directory, f regular, s socket, and others
    bool (*attempt)(const QByteArray& path);
};

/// Those that leave nothing behind when they succeed come first.
const Operation kOperations[] = {
    {"list", "d", &lists},
    {"enter", "d", [](const QByteArray& path) { return ::chdir(path.constData()) == 0 && ::chdir("/") == 0; }},
    {"read", "dfl", [](const QByteArray& path) { return isOpened(path, O_RDONLY); }},
    {"write", "f", [](const QByteArray& path) { return isOpened(path, O_WRONLY); }},
    {"change", "f", [](const QByteArray& path) { return isOpened(path, O_RDWR | O_APPEND); }},
    {"truncate", "f", [](const QByteArray& path) { return ::truncate(path.constData(), 0) == 0; }},
    {"connect", "s", &connects},
    {"lock", "df", &locks},
    {"watch", "df", &watches},
    {"make-file", "d", &makesFile},
    {"make-link", "d", &makesLink},
    {"make-socket", "d", [](const QByteArray& path) { return binds(path + "/intruders"); }},
    {"touch", "dfs", [](const QByteArray& path) { return ::utimensat(AT_FDCWD, path.constData(), nullptr, 0) == 0; }},
    {"set-attribute", "df",
     [](const QByteArray& path) { return ::setxattr(path.constData(), "user.intruder", "x", 1, 0) == 0; }},
    {"open up", "dfs", [](const QByteArray& path) { return ::chmod(path.constData(), 0777) == 0; }},
    {"take over", "dfsl", [](const QByteArray& path) { return ::lchown(path.constData(), kIntruder, kIntruder) == 0; }},
    {"link", "fsl",
     [](const QByteArray& path) {
         return ::linkat(AT_FDCWD, path.constData(), AT_FDCWD, (kLair + "/link").constData(), 0) == 0;
     }},
    {"replace", "fsl",
     [](const QByteArray& path) { return ::rename((kLair + "/bait").constData(), path.constData()) == 0; }},
    {"rename", "dfsl",
     [](const QByteArray& path) { return ::rename(path.constData(), (kLair + "/loot").constData()) == 0; }},
    {"remove", "dfsl",
     [](const QByteArray& path) { return ::unlink(path.constData()) == 0 || ::rmdir(path.constData()) == 0; }},
};

char kindOf(const QByteArray& path)
{
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0)
        return '-';
    switch (status.st_mode & S_IFMT) {
    case S_IFDIR:
        return 'd';
    case S_IFREG:
        return 'f';
    case S_IFSOCK:
        return 's';
    case S_IFLNK:
        return 'l';
    default:
        return 'p';
    }
}

/// A process of the first user: looked into, and told to end.
void attackProcess(int out, pid_t process)
{
    const QByteArray folder = "/proc/" + QByteArray::number(process) + '/';
    for (const char* file : {"mem", "environ", "maps", "auxv", "stack", "syscall", "fd/0", "fd/3", "cwd/x", "io"})
        say(out, "read\t" + folder + file + '\t' + (isOpened(folder + file, O_RDONLY) ? '1' : '0'));
    for (const int signal : {0, SIGTERM, SIGKILL, SIGSTOP, SIGUSR1})
        say(out, "signal\t" + folder + '\t' + (::kill(process, signal) == 0 ? '1' : '0'));
    say(out, "trace\t" + folder + '\t' + (::ptrace(PTRACE_SEIZE, process, nullptr, nullptr) == 0 ? '1' : '0'));
    char byte = 0;
    const iovec here = {&byte, 1};
    const iovec there = {&byte, 1}; // which need not be anything there: to be let in is enough
    const bool isIn = ::process_vm_readv(process, &here, 1, &there, 1, 0) == 1 || errno != EPERM;
    say(out, "look into\t" + folder + '\t' + (isIn ? '1' : '0'));
}

/// The number that the channels' processes share.
void attackSegments(int out, const QList<int>& segments)
{
    for (const int id : segments) {
        const QByteArray name = "/proc/sysvipc/shm:" + QByteArray::number(id);
        shmid_ds status = {};
        const auto isAttached = [id](int flags) {
            return reinterpret_cast<intptr_t>(::shmat(id, nullptr, flags)) != -1;
        };
        say(out, "read\t" + name + '\t' + (isAttached(SHM_RDONLY) ? '1' : '0'));
        say(out, "write\t" + name + '\t' + (isAttached(0) ? '1' : '0'));
        say(out, "inspect\t" + name + '\t' + (::shmctl(id, IPC_STAT, &status) == 0 ? '1' : '0'));
        say(out, "take over\t" + name + '\t' + (::shmctl(id, IPC_SET, &status) == 0 ? '1' : '0'));
        say(out, "remove\t" + name + '\t' + (::shmctl(id, IPC_RMID, nullptr) == 0 ? '1' : '0'));
    }
}

/// The segments that @p handset's processes have made or use.
QList<int> segmentsOf(const Place& place)
{
    QList<int> ids;
    const QByteArray target = QFile::symLinkTarget(QFile::decodeName(place.channels() + "/.zyn-changes")).toLatin1();
    const QByteArray name = target.mid(target.lastIndexOf('/') + 1).split('-').first();
    bool isNumber = false;
    const int id = name.toInt(&isNumber);
    if (isNumber)
        ids.append(id);
    return ids;
}

void noteLines(const QList<QByteArray>& lines)
{
    for (const QByteArray& line : lines) {
        const QList<QByteArray> words = line.split('\t');
        if (words.size() == 3)
            note(words[0], words[1], words[2] == "1");
    }
}

void attackDoors(const Place& place, const Handset& handset)
{
    QList<pid_t> processes;
    for (const auto& [name, program] : handset.all())
        processes.append(program->id());
    const QList<QByteArray> paths = allPaths();
    const QList<int> segments = segmentsOf(place);
    report.check(!segments.isEmpty(), u"the channels have no shared number to attack"_s);
    QMap<QByteArray, char> kinds;
    for (const QByteArray& path : paths)
        kinds[path] = kindOf(path);
    Intruder intruder([&](int out, int) {
        for (const Operation& operation : kOperations) {
            for (const QByteArray& path : paths) {
                if (!QByteArray(operation.kinds).contains(kinds[path]))
                    continue;
                isOpened(kLair + "/bait", O_WRONLY | O_CREAT);
                say(out, QByteArray(operation.name) + '\t' + path + '\t' + (operation.attempt(path) ? '1' : '0'));
            }
        }
        attackSegments(out, segments);
        for (const pid_t process : processes)
            attackProcess(out, process);
    });
    noteLines(intruder.lines());
}

// Frames, on sockets that somebody has opened to all.

QByteArray commandFrame(int32_t code, const QByteArray& data = {})
{
    const auto header = zyn::CommandFrameHeader{code, int32_t(data.size())}.encode();
    return QByteArray(reinterpret_cast<const char*>(header.data()), qsizetype(header.size())) + data;
}

QByteArray words(std::initializer_list<int32_t> values)
{
    return QByteArray(reinterpret_cast<const char*>(std::data(values)), qsizetype(values.size() * 4));
}

/// A message as a sender of the channel writes it.
QByteArray message(const QByteArray& name, const QByteArray& data)
{
    QByteArray frame;
    zyn::ChannelFrame(name, data).appendTo(frame);
    return zyn::introductionFrame() + frame;
}

/// What a client of each socket says to change something, or to learn something.
QList<QByteArray> validFrames()
{
    PHONE_ENG_RecentCall call;
    call.setPhoneNumber(QString::fromLatin1(kForged));
    call.category = RC_CALL_CATEGORY_MISSED;
    const QByteArray record(reinterpret_cast<const char*>(&call), sizeof call);
    const QByteArray greeting = commandFrame(zyn::kGreetingCommand, words({0}));
    const QByteArray java = commandFrame(0, words({zyn::voicecall::Java}));
    namespace rc = zyn::recentcall;
    QList<QByteArray> frames;
    for (const int32_t category : {1, 2, 3, 4}) {
        frames.append(greeting + commandFrame(rc::ListRecords, words({category, 1})));
        frames.append(greeting + commandFrame(rc::DeleteAll, words({category, 1})));
    }
    for (const int32_t code : {int32_t(rc::AddRecord), int32_t(rc::DeleteRecord), int32_t(rc::MarkRead)})
        frames.append(greeting + commandFrame(code, record));
    frames.append(java + commandFrame(2, words({0}) + kForged.leftJustified(44, '\0')));
    frames.append(commandFrame(0, words({zyn::voicecall::SimToolkit}))
                  + commandFrame(2, kForged.leftJustified(108, '\0')));
    frames.append(java + commandFrame(3));
    frames.append(commandFrame(1, QByteArray("incoming\0", 9) + kForged + '\0'));
    frames.append(commandFrame(2));
    frames.append(commandFrame(3));
    frames.append(message(kForgedMessage, kForged));
    frames.append(message("RECENTCALL_MSG_2", {}) + message(kForgedMessage, {}));
    return frames;
}

/// One of the valid frames, damaged, or bytes that never were one.
QByteArray hostileFrame(QRandomGenerator& random, const QList<QByteArray>& valid)
{
    QByteArray frame = valid.at(random.bounded(valid.size()));
    switch (random.bounded(4)) {
    case 0:
        frame.truncate(random.bounded(frame.size()));
        break;
    case 1:
        frame[random.bounded(frame.size())] = char(random.bounded(256));
        break;
    case 2:
        frame = frame.repeated(random.bounded(1, 64));
        break;
    default:
        frame = QByteArray(random.bounded(1, 4096), '\xff');
    }
    return frame;
}

/// Everything that is said is said on @p path, by a user who may open it; lines tell what came back.
void sendFrames(int out, const QByteArray& path, const QList<QByteArray>& frames)
{
    for (const QByteArray& frame : frames) {
        const UniqueFd socket = zyn::posix::connectUnix(path, std::chrono::milliseconds(kTimeout));
        const auto deadline = zyn::posix::Clock::now() + std::chrono::milliseconds(kTimeout);
        if (socket.isValid())
            zyn::posix::sendAll(socket.get(), std::as_bytes(std::span(frame.constData(), size_t(frame.size()))), {},
                                deadline);
        std::byte answer{};
        const bool isAnswered =
            socket.isValid() && zyn::posix::receiveAll(socket.get(), std::span(&answer, 1), deadline);
        const bool isServed = socket.isValid() && !isAnswered && zyn::posix::Clock::now() >= deadline;
        say(out, QByteArray(isServed ? "be listened to" : "get an answer") + '\t' + path + '\t'
                     + (isAnswered || isServed ? '1' : '0'));
    }
}

/// Connections that are kept, as many as one user may have.
void flood(const QByteArray& path)
{
    std::vector<UniqueFd> connections;
    const QByteArray junk(65536, 'x');
    for (int i = 0; i < 500; ++i) {
        connections.push_back(zyn::posix::connectUnixAtOnce(path));
        if (connections.back().isValid())
            zyn::posix::sendSome(connections.back().get(),
                                 std::as_bytes(std::span(junk.constData(), size_t(junk.size()))));
    }
}

void attackSockets(const Place& place, QRandomGenerator& random, int frames)
{
    QList<QByteArray> sockets;
    std::vector<UniqueFd> held; // he gets to them past the directories, and finds them open
    for (const QByteArray& path : allPaths()) {
        if (kindOf(path) != 's')
            continue;
        held.emplace_back(::open(path.constData(), O_PATH | O_CLOEXEC));
        sockets.append("/proc/self/fd/" + QByteArray::number(held.back().get()));
        if (::chmod(path.constData(), 0666) != 0)
            qFatal("%s cannot be opened", path.constData());
    }
    report.check(sockets.size() >= 3, u"too few sockets to attack: %1"_s.arg(sockets.size()));
    QList<QByteArray> all = validFrames();
    for (int i = 0; i < frames; ++i)
        all.append(hostileFrame(random, validFrames()));
    Intruder intruder([&](int out, int) {
        for (const QByteArray& path : sockets) {
            sendFrames(out, path, all);
            flood(path);
        }
    });
    noteLines(intruder.lines());
    for (const UniqueFd& fd : held)
        ::chmod(("/proc/self/fd/" + QByteArray::number(fd.get())).constData(), 0600);
    Q_UNUSED(place)
}

// What the first user has.

/// Has something of everything there is: calls, favourites, settings, an emergency list.
void fill(const Place& place)
{
    makeFile(kHome + "/numbers", "112\n", place.owner, 0600);
    for (const QString& words :
         {u"emergency write 112 911"_s, u"speed-dial set 1 %1"_s.arg(QLatin1String(kSecret)),
          u"handset set sim-card 0"_s, u"phone incoming %1 Secret"_s.arg(QLatin1String(kSecret)), u"phone missed"_s}) {
        const Answer answer = ask(place, words);
        report.check(answer.code == 0, u"as the first user, %1: %2"_s.arg(words, QString::fromLocal8Bit(answer.text)));
    }
    report.check(answers(place, u"calls list"_s, kSecret), u"the first user's call is not logged"_s);
    ask(place, u"calls export --output %1"_s.arg(QFile::decodeName(kHome + "/calls.csv")));
}

/// Attacks a handset that runs.
void attackRunning(const Place& place, QRandomGenerator& random, int frames, int memoryBound)
{
    const QString who = place.owner == 0 ? u"root"_s : u"the first user"_s;
    clearTmp(place);
    Handset handset(place);
    report.check(handset.missing().isEmpty(), QString::fromLocal8Bit(handset.missing()));
    const QString recording = QFile::decodeName(kHome + "/day.recording");
    Program monitor(place, programs + u"/zynphone"_s, {u"monitor"_s, u"--record"_s, recording});
    report.check(comesTrue([&] { return QFile::exists(recording); }), u"nobody records"_s);
    fill(place);
    const QByteArray calls = ask(place, u"calls export"_s).text;
    ask(place, u"favourites announce"_s); // whatever it says
    const auto before = snapshot();

    attackDoors(place, handset);
    QMap<QByteArray, QByteArray> after = snapshot();
    auto recorded = before; // grows by what the first user's own programs say
    recorded.remove(QFile::encodeName(recording));
    compare(recorded, after, u"%1's, after what can be done to files"_s.arg(who));
    report.check(answers(place, u"phone calls"_s), u"%1's phone does not answer again"_s.arg(who));
    report.check(answers(place, u"calls export"_s, calls), u"%1's calls cannot be listed again"_s.arg(who));

    attackSockets(place, random, frames);
    compare(recorded, snapshot(), u"%1's, after frames"_s.arg(who));
    report.check(ask(place, u"calls export"_s).text == calls, u"%1's calls were changed"_s.arg(who));
    report.check(!ask(place, u"phone calls"_s).text.contains(kForged), u"a forged call is on the line"_s);
    const auto heard = [&] {
        QFile file(recording);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(kForgedMessage);
    };
    report.check(!heard(), u"a forged message was heard"_s);
    report.check(handset.missing().isEmpty(), QString::fromLocal8Bit(handset.missing()));
    const int growth = handset.growth();
    report.memory[who] = growth;
    report.check(memoryBound == 0 || growth <= memoryBound, u"a service has grown by %1 KiB"_s.arg(growth));

    // What he has sent would have been heard and done, had it come from the first user.
    ask(place, u"send /ZYN/phone %1"_s.arg(QLatin1String(kForgedMessage)));
    report.check(comesTrue(heard), u"the campaign does not see what is heard"_s);
    Q_UNUSED(after)
}

// Names that are taken before the services start.

struct Plant
{
    const char* name;
    bool (*make)(const QByteArray& path, std::vector<UniqueFd>& kept);
};

bool makes(const QByteArray& path, mode_t mode)
{
    return ::mkdir(path.constData(), 0777) == 0 && ::chmod(path.constData(), mode) == 0;
}

const Plant kPlants[] = {
    {"a file", [](const QByteArray& path, auto&) { return isOpened(path, O_WRONLY | O_CREAT | O_EXCL); }},
    {"a locked file",
     [](const QByteArray& path, auto& kept) {
         kept.emplace_back(::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
         return ::flock(kept.back().get(), LOCK_EX | LOCK_NB) == 0;
     }},
    {"a directory", [](const QByteArray& path, auto&) { return makes(path, 0777); }},
    {"a closed directory", [](const QByteArray& path, auto&) { return makes(path, 0700); }},
    {"a sticky directory", [](const QByteArray& path, auto&) { return makes(path, 01777); }},
    {"a full directory",
     [](const QByteArray& path, auto&) {
         return makes(path, 0777) && isOpened(path + "/full", O_WRONLY | O_CREAT | O_EXCL);
     }},
    {"a FIFO",
     [](const QByteArray& path, auto& kept) {
         const bool isMade = ::mkfifo(path.constData(), 0666) == 0;
         kept.emplace_back(::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
         return isMade;
     }},
    {"a socket",
     [](const QByteArray& path, auto& kept) {
         kept.push_back(zyn::posix::listenUnix(path, 0666));
         return kept.back().isValid();
     }},
    {"a link to a file of his",
     [](const QByteArray& path, auto&) { return ::symlink((kLair + "/bait").constData(), path.constData()) == 0; }},
    {"a link to a directory of his",
     [](const QByteArray& path, auto&) { return ::symlink("/tmp/intruder/open", path.constData()) == 0; }},
    {"a link to theirs",
     [](const QByteArray& path, auto&) { return ::symlink(kPrecious.constData(), path.constData()) == 0; }},
    {"a link to a home",
     [](const QByteArray& path, auto&) { return ::symlink(kHome.constData(), path.constData()) == 0; }},
    {"a link to nothing",
     [](const QByteArray& path, auto&) { return ::symlink("/tmp/first/planted", path.constData()) == 0; }},
    {"a hard link to theirs",
     [](const QByteArray& path, auto&) { return ::link(kPrecious.constData(), path.constData()) == 0; }},
};

/// A name that a service uses, and in whose directory it lies.
struct Name
{
    QByteArray path;
    QByteArray parent; ///< made first, open to all; empty for /tmp itself
    bool isParentHis = false;
    bool mayKeepOut = false; ///< by its place, nobody but its owner and root can remove it
};

QList<Name> fixedNames(const Place& place)
{
    const QByteArray calls = "/tmp/zynrecentcallcom";
    const QByteArray phone = "/tmp/zynphonecom";
    QList<Name> names = {
        {calls, {}, false, true}, {phone, {}, false, true}, {kStore, {}}, {zyn::emergency::kListFile, {}}};
    for (const QByteArray& socket :
         {calls + "/recentcall_interface", phone + "/voicecall_interface", phone + "/phone_control"}) {
        for (const char* suffix : {"", ".lock"}) {
            const QByteArray parent = socket.first(socket.lastIndexOf('/'));
            names.append({socket + suffix, parent, false});
            names.append({socket + suffix, parent, true});
        }
    }
    for (const char* file : {"/rc_a", "/rc_m", "/rc_d", "/topPalsDetails", "/topPalsLock", "/topPalsCalls", "/5550199"})
        names.append({kStore + file, kStore, true});
    if (!place.hasRuntimeDirectory) {
        names.append({place.channels(), {}, false, true});
        for (const char* file : {"/.zyn-changes", "/%2FZYN%2Fphone", "/ACTIVITY_LOG_CHANNEL"})
            names.append({place.channels() + file, place.channels(), true, true});
    }
    return names;
}

/// Whatever the intruder can read, and what others have told his sockets and FIFOs, that has the secret.
void tellLoot(int out, const std::vector<UniqueFd>& kept)
{
    const auto tell = [&](const QByteArray& where, const QByteArray& text) {
        if (text.contains(kSecret))
            say(out, "read\t" + where + "\t1");
    };
    for (const UniqueFd& fd : kept) {
        const UniqueFd client = zyn::posix::acceptConnection(fd.get());
        QByteArray text(65536, '\0');
        const ssize_t n = ::read(client.isValid() ? client.get() : fd.get(), text.data(), size_t(text.size()));
        tell("what was told a socket, a FIFO or a file of his", text.first(std::max<ssize_t>(n, 0)));
    }
    std::error_code error;
    const auto options = std::filesystem::directory_options::skip_permission_denied;
    for (std::filesystem::recursive_directory_iterator it("/tmp", options, error), end; it != end;
         it.increment(error)) {
        const QByteArray path = QByteArray::fromStdString(it->path().string());
        struct stat status = {};
        if (::stat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > 1 << 20)
            continue;
        if (QFile file(QFile::decodeName(path)); file.open(QIODevice::ReadOnly))
            tell(path, file.readAll());
    }
}

void attackName(const Place& place, const Name& name, const Plant& plant)
{
    clearTmp(place);
    if (!name.parent.isEmpty())
        makeFolder(name.parent, name.isParentHis ? kIntruder : place.owner, 0777);
    Intruder intruder([&](int out, int stop) {
        std::vector<UniqueFd> kept;
        makes("/tmp/intruder/open", 0777);
        ::chmod(kLair.constData(), 0711);
        say(out, plant.make(name.path, kept) ? "planted" : "refused");
        zyn::posix::waitUntilClosed(stop, zyn::posix::Clock::now() + std::chrono::hours(1));
        tellLoot(out, kept);
    });
    ++report.attempts;
    if (intruder.line() != "planted")
        return;
    const QString what = u"%1: %2 at %3"_s.arg(place.owner == 0 ? u"root"_s : u"first user"_s,
                                               QLatin1String(plant.name), QFile::decodeName(name.path));
    const auto before = snapshot();
    {
        Handset handset(place);
        if (const QByteArray missing = handset.missing(); !missing.isEmpty()) {
            const bool isTold = missing.contains("user " + QByteArray::number(kIntruder))
                                || missing.contains("another user") || missing.contains("no listener");
            const bool isStore = name.path.startsWith(kStore);
            const bool mayBe = !missing.contains("(and hangs)")
                               && (isStore || (place.owner != 0 && (name.mayKeepOut || name.isParentHis)));
            report.keptOut += mayBe && isTold;
            report.check(mayBe && isTold, what + u": keeps out "_s + QString::fromLocal8Bit(missing));
        } else {
            const Answer called = ask(place, u"phone incoming %1"_s.arg(QLatin1String(kSecret)));
            report.check(called.code == 0, what + u": "_s + QString::fromLocal8Bit(called.text));
            ask(place, u"phone missed"_s);
            struct stat list = {};
            if (ask(place, u"emergency write 112"_s).code == 0)
                report.check(::lstat(zyn::emergency::kListFile, &list) == 0 && list.st_uid == place.owner,
                             what + u": the emergency list that was written is his"_s);
            ask(place, u"calls list"_s);
        }
        for (const Service& service : kServices)
            handset[service.name].end(SIGTERM);
    }
    QMap<QByteArray, QByteArray> after = snapshot();
    for (const QByteArray& own : {kHome, kPrecious})
        report.check(after.value(own) == before.value(own),
                     what + u": "_s + QFile::decodeName(own) + u" was changed"_s);
    report.check(!QFile::exists(QFile::decodeName(kHome + "/planted")), what + u": the link was followed"_s);
    intruder.stop();
    for (const QByteArray& line : intruder.lines())
        report.breach(what + u": "_s + QString::fromLocal8Bit(line));
}

void attackNames(const Place& place, QRandomGenerator& random, int limit)
{
    std::vector<std::pair<Name, const Plant*>> cases;
    for (const Name& name : fixedNames(place))
        for (const Plant& plant : kPlants)
            cases.emplace_back(name, &plant);
    std::shuffle(cases.begin(), cases.end(), random);
    if (limit > 0 && size_t(limit) < cases.size())
        cases.resize(size_t(limit));
    for (const auto& [name, plant] : cases)
        attackName(place, name, *plant);
}

// While services come and go.

/// Takes and plants at random in the directories that are open to all, until he is stopped.
void harass(int out, int stop, quint32 seed)
{
    QRandomGenerator random(seed);
    const QByteArray names[] = {zyn::recentcall::kSocketPath,     QByteArray(zyn::recentcall::kSocketPath) + ".lock",
                                zyn::voicecall::kSocketPath,      QByteArray(zyn::voicecall::kSocketPath) + ".lock",
                                "/tmp/zynphonecom/phone_control", "/tmp/zynphonecom/phone_control.lock"};
    say(out, "began");
    int done = 0;
    while (!zyn::posix::waitUntilClosed(stop, zyn::posix::Clock::now())) {
        std::vector<UniqueFd> kept;
        const QByteArray& name = names[random.bounded(int(std::size(names)))];
        ::unlink(name.constData());
        kPlants[random.bounded(int(std::size(kPlants)))].make(name, kept);
        isOpened("/tmp/zynphonecom/flood" + QByteArray::number(random.bounded(5000)), O_WRONLY | O_CREAT);
        zyn::posix::connectUnixAtOnce(names[ptrdiff_t{2} * random.bounded(3)]);
        ++done;
        ::usleep(200);
    }
    say(out, QByteArray::number(done));
}

void attackRestarts(const Place& place, QRandomGenerator& random, int restarts, int memoryBound)
{
    const QString who = place.owner == 0 ? u"root"_s : u"the first user"_s;
    clearTmp(place);
    Handset handset(place);
    fill(place);
    const auto before = snapshot();
    Intruder intruder([seed = random.generate()](int out, int stop) { harass(out, stop, seed); });
    intruder.line();
    for (int i = 0; i < restarts; ++i) {
        const Service& service = kServices[size_t(i) % std::size(kServices)];
        handset[service.name].end(i % 2 ? SIGKILL : SIGTERM);
        handset.start(service);
        const Answer answer = ask(place, u"calls list"_s);
        report.check(answer.code >= 0 && !answer.text.contains(kForged), u"a client hangs or is lied to"_s);
    }
    intruder.stop();
    report.attempts += intruder.line().toInt();
    for (const Service& service : kServices) {
        // What cannot start while he takes its name in the very moment between two steps, its unit starts again.
        for (int tries = 0; tries < 3 && !handset[service.name].isRunning(); ++tries)
            handset.start(service);
    }
    report.check(handset.missing().isEmpty(), QString::fromLocal8Bit(handset.missing()));
    report.check(answers(place, u"calls list"_s, kSecret), u"%1's calls cannot be listed after restarts"_s.arg(who));

    report.check(answers(place, u"phone calls"_s), u"%1's phone does not answer after restarts"_s.arg(who));
    compare(before, snapshot(), u"%1's, after restarts"_s.arg(who));
    const int growth = handset.growth();
    report.memory[who + u", restarts"_s] = growth;
    report.check(memoryBound == 0 || growth <= memoryBound, u"a service has grown by %1 KiB"_s.arg(growth));
}

/// Why nothing can be tried here; empty when it can.
QString obstacle()
{
    if (::geteuid() != 0)
        return u"only root can play two users"_s;
    if (qgetenv("ZYN_IN_PRIVATE_TMP") != "yes")
        return u"/tmp is not private: run it by scripts/private-tmp"_s;
    const pid_t child = ::fork();
    if (child == 0) {
        become(kIntruder);
        ::_exit(EXIT_SUCCESS);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? QString() : u"root cannot become another user here"_s;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Has a second user try everything against the services of the first, and of root, in a private /tmp.\n"
        "The exit code is 0 without a breach, 1 with one, 77 where that cannot be tried.\n\n"
        "scripts/private-tmp \"$PWD/build/dev\" \"$PWD\" build/dev/tests/intruder build/dev/bin"_s);
    parser.addHelpOption();
    const QCommandLineOption shortForm(u"short"_s,
                                       u"Try a part that takes seconds: some of the names, few restarts."_s);
    const QCommandLineOption json(u"json"_s, u"Write the result as a JSON object."_s);
    const QCommandLineOption seed(u"seed"_s, u"Where the choices begin (random)."_s, u"number"_s);
    const QCommandLineOption bound(u"memory"_s, u"KiB by which a service may grow; 0 for any (8192)."_s, u"KiB"_s,
                                   u"8192"_s);
    parser.addOptions({shortForm, json, seed, bound});
    parser.addPositionalArgument(u"PROGRAMS"_s, u"The folder of the programs."_s);
    parser.process(application);
    if (parser.positionalArguments().size() != 1)
        parser.showHelp(2);
    programs = QDir(parser.positionalArguments().first()).absolutePath();
    if (const QString why = obstacle(); !why.isEmpty()) {
        std::fprintf(stderr, "intruder: %s: skipped\n", qPrintable(why));
        return kSkipped;
    }

    const quint32 start = parser.isSet(seed) ? parser.value(seed).toUInt() : QRandomGenerator::system()->generate();
    QRandomGenerator random(start);
    const bool isShort = parser.isSet(shortForm);
    const int memoryBound = parser.value(bound).toInt();
    std::fprintf(stderr, "intruder: seed %u\n", start);
    for (const uid_t owner : {kFirst, uid_t(0)}) {
        for (const bool hasRuntimeDirectory : {false, true}) {
            const Place place{owner, hasRuntimeDirectory};
            if (isShort && hasRuntimeDirectory)
                continue;
            attackRunning(place, random, isShort ? 8 : 200, memoryBound);
            attackNames(place, random, isShort ? 10 : 0);
            attackRestarts(place, random, isShort ? 3 : 30, memoryBound);
        }
    }
    clearTmp({0, false});

    if (parser.isSet(json)) {
        const QJsonObject result{{u"seed"_s, qint64(start)},
                                 {u"attempts"_s, report.attempts},
                                 {u"open"_s, report.open},
                                 {u"keptOut"_s, report.keptOut},
                                 {u"checks"_s, report.checks},
                                 {u"growthKiB"_s, report.memory},
                                 {u"breaches"_s, QJsonArray::fromStringList(report.breaches)}};
        std::puts(QJsonDocument(result).toJson().constData());
    } else {
        std::printf("seed %u: %d attempts, %d of them open to all, %d services kept out and saying why, %d checks, "
                    "%lld breaches\n",
                    start, report.attempts, report.open, report.keptOut, report.checks,
                    static_cast<long long>(report.breaches.size()));
    }
    return report.breaches.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
