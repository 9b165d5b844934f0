// Reading and changing one settings file.
#include "platform/SettingsFile_p.h"

#include "platform/posix/FileLock_p.h"
#include "platform/posix/File_p.h"
#include "platform/posix/PrivateDirectory_p.h"
#include "platform/posix/StagedFile_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QThread>

#include <cerrno>
#include <chrono>
#include <tuple>

#include <fcntl.h>

namespace {

constexpr qsizetype kSizeLimit = qsizetype{1024} * 1024;
constexpr std::chrono::milliseconds kLockTimeout{5000};
constexpr std::chrono::milliseconds kLockPause{2};
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

struct Line
{
    enum Kind { Passive, Group, Entry, Stray };

    Kind kind = Passive;
    QByteArrayView name;  ///< of the group or of the key
    QByteArrayView value; ///< of an entry
};

Line parse(QByteArrayView text)
{
    if (text.endsWith('\r'))
        text.chop(1);
    const QByteArrayView trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.front() == '#' || trimmed.front() == ';')
        return {};
    // One that is not UTF-8 is a group all the same: its entries are not those of the group before it.
    if (trimmed.front() == '[' && trimmed.back() == ']')
        return {Line::Group, trimmed.sliced(1, trimmed.size() - 2), {}};
    if (!text.isValidUtf8())
        return {Line::Stray, {}, {}};
    const qsizetype equals = text.indexOf('=');
    const QByteArrayView key = equals < 0 ? QByteArrayView() : text.first(equals).trimmed();
    if (key.isEmpty())
        return {Line::Stray, {}, {}};
    return {Line::Entry, key, text.sliced(equals + 1)};
}

/// Where the first line of @p text begins.
qsizetype firstLine(const QByteArray& text)
{
    return text.startsWith(kByteOrderMark) ? qsizetype(sizeof kByteOrderMark - 1) : 0;
}

/// Calls @p visit(line, begin, end) for each line of @p text; [begin, end) is the line's place, its line end included.
template<typename Visit>
void forEachLine(const QByteArray& text, Visit visit)
{
    qsizetype begin = firstLine(text);
    while (begin < text.size()) {
        const qsizetype newline = text.indexOf('\n', begin);
        const qsizetype textEnd = newline < 0 ? text.size() : newline;
        const qsizetype end = newline < 0 ? text.size() : newline + 1;
        visit(parse(QByteArrayView(text).sliced(begin, textEnd - begin)), begin, end);
        begin = end;
    }
}

bool fitsOneLine(const QString& text)
{
    return !text.contains(u'\n') && !text.contains(u'\r') && QString::fromUtf8(text.toUtf8()) == text;
}

bool isKey(const QString& key)
{
    return !key.isEmpty() && key == key.trimmed() && !key.contains(u'=') && key.front() != u'[' && key.front() != u'#'
           && key.front() != u';' && fitsOneLine(key);
}

/// @p text with @p entry (a whole line) in the place of the last entry of @p key in @p group, or else at the end of
/// that group, or else in a new group at the end.
QByteArray withEntry(QByteArray text, const QByteArray& group, const QByteArray& key, const QByteArray& entry)
{
    qsizetype entryBegin = -1;
    qsizetype entryEnd = -1;
    qsizetype groupEnd = group.isEmpty() ? firstLine(text) : -1;
    bool inGroup = group.isEmpty();
    forEachLine(text, [&](const Line& line, qsizetype begin, qsizetype end) {
        if (line.kind == Line::Group)
            inGroup = line.name == group;
        else if (inGroup && line.kind == Line::Entry && line.name == key)
            std::tie(entryBegin, entryEnd) = std::pair(begin, end);
        // The blank lines that set a group apart from the next stay behind it.
        if (inGroup && !QByteArrayView(text).sliced(begin, end - begin).trimmed().isEmpty())
            groupEnd = end;
    });
    if (entryBegin >= 0)
        return text.replace(entryBegin, entryEnd - entryBegin, entry);

    QByteArray added = entry;
    if (groupEnd < 0) {
        added = (text.isEmpty() ? "[" : "\n[") + group + "]\n" + entry;
        groupEnd = text.size();
    }
    if (groupEnd > firstLine(text) && text.at(groupEnd - 1) != '\n')
        added.prepend('\n');
    return text.insert(groupEnd, added);
}

