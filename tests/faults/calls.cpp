// Every system call of the library fails in turn, in every public operation: what was there stays, or becomes all new.
#include "tests/faults/Campaign.h"
#include "tests/faults/Operations.h"
#include "tests/faults/shim/SystemCalls.h"
#include "tests/support/Descriptors.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/Process.h"
#include "tests/support/ScopedFileSizeLimit.h"
#include "tests/support/SmallDisk.h"

#include <QtCore/QList>
#include <QtCore/QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <vector>

#include <malloc.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace faults {
namespace {

/// A round that takes longer hangs: what is longest waits for a service, or for a lock.
constexpr unsigned kRoundTime = 60;
/// What the memory in use may grow by over all rounds of an operation.
constexpr size_t kMemoryBound = size_t{128} * 1024;
/// How often an operation is run before what it keeps, such as a cache, counts.
constexpr int kWarmUps = 3;
/// How many losses of one operation are told in words.
constexpr qint64 kTexts = 16;

/// How a call can fail, on a handset that is short of something or has a worn-out disk.
struct Errors
{
    const char* call;
    std::vector<int> errors;
};

const std::vector<Errors>& errorTable()
{
    using shim::kShort;
    static const std::vector<int> kStatus{EIO, ENOMEM, EACCES};
    static const std::vector<int> kName{EIO, EACCES, EROFS};
    static const std::vector<int> kMode{EIO, EPERM, EROFS};
    static const std::vector<Errors> kTable{
        {"accept4", {EINTR, EMFILE, ENFILE, ENOMEM, ECONNABORTED}},
        {"access", kStatus},
        {"bind", {ENOMEM, ENOSPC, EACCES}},
        {"chmod", kMode},
        {"close", {EINTR, EIO, ENOSPC}},
        {"closedir", {EINTR}},
        {"connect", {EINTR, EAGAIN, ENOMEM, EACCES}},
        {"fchmod", kMode},
        {"fchmodat", kMode},
        {"fchown", kMode},
        {"fdopendir", {ENOMEM}},
        {"flock", {EINTR, ENOLCK, EWOULDBLOCK}},
        {"fstat64", kStatus},
        {"fstatat64", kStatus},
        {"fsync", {EINTR, EIO, ENOSPC, EINVAL}},
        {"ftruncate64", {EINTR, EIO, ENOSPC}},
        {"getsockopt", {ENOBUFS, ENOMEM}},
        {"inotify_add_watch", {ENOSPC, ENOMEM}},
        {"inotify_init1", {EMFILE, ENOMEM}},
        {"inotify_rm_watch", {EINVAL}},
        {"ioctl", {ENOMEM}},
        {"kill", {EPERM}},
        {"linkat", {EIO, ENOSPC, EPERM}},
        {"listen", {EADDRINUSE}},
        {"lseek64", {ESPIPE}},
        {"lstat64", kStatus},
        {"madvise", {ENOMEM, EAGAIN}},
        {"mkdir", {EIO, ENOSPC, EACCES}},
        {"mkdirat", {EIO, ENOSPC, EACCES}},
        {"nanosleep", {EINTR}},
        {"open64", {EINTR, EIO, EMFILE, ENFILE, ENOMEM, EACCES}},
        {"openat2", {EINTR, EIO, EMFILE, ENFILE, ENOMEM, EACCES, ENOSYS}},
        {"openat64", {EINTR, EIO, EMFILE, ENFILE, ENOMEM, EACCES, ENOSPC}},
        {"poll", {EINTR, ENOMEM}},
        {"pread64", {EINTR, EIO, kShort}},
        {"pwrite64", {EINTR, EIO, ENOSPC, kShort}},
        {"read", {EINTR, EIO, kShort}},
        {"readdir64", {EIO}},
        {"readlink", kStatus},
        {"readlinkat", kStatus},
        {"recv", {EINTR, EAGAIN, ENOMEM, ECONNRESET, kShort}},
        {"rename", {EIO, ENOSPC}},
        {"renameat", {EIO, ENOSPC}},
        {"renameat2", {EIO, ENOSPC, EACCES, EINVAL, ENOSYS}},
        {"rmdir", kName},
        {"send", {EINTR, EAGAIN, ENOBUFS, ENOMEM, EPIPE, ECONNRESET, kShort}},
        {"sendmsg", {EINTR, EAGAIN, ENOBUFS, ENOMEM, EPIPE, ECONNRESET, kShort}},
        {"setsockopt", {ENOBUFS, ENOMEM}},
        {"shmat", {ENOMEM, EACCES}},
        {"shmctl", {EACCES}},
        {"shmget", {ENOSPC, ENOMEM}},
        {"shutdown", {ENOTCONN}},
        {"socket", {EMFILE, ENFILE, ENOBUFS, ENOMEM}},
        {"stat64", kStatus},
        {"statx", kStatus},
        {"symlinkat", {EIO, ENOSPC}},
        {"unlink", kName},
        {"unlinkat", kName},
        {"write", {EINTR, EIO, ENOSPC}},
    };
    return kTable;
}

const std::vector<int>& errorsOf(const char* call)
{
    static const std::vector<int> kNone;
    const auto row = std::ranges::find_if(errorTable(),
                                          [call](const Errors& errors) { return std::strcmp(errors.call, call) == 0; });
    return row == errorTable().end() ? kNone : row->errors;
}

/// Whether the same error may come again and again: after the others the caller tries again for as long as they come,
/// and what a kernel without memory does not take of a channel is lost in the end.
bool canLast(const QByteArray& call, int error)
{
    static const std::set<int> kPassing{EINTR, EAGAIN, ECONNABORTED, ENOBUFS, shim::kShort};
    return !kPassing.contains(error) && !(error == ENOMEM && call == "send");
}

/// Whether nobody may notice: the rest, or the same again, can be asked for at once.
bool isNothing(const shim::Fault& fault)
{
    return fault.later == 0 && (fault.error == EINTR || fault.error == shim::kShort);
}

// What a child tells the campaign, in memory that both have.

struct Told
{
    qint64 rounds;
    qint64 faults;
    qint64 checks;
    qint64 absorbed; ///< faults after which the operation succeeded
    qint64 losses;
    qint64 growth;
    char now[256];
    char texts[kTexts][256];

