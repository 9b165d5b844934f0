// Reading and changing one settings file.
#include "platform/SettingsFile_p.h"

#include "platform/posix/File_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLockFile>
#include <QtCore/QSaveFile>
#include <QtCore/QThread>

#include <chrono>
#include <tuple>

namespace {

constexpr qsizetype kSizeLimit = qsizetype{1024} * 1024;
constexpr std::chrono::milliseconds kLockTimeout{5000};
constexpr std::chrono::milliseconds kLockPause{2};
/// From this age on a lock file is taken away unless the kernel's lock on it shows that its holder lives. Nothing else
/// tells of a holder that was killed before it had written its number, or that nobody has waited for yet.
constexpr std::chrono::milliseconds kOldLock{2000};
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

/// The file that @p path names, so that a link and its target are changed under one lock.
QString resolved(const QString& path)
{
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}

bool syncDirectory(const QString& path)
{
    return zyn::posix::sync(zyn::posix::openForReading(QFile::encodeName(path)).get());
}

/// Creates the directory @p path, and those above it, on disk.
bool makeDirectory(const QString& path)
{
    const auto exists = [&] { return QFileInfo(path).isDir(); };
    if (exists())
        return true;
    const QString parent = QFileInfo(path).path();
    return parent != path && makeDirectory(parent) && (QDir().mkdir(path) || exists()) && syncDirectory(parent);
}

/// Takes @p lock, or gives up after kLockTimeout. QLockFile's own wait doubles its pauses up to seconds, in which a
/// busy writer takes the lock many times over.
bool acquire(QLockFile& lock)
{
    lock.setStaleLockTime(kOldLock);
    const QDeadlineTimer deadline(kLockTimeout);
    while (!lock.tryLock(0)) {
        if (lock.error() != QLockFile::LockFailedError || deadline.hasExpired())
            return false;
        QThread::msleep(kLockPause.count());
    }
    return true;
}

/// Puts @p text in the place of the file's contents, whole or not at all.
bool save(const QString& path, const QByteArray& text)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush()
           && zyn::posix::sync(file.handle()) && file.commit() && syncDirectory(QFileInfo(path).path());
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
    const QString path = resolved(m_path);
    QLockFile lock(path + QLatin1String(".lock"));
    if (m_isLockedOut)
        return false;
    if (!acquire(lock)) {
        m_isLockedOut = lock.error() == QLockFile::LockFailedError;
        return false;
    }
    const std::optional<QByteArray> text =
        QFileInfo::exists(path) ? posix::readWhole(QFile::encodeName(path), kSizeLimit) : QByteArray();
    if (!text)
        return false;
    const QByteArray entry = key.toUtf8() + '=' + value.toUtf8() + '\n';
    const QByteArray changed = withEntry(*text, group.toUtf8(), key.toUtf8(), entry);
    return changed.size() <= kSizeLimit && save(path, changed);
}

} // namespace zyn