bool syncDirectory(const QString& path)
{
    return zyn::posix::sync(zyn::posix::openForReading(QFile::encodeName(path)).get());
}

/// Creates the directory @p path, and those above it, on disk.
bool makeDirectory(const QString& path)
{
    constexpr mode_t kMode = 0777; // less the process's umask
    const QByteArray name = QFile::encodeName(path);
    const auto exists = [&] { return zyn::posix::openTrusted(name, O_PATH | O_DIRECTORY).isValid(); };
    if (exists())
        return true;
    const QString parent = QFileInfo(path).path();
    return parent != path && makeDirectory(parent) && (zyn::posix::makeDirectory(name, kMode) || exists())
           && syncDirectory(parent);
}

/// Takes the lock, or gives up after kLockTimeout with errno EWOULDBLOCK. That of another user is not waited for.
bool acquire(zyn::posix::FileLock& lock, const QByteArray& path)
{
    const QDeadlineTimer deadline(kLockTimeout);
    while (!lock.take(path, zyn::posix::LockOwner::Trusted)) {
        if (errno != EWOULDBLOCK || deadline.hasExpired())
            return false;
        QThread::msleep(static_cast<unsigned long>(kLockPause.count()));
    }
    return true;
}

/// What the file at @p place holds; empty when it is missing.
std::optional<QByteArray> read(const zyn::posix::Place& place)
{
    const zyn::posix::UniqueFd fd = zyn::posix::openAt(place, O_RDONLY);
    if (!fd.isValid() && errno == ENOENT)
        return QByteArray();
    return zyn::posix::readWhole(fd.get(), kSizeLimit);
}

} // namespace

namespace zyn {

std::optional<QByteArray> SettingsFile::value(const QString& group, const QString& key) const
{
    const std::optional<QByteArray> text = posix::readWhole(QFile::encodeName(m_path), kSizeLimit);
    if (!text)
        return std::nullopt;
    const QByteArray wantedGroup = group.toUtf8();
    const QByteArray wantedKey = key.toUtf8();
    std::optional<QByteArray> found;
    bool inGroup = wantedGroup.isEmpty();
    forEachLine(*text, [&](const Line& line, qsizetype, qsizetype) {
        if (line.kind == Line::Group)
            inGroup = line.name == wantedGroup;
        else if (inGroup && line.kind == Line::Entry && line.name == wantedKey)
            found = line.value.toByteArray();
    });
    return found;
}

std::optional<QList<int>> SettingsFile::strayLines() const
{
    const std::optional<QByteArray> text = posix::readWhole(QFile::encodeName(m_path), kSizeLimit);
    if (!text)
        return std::nullopt;
    QList<int> numbers;
    int number = 0;
    forEachLine(*text, [&](const Line& line, qsizetype, qsizetype) {
        ++number;
        if (line.kind == Line::Stray)
            numbers.append(number);
    });
    return numbers;
}

bool SettingsFile::setValue(const QString& group, const QString& key, const QString& value)
{
    if (!fitsOneLine(group) || !isKey(key) || !fitsOneLine(value))
        return false;
    if (m_path.contains(QChar::Null) || !makeDirectory(QFileInfo(m_path).path()))
        return false;
    // A link and its target are changed under one lock.
    const std::optional<posix::Place> place = posix::placeOf(QFile::encodeName(m_path));
    if (m_isLockedOut || !place)
        return false;
    posix::FileLock lock;
    if (!acquire(lock, posix::pathThrough(place->directory.get(), place->name + ".lock"))) {
        m_isLockedOut = errno == EWOULDBLOCK;
        return false;
    }
    posix::removeTemporaryFiles(*place);
    const std::optional<QByteArray> text = read(*place);
    if (!text)
        return false;
    const QByteArray entry = key.toUtf8() + '=' + value.toUtf8() + '\n';
    const QByteArray changed = withEntry(*text, group.toUtf8(), key.toUtf8(), entry);
    return changed.size() <= kSizeLimit && posix::replaceFile(*place, changed);
}

} // namespace zyn
