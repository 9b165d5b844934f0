// Settings files: where they are, and how one is read and changed.
#include "platform/SettingsFile_p.h"

#include "platform/SettingsCache_p.h"
#include "platform/SettingsLines_p.h"
#include "platform/posix/Directory_p.h"
#include "platform/posix/FileLock_p.h"
#include "platform/posix/StagedFile_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <tuple>
#include <utility>

namespace zyn {
namespace {

constexpr std::chrono::milliseconds kLockTimeout{5000};

bool fitsOneLine(const QString& text)
{
    return !text.contains(u'\n') && !text.contains(u'\r') && QString::fromUtf8(text.toUtf8()) == text;
}

constexpr QChar kBackslash = u'\\';
constexpr qsizetype kCodeDigits = 4;

/// The characters that have a letter of their own behind a backslash.
constexpr std::pair<char16_t, char16_t> kEscapes[] = {{u'\\', u'\\'}, {u'\n', u'n'}, {u'\r', u'r'}};

/// The first character of @p text as it is stored, and how many code units it has.
std::pair<QString, qsizetype> escaped(QStringView text)
{
    for (const auto& [character, letter] : kEscapes) {
        if (text[0] == character)
            return {kBackslash + QString(QChar(letter)), 1};
    }
    if (text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate())
        return {text.first(2).toString(), 2};
    if (text[0].isSurrogate() || text[0] == QChar::ByteOrderMark)
        return {QStringLiteral("\\u%1").arg(uint{text[0].unicode()}, kCodeDigits, 16, QLatin1Char('0')), 1};
    return {QString(text[0]), 1};
}

/// The character that @p text begins with as it was stored, and how many code units it was stored in.
std::pair<QChar, qsizetype> unescaped(QStringView text)
{
    if (text[0] != kBackslash || text.size() < 2)
        return {text[0], 1};
    for (const auto& [character, letter] : kEscapes) {
        if (text[1] == letter)
            return {character, 2};
    }
    const QStringView code = text.sliced(2).first(std::min(kCodeDigits, text.size() - 2));
    constexpr QLatin1String kDigits("0123456789abcdefABCDEF");
    const bool isCode = text[1] == u'u' && code.size() == kCodeDigits
                        && std::ranges::all_of(code, [&](QChar digit) { return kDigits.contains(digit); });
    if (!isCode)
        return {text[0], 1};
    return {QChar(code.toUShort(nullptr, 16)), 2 + kCodeDigits};
}

/// The bytes that are stored for @p text: UTF-8, unless that would not come back from a line as it was. Then a byte
/// order mark leads the escaped text: it leads no other, as it does not come back.
QByteArray settingBytes(const QString& text)
{
    if (fitsOneLine(text))
        return text.toUtf8();
    QString stored;
    for (qsizetype i = 0; i < text.size();) {
        const auto [character, length] = escaped(QStringView(text).sliced(i));
        stored += character;
        i += length;
    }
    return kByteOrderMark + stored.toUtf8();
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
    qsizetype groupEnd = group.isEmpty() ? firstSettingsLine(text) : -1;
    bool inGroup = group.isEmpty();
    forEachSettingsLine(text, [&](const SettingsLine& line, qsizetype begin, qsizetype end) {
        if (line.kind == SettingsLine::Group)
            inGroup = line.name == group;
        else if (inGroup && line.kind == SettingsLine::Entry && line.name == key)
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
    if (groupEnd > firstSettingsLine(text) && text.at(groupEnd - 1) != '\n')
        added.prepend('\n');
    return text.insert(groupEnd, added);
}

/// What the file at @p path holds; empty when it is missing.
std::optional<QByteArray> read(const posix::PathAt& path)
{
    const posix::UniqueFd fd = posix::openAt(path);
    if (!fd.isValid() && errno == ENOENT)
        return QByteArray();
    return posix::readWhole(fd.get(), kSettingsSizeLimit);
}

} // namespace

QString settingsDirectory()
{
    const QString writePath = QFile::decodeName(qgetenv(kSettingsPlace));
    if (!writePath.isEmpty())
        return writePath + QLatin1String("/setup");
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QLatin1String("/zynphone/setup");
}

QString settingsFile(AM_Global::Apps app)
{
    return settingsDirectory() + QStringLiteral("/zyn_app%1.cfg").arg(int{app});
}

QString settingText(const QByteArray& value)
{
    QString stored = QString::fromUtf8(value); // which leaves the mark out
    if (!value.startsWith(kByteOrderMark))
        return stored;
    QString text;
    for (qsizetype i = 0; i < stored.size();) {
        const auto [character, length] = unescaped(QStringView(stored).sliced(i));
        text += character;
        i += length;
    }
    return text;
}

QByteArray settingWord(const QByteArray& value)
{
    return value.contains('\0') ? QByteArray() : value.trimmed();
}

std::optional<int> settingInt(const QByteArray& value)
{
    bool ok = false;
    const int number = settingWord(value).toInt(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

std::optional<QByteArray> SettingsFile::value(const QString& group, const QString& key) const
{
    return storedSetting(m_path, group, key);
}

std::optional<QList<int>> SettingsFile::strayLines() const
{
    const std::optional<QByteArray> text = posix::readWhole(QFile::encodeName(m_path), kSettingsSizeLimit);
    if (!text)
        return std::nullopt;
    QList<int> numbers;
    int number = 0;
    forEachSettingsLine(*text, [&](const SettingsLine& line, qsizetype, qsizetype) {
        ++number;
        if (line.kind == SettingsLine::Stray)
            numbers.append(number);
    });
    return numbers;
}

bool SettingsFile::setValue(const QString& group, const QString& key, const QString& value)
{
    if (!fitsOneLine(group) || !isKey(key))
        return false;
    if (m_path.contains(QChar::Null) || !posix::makeDirectories(QFile::encodeName(QFileInfo(m_path).path())))
        return false;
    // A link and its target are changed under one lock.
    const std::optional<posix::PathAt> found = posix::resolve(QFile::encodeName(m_path));
    if (m_isLockedOut || !found)
        return false;
    posix::FileLock lock;
    const QByteArray lockPath = posix::pathThrough(found->directory.get(), found->name + ".lock");
    if (!lock.lock(lockPath, posix::LockOwner::Trusted, kLockTimeout)) {
        m_isLockedOut = errno == EWOULDBLOCK;
        return false;
    }
    posix::removeTemporaryFiles(*found);
    const std::optional<QByteArray> text = read(*found);
    if (!text)
        return false;
    const QByteArray entry = key.toUtf8() + '=' + settingBytes(value) + '\n';
    const QByteArray changed = withEntry(*text, group.toUtf8(), key.toUtf8(), entry);
    return changed.size() <= kSettingsSizeLimit && posix::replaceFile(*found, changed);
}

} // namespace zyn
