// What is in /tmp, what the intruder tries there, and what comes of it.
#include "tests/faults/intruder/Evidence.h"

#include "platform/posix/UniqueFd_p.h"
#include "tests/faults/intruder/Users.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace intruder {
namespace {

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

} // namespace

Report report;

void Report::breach(const QString& what)
{
    breaches.append(what);
    std::fprintf(stderr, "BREACH  %s\n", qPrintable(what));
}

void Report::check(bool holds, const QString& what)
{
    ++checks;
    if (!holds)
        breach(what);
}

void noteLines(const QList<QByteArray>& lines)
{
    for (const QByteArray& line : lines) {
        const QList<QByteArray> words = line.split('\t');
        if (words.size() == 3)
            note(words[0], words[1], words[2] == "1");
    }
}

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

bool isOpened(const QByteArray& path, int flags)
{
    return zyn::posix::UniqueFd(::open(path.constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666)).isValid();
}

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

Snapshot snapshot()
{
    Snapshot all;
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

void compare(const Snapshot& before, const Snapshot& after, const QString& when)
{
    for (auto it = before.begin(); it != before.end(); ++it)
        report.check(after.value(it.key()) == it.value(),
                     u"%1: %2 was changed: %3, now %4"_s.arg(when, QFile::decodeName(it.key()),
                                                             QString::fromLatin1(*it),
                                                             QString::fromLatin1(after.value(it.key()))));
}

} // namespace intruder