    void say(const QByteArray& text)
    {
        if (losses < kTexts)
            qstrncpy(texts[losses], text.constData(), sizeof texts[losses]);
        ++losses;
    }
};

Told* s_told = nullptr;

bool check(bool holds, const QByteArray& what)
{
    ++s_told->checks;
    if (!holds)
        s_told->say(QByteArray(s_told->now) + ": " + what);
    return holds;
}

// What may be there after a failure.

/// The slots of a file, of which the name tells the kind.
bool isOfSlots(const QByteArray& name, const QByteArray& now, const QByteArray& before, const QByteArray& after)
{
    if (now.size() != before.size() || now.size() != after.size())
        return false;
    const qsizetype size = name.startsWith("rc_") ? 228 : name == "topPalsDetails" ? 24 : 300;
    int torn = 0;
    for (qsizetype offset = 8; offset < now.size(); offset += size) {
        const auto slot = [&](const QByteArray& file) {
            return QByteArrayView(file).sliced(offset, std::min(size, file.size() - offset));
        };
        torn += slot(now) != slot(before) && slot(now) != slot(after);
    }
    return torn <= 1 && now.first(8) == before.first(8);
}

bool isOfLines(const QByteArray& now, const QByteArray& before, const QByteArray& after)
{
    const QList<QByteArray> known = before.split('\n') + after.split('\n');
    return std::ranges::all_of(now.split('\n'), [&](const QByteArray& line) { return known.contains(line); });
}

const QByteArray* fileIn(const State& state, const QByteArray& name)
{
    const auto found = state.find(name);
    return found == state.end() ? nullptr : &found->second;
}

bool isSame(const QByteArray* left, const QByteArray* right)
{
    return left && right ? *left == *right : left == right;
}

/// The first file that is not as it may be; empty when all are.
QByteArray spoilt(const State& now, const State& before, const State& after, Left left)
{
    std::set<QByteArray> names;
    for (const State* state : {&before, &after})
        for (const auto& [name, contents] : *state)
            names.insert(name);
    for (const QByteArray& name : names) {
        const QByteArray* const found = fileIn(now, name);
        const QByteArray* const old = fileIn(before, name);
        const QByteArray* const changed = fileIn(after, name);
        if (isSame(found, old) || (left != Left::Nothing && isSame(found, changed)))
            continue;
        const bool isWhole = found && old && changed;
        if (isWhole && left == Left::Slots && isOfSlots(name, *found, *old, *changed))
            continue;
        if (isWhole && left == Left::Lines && isOfLines(*found, *old, *changed))
            continue;
        return name;
    }
    return {};
}

/// The first name that belongs to neither of them, such as that of a temporary file.
QByteArray stray(const State& now, const State& before, const State& after)
{
    const auto found = std::ranges::find_if(
        now, [&](const auto& entry) { return !fileIn(before, entry.first) && !fileIn(after, entry.first); });
    return found == now.end() ? QByteArray() : found->first;
}

/// Whether @p name may stay when @p call fails: it could not be removed, or the lock's file not be told from another's.
/// The next operation removes it.
bool mayLeave(const QByteArray& name, const QByteArray& call)
{
    static const std::set<QByteArray> kLockCalls{"flock", "fstat64", "lstat64"};
    return call.startsWith("unlink") || (name.endsWith(".lock") && kLockCalls.contains(call));
}

/// One operation, as it is without a fault.
class Subject
{
public:
    explicit Subject(const Operation& operation)
        : m_operation(operation)
    {
        for (int i = 0; i < kWarmUps; ++i) {
            m_operation.prepare();
            m_before = m_operation.before ? m_operation.before() : m_operation.state();
            shim::arm();
            m_result = m_operation.run();
            shim::disarm();
            m_after = m_operation.state();
            m_descriptors = openDescriptors();
            leaveOperation();
        }
        for (int i = 0; i < shim::count(); ++i)
            m_calls.append(shim::name(i));
        m_memory = ::mallinfo2().uordblks;
        check(m_operation.isSilent || m_result != m_operation.failure, "fails without a fault: " + m_result);
    }

