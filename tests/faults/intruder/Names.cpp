// Names that are taken: before the services start, and while they come and go.
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/faults/intruder/Attacks.h"
#include "tests/faults/intruder/Evidence.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;

namespace intruder {
namespace {

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
        for (const char* service : kServices)
            handset[service].end(SIGTERM);
    }
    const Snapshot after = snapshot();
    for (const QByteArray& own : {kHome, kPrecious})
        report.check(after.value(own) == before.value(own),
                     what + u": "_s + QFile::decodeName(own) + u" was changed"_s);
    report.check(!QFile::exists(QFile::decodeName(kHome + "/planted")), what + u": the link was followed"_s);
    intruder.stop();
    for (const QByteArray& line : intruder.lines())
        report.breach(what + u": "_s + QString::fromLocal8Bit(line));
}

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

} // namespace

void attackNames(const Place& place, QRandomGenerator& random, const Extent& extent)
{
    std::vector<std::pair<Name, const Plant*>> cases;
    for (const Name& name : fixedNames(place))
        for (const Plant& plant : kPlants)
            cases.emplace_back(name, &plant);
    std::shuffle(cases.begin(), cases.end(), random);
    if (const auto limit = size_t(extent.names); limit > 0 && limit < cases.size())
        cases.resize(limit);
    for (const auto& [name, plant] : cases)
        attackName(place, name, *plant);
}

void attackRestarts(const Place& place, QRandomGenerator& random, const Extent& extent)
{
    const QString who = place.owner == 0 ? u"root"_s : u"the first user"_s;
    clearTmp(place);
    Handset handset(place);
    fill(place);
    const auto before = snapshot();
    Intruder intruder([seed = random.generate()](int out, int stop) { harass(out, stop, seed); });
    intruder.line();
    for (int i = 0; i < extent.restarts; ++i) {
        const char* const service = kServices[size_t(i) % std::size(kServices)];
        handset[service].end(i % 2 ? SIGKILL : SIGTERM);
        handset.start(service);
        const Answer answer = ask(place, u"calls list"_s);
        report.check(answer.code >= 0 && !answer.text.contains(kForged), u"a client hangs or is lied to"_s);
    }
    intruder.stop();
    report.attempts += intruder.line().toInt();
    for (const char* service : kServices) {
        // What cannot start while he takes its name in the very moment between two steps, its unit starts again.
        for (int tries = 0; tries < 3 && !handset[service].isRunning(); ++tries)
            handset.start(service);
    }
    report.check(handset.missing().isEmpty(), QString::fromLocal8Bit(handset.missing()));
    report.check(answers(place, u"calls list"_s, kSecret), u"%1's calls cannot be listed after restarts"_s.arg(who));

    report.check(answers(place, u"phone calls"_s), u"%1's phone does not answer after restarts"_s.arg(who));
    compare(before, snapshot(), u"%1's, after restarts"_s.arg(who));
    const int growth = handset.growth();
    report.memory[who + u", restarts"_s] = growth;
    report.check(extent.memoryBound == 0 || growth <= extent.memoryBound,
                 u"a service has grown by %1 KiB"_s.arg(growth));
}

} // namespace intruder
