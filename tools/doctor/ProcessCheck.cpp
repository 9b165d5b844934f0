// The user's other processes with our libraries: where they listen, and which files of the libraries they have.
#include "platform/qcop/ChannelDirectory_p.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "tools/zynphone/SocketProbe.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QSet>

#include <algorithm>
#include <array>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Every program of the library has the first, since the others need it.
constexpr std::array<const char*, 2> kLibraries{"/libzynplatform.so", "/libzynphone.so"};
constexpr char kDeleted[] = " (deleted)";
/// Above any list of mappings or sockets that a handset has.
constexpr qint64 kProcLimit = qint64{8} * 1024 * 1024;
constexpr qsizetype kMapFields = 5; ///< before the path: addresses, rights, offset, device and inode
constexpr qsizetype kSocketFields = 7;

/// A file of /proc; empty if the process has ended or is not for us to see.
QByteArray contents(const QString& path)
{
    QFile file(path); // no regular file: its size is not known before
    return file.open(QIODevice::ReadOnly) ? file.read(kProcLimit) : QByteArray();
}

QString fileOf(pid_t process, const char* name)
{
    return u"/proc/%1/%2"_s.arg(process).arg(QLatin1String(name));
}

/// What follows the first @p fields words of @p line.
QByteArray afterFields(const QByteArray& line, qsizetype fields)
{
    qsizetype at = 0;
    for (; fields > 0 && at < line.size(); --fields) {
        while (at < line.size() && line.at(at) != ' ')
            ++at;
        while (at < line.size() && line.at(at) == ' ')
            ++at;
    }
    return line.mid(at);
}

struct Library
{
    QByteArray path; ///< empty if the process has none
    QByteArray file; ///< its device and inode

    bool operator==(const Library&) const = default;
};

/// As kLibraries.
using Libraries = std::array<Library, kLibraries.size()>;

Libraries librariesOf(pid_t process)
{
    Libraries libraries;
    for (const QByteArray& line : contents(fileOf(process, "maps")).split('\n')) {
        const QByteArray path = afterFields(line, kMapFields);
        const QByteArray name = path.mid(path.lastIndexOf('/'));
        const auto known =
            std::ranges::find_if(kLibraries, [&](const char* library) { return name.startsWith(library); });
        if (known == kLibraries.end())
            continue;
        Library& library = libraries.at(static_cast<size_t>(known - kLibraries.begin()));
        const QByteArray file = afterFields(line, kMapFields - 2);
        if (library.path.isEmpty())
            library = {path, file.first(file.size() - path.size()).trimmed()};
    }
    return libraries;
}

/// The place that the environment names with which @p process was started.
QByteArray startPlaceOf(pid_t process)
{
    ChannelEnvironment environment;
    for (const QByteArray& variable : contents(fileOf(process, "environ")).split('\0')) {
        const qsizetype equals = variable.indexOf('=');
        if (equals > 0 && variable.first(equals) == "ZYN_QCOP_PATH")
            environment.channelPath = variable.mid(equals + 1);
        else if (equals > 0 && variable.first(equals) == "XDG_RUNTIME_DIR")
            environment.runtimePath = variable.mid(equals + 1);
    }
    return environment.root();
}

/// The processes that listen in @p root.
QSet<pid_t> listenersIn(const QByteArray& root)
{
    QSet<pid_t> processes;
    for (const QByteArray& channel : ChannelDirectory::channels(root)) {
        const auto directory = ChannelDirectory::open(root, channel);
        for (const QByteArray& name :
             directory ? directory->listeners().value_or(QList<QByteArray>()) : QList<QByteArray>())
            processes.insert(ChannelDirectory::owner(name));
    }
    return processes;
}

/// Where processes listen by the names of their sockets, which tell more than the environment at their start. Long
/// names are relative to a descriptor, and tell nothing.
QHash<pid_t, QByteArray> placesOfSockets()
{
    QHash<pid_t, QByteArray> places;
    for (const QByteArray& line : contents(u"/proc/net/unix"_s).split('\n')) {
        const QByteArray path = afterFields(line, kSocketFields);
        const pid_t owner = ChannelDirectory::owner(path.mid(path.lastIndexOf('/') + 1));
        const QByteArray channel = parentOf(path);
        if (owner > 0 && path.startsWith('/') && !path.startsWith("/proc/") && channel.contains('%'))
            places.insert(owner, parentOf(channel));
    }
    return places;
}