    const QList<const char*>& calls() const { return m_calls; }
    const State& after() const { return m_after; }

    /// Runs it while @p fault happens, and again without.
    void endure(const QByteArray& what, const shim::Fault& fault)
    {
        begin(what);
        shim::arm(fault);
        const QByteArray result = m_operation.run();
        shim::disarm();
        // Channels look for their listeners again with the next message.
        if (isNothing(fault) && !m_operation.before)
            check(result == m_result, "it is not done");
        judge(result, shim::name(fault.call));
        repeat();
    }

    /// The same with files of a limited size.
    void endureLimit(qint64 bytes)
    {
        begin("files of " + QByteArray::number(bytes) + " bytes at most");
        QByteArray result;
        {
            const ScopedFileSizeLimit limit{static_cast<rlim_t>(bytes)};
            result = m_operation.run();
        }
        judge(result, {});
        repeat();
    }

    /// The same on a disk with so many pages left.
    void endureFullDisk(const SmallDisk& disk, int pages)
    {
        begin("a disk with " + QByteArray::number(pages) + " pages left");
        disk.fill(pages);
        const QByteArray result = m_operation.run();
        disk.clear();
        judge(result, {});
        repeat();
    }

    void end()
    {
        const size_t memory = ::mallinfo2().uordblks;
        const size_t growth = memory > m_memory ? memory - m_memory : 0;
        s_told->growth = std::max(s_told->growth, static_cast<qint64>(growth));
        check(growth <= kMemoryBound, "memory has grown by " + QByteArray::number(quint64{growth}) + " bytes");
    }

private:
    void begin(const QByteArray& what)
    {
        ::alarm(kRoundTime);
        qstrncpy(s_told->now, (QByteArray(m_operation.name) + ", " + what).constData(), sizeof s_told->now);
        ++s_told->rounds;
        ++s_told->faults;
        m_operation.prepare();
    }

    void judge(const QByteArray& result, const QByteArray& failed)
    {
        const bool isDone = result == m_result;
        s_told->absorbed += isDone;
        check(isDone || result == m_operation.failure, "its result is " + result);
        const State now = m_operation.state();
        if (isDone && !m_operation.isSilent) {
            const QByteArray name = spoilt(now, m_after, m_after, Left::Nothing);
            check(name.isEmpty(), "it has succeeded, but not in " + name);
        } else {
            const QByteArray name = spoilt(now, m_before, m_after, m_operation.left);
            check(name.isEmpty(), "it has failed, and spoilt " + name);
        }
        const QByteArray name = stray(now, m_before, m_after);
        check(name.isEmpty() || mayLeave(name, failed), "it leaves " + name);
        // The other end of a connection closes in the event loop.
        check(QTest::qWaitFor([this] { return openDescriptors() <= m_descriptors; }), "a descriptor stays open");
        leaveOperation();
    }

    void repeat()
    {
        ++s_told->rounds;
        m_operation.prepare();
        const QByteArray result = m_operation.run();
        check(result == m_result, "afterwards its result is " + result);
        const State now = m_operation.state();
        const QByteArray name = spoilt(now, m_after, m_after, Left::Nothing);
        check(name.isEmpty(), "afterwards it is not done in " + name);
        const QByteArray left = stray(now, m_before, m_after);
        check(left.isEmpty(), "afterwards it leaves " + left);
        leaveOperation();
    }

    const Operation& m_operation;
    State m_before;
    State m_after;
    QByteArray m_result;
    QList<const char*> m_calls;
    qsizetype m_descriptors = 0;
    size_t m_memory = 0;
};

QByteArray nameOf(int error)
{
    return error == shim::kShort ? QByteArray("a part") : QByteArray(::strerrorname_np(error));
}

/// Each call with each of its errors, once and from then on; in the short form with one of them,
/// in one of these ways, and a part.
void failCalls(Subject& subject, bool isShort, QRandomGenerator& random)
{
    const QList<const char*> calls = subject.calls();
    for (int i = 0; i < calls.size(); ++i) {
        std::vector<int> errors = errorsOf(calls.at(i));
        if (isShort && !errors.empty()) {
            const bool canBeShort = errors.back() == shim::kShort;
            errors = {errors.at(random.bounded(static_cast<quint32>(errors.size())))};
            if (canBeShort && errors.back() != shim::kShort)
                errors.push_back(shim::kShort);
        }
        for (const int error : errors) {
            const QByteArray what = nameOf(error) + " of call " + QByteArray::number(i) + ", " + calls.at(i);
            const bool lasts = canLast(calls.at(i), error);
            const bool isOther = isShort && random.bounded(2) == 1;
            if (!lasts || !isOther)
                subject.endure(what, {i, error, 0});
            if (lasts && isShort == isOther)
                subject.endure(what + ", and of all that follow", {i, error, error});
            if (!isShort && error == shim::kShort && std::strstr(calls.at(i), "write"))
                subject.endure(what + ", and then no space", {i, error, ENOSPC});
        }
    }
}

/// Files that cannot grow beyond each size, and a disk that is full.
void limitFiles(Subject& subject, const Operation& operation, int lengths, QRandomGenerator& random)
{
    qsizetype longest = 0;
    for (const auto& [name, contents] : subject.after())
        longest = std::max(longest, contents.size());
    const qsizetype step = std::max<qsizetype>(longest / lengths, 1);
    for (qsizetype size = step > 1 ? random.bounded(static_cast<int>(step)) : 0; size <= longest; size += step)
        subject.endureLimit(size);
    subject.end();
    const SmallDisk disk(QString::fromLatin1(kPlace), "256k");
    if (!disk.isMounted())
        return;
    Subject onDisk(operation);
    for (int pages = 0; pages <= 4; ++pages)
        onDisk.endureFullDisk(disk, pages);
    onDisk.end();
}

struct Run
{
    bool isShort;
    int lengths;
    quint32 seed;
};

[[noreturn]] void runChild(const Operation& operation, const Run& run)
{
    // What a listener says that could not be set up.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg)
            s_told->say(QByteArray(s_told->now) + ": " + text.toUtf8());
    });
    ::alarm(kRoundTime);
    qstrncpy(s_told->now, operation.name, sizeof s_told->now);
    enterPlace();
    QRandomGenerator random(run.seed);
    Subject subject(operation);
    failCalls(subject, run.isShort, random);
    if (operation.writesFiles)
        limitFiles(subject, operation, run.lengths, random);
    subject.end();
    endForkedChild(EXIT_SUCCESS);
}