/// Whether @p process sees the same files as this one: one in a /tmp of its own is in a handset of its own.
bool isAmongOurs(pid_t process)
{
    struct stat own = {};
    struct stat other = {};
    return ::stat("/proc/self/ns/mnt", &own) == 0
           && ::stat(QFile::encodeName(fileOf(process, "ns/mnt")).constData(), &other) == 0
           && own.st_ino == other.st_ino && own.st_dev == other.st_dev;
}

/// This user's, other than this one, among ours.
QList<pid_t> processes()
{
    QList<pid_t> found;
    for (const QString& name : QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        bool isNumber = false;
        const pid_t process = name.toInt(&isNumber);
        struct stat status = {};
        if (isNumber && process != QCoreApplication::applicationPid()
            && ::stat(QFile::encodeName(u"/proc/"_s + name).constData(), &status) == 0 && status.st_uid == ::geteuid()
            && isAmongOurs(process))
            found += process;
    }
    std::ranges::sort(found);
    return found;
}

std::optional<Finding> placeFault(pid_t process, const QByteArray& place, const QByteArray& root)
{
    if (place == root)
        return std::nullopt;
    const QString here = QFile::decodeName(root);
    const QString text = place.isEmpty() ? u"its ZYN_QCOP_PATH and XDG_RUNTIME_DIR name no place for the channels"_s
                                         : u"its channels are in %1"_s.arg(QFile::decodeName(place));
    return wrong(processText(process), u"%1, yours in %2: neither hears the other"_s.arg(text, here),
                 u"end it, and start it with ZYN_QCOP_PATH=%1"_s.arg(shellWord(root)));
}

QString joined(const QByteArrayList& paths)
{
    return QFile::decodeName(paths.join(", "));
}

std::optional<Finding> libraryFault(pid_t process, const Libraries& libraries, const Libraries& own)
{
    QByteArrayList replaced;
    QByteArrayList others;
    QByteArrayList ours;
    for (size_t i = 0; i < libraries.size(); ++i) {
        if (libraries.at(i).path.endsWith(kDeleted)) {
            replaced += libraries.at(i).path;
        } else if (!libraries.at(i).path.isEmpty() && !own.at(i).path.isEmpty()
                   && libraries.at(i).file != own.at(i).file) {
            others += libraries.at(i).path;
            ours += own.at(i).path;
        }
    }
    if (!replaced.isEmpty())
        return wrong(processText(process),
                     u"what it has loaded was replaced since it began: %1"_s.arg(joined(replaced)),
                     u"end it, and start it again"_s);
    if (others.isEmpty())
        return std::nullopt;
    return wrong(processText(process),
                 u"it has another library than this tool: %1, not %2"_s.arg(joined(others), joined(ours)),
                 u"use programs and tool of one installation; see LD_LIBRARY_PATH and PATH"_s);
}

} // namespace

Findings checkProcesses()
{
    Findings findings;
    const QByteArray root = ChannelEnvironment::current().root();
    const Libraries own = librariesOf(static_cast<pid_t>(QCoreApplication::applicationPid()));
    const QSet<pid_t> here = root.isEmpty() ? QSet<pid_t>() : listenersIn(root);
    const QHash<pid_t, QByteArray> places = placesOfSockets();
    for (const pid_t process : processes()) {
        const Libraries libraries = librariesOf(process);
        if (libraries.front().path.isEmpty())
            continue;
        Findings ofProcess;
        if (!root.isEmpty() && !here.contains(process)) { // an empty one is reported by the check of the environment
            const auto place = places.constFind(process);
            if (const auto fault = placeFault(process, place == places.cend() ? startPlaceOf(process) : *place, root))
                ofProcess.push_back(*fault);
        }
        if (const auto fault = libraryFault(process, libraries, own))
            ofProcess.push_back(*fault);
        // Of one that has ended meanwhile, what was read last is missing.
        if (!ofProcess.empty() && librariesOf(process) == libraries)
            findings.add(ofProcess);
    }
    return findings;
}

} // namespace zyn::tool