/// Runs one operation in a process of its own, whose end is no end of the campaign.
void endure(Campaign& campaign, const Operation& operation, const Run& run)
{
    *s_told = {};
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0)
        runChild(operation, run);
    int status = 0;
    ::waitpid(child, &status, 0);
    campaign.operate(s_told->rounds);
    campaign.breakThings(s_told->faults);
    for (qint64 i = s_told->losses; i < s_told->checks; ++i)
        campaign.check(true, {});
    for (qint64 i = 0; i < s_told->losses; ++i)
        campaign.check(false, QString::fromLocal8Bit(s_told->texts[std::min(i, kTexts - 1)]));
    const bool isAlive = WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
    const bool hangs = WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM;
    campaign.check(isAlive, QString::fromLocal8Bit(s_told->now) + QLatin1String(hangs ? ": it hangs" : ": it crashes"));
}

} // namespace

void calls(Campaign& campaign)
{
    void* const shared = ::mmap(nullptr, sizeof(Told), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (!campaign.check(shared != MAP_FAILED, QStringLiteral("no shared memory")))
        return;
    s_told = static_cast<Told*>(shared);
    ServiceProcess recentCalls;
    ServiceProcess phone;
    const QString place = QStringLiteral("mkdir -p %1; export ZYN_LOCAL_APP_WRITE_PATH=%1 ZYN_APP_WRITE_PATH=%1;")
                              .arg(QLatin1String(kServicePlace));
    campaign.check(recentCalls.start(campaign.program("zyn-recentcalld").toLocal8Bit(), {}, place)
                       && phone.start(campaign.program("zyn-phoned").toLocal8Bit(), {}, place),
                   QStringLiteral("the services do not start"));
    const std::span<const Operation> all = operations();
    qint64 absorbed = 0;
    qint64 growth = 0;
    for (size_t i = 0; i < all.size(); ++i) {
        campaign.progress(qint64(i), qint64(all.size()));
        endure(campaign, all[i],
               {campaign.length(0, 1) == 1, static_cast<int>(campaign.length(200, 4)), campaign.random().generate()});
        absorbed += s_told->absorbed;
        growth = std::max(growth, s_told->growth);
    }
    campaign.measure(QStringLiteral("operations in the table"), qint64(all.size()));
    campaign.measure(QStringLiteral("faults absorbed"), absorbed);
    campaign.measure(QStringLiteral("most bytes grown"), growth);
    campaign.check(recentCalls.stop() == 0 && phone.stop() == 0, QStringLiteral("a service did not end cleanly"));
    ::munmap(shared, sizeof(Told));
}

} // namespace faults
