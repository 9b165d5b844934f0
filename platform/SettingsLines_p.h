// The lines of a settings file, in the format that SETUP_SET_Manager describes.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

namespace zyn {

/// A file above this is not read and not written.
inline constexpr qsizetype kSettingsSizeLimit = qsizetype{1024} * 1024;

inline constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

/// What a line of a settings file says.
struct SettingsLine
{
    enum Kind { Passive, Group, Entry, Stray };

    Kind kind = Passive;
    QByteArrayView name;  ///< of the group or of the key
    QByteArrayView value; ///< of an entry
};

inline SettingsLine parseSettingsLine(QByteArrayView text)
{
    if (text.endsWith('\r'))
        text.chop(1);
    const QByteArrayView trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.front() == '#' || trimmed.front() == ';')
        return {};
    // One that is not UTF-8 is a group all the same: its entries are not those of the group before it.
    if (trimmed.front() == '[' && trimmed.back() == ']')
        return {SettingsLine::Group, trimmed.sliced(1, trimmed.size() - 2), {}};
    if (!text.isValidUtf8())
        return {SettingsLine::Stray, {}, {}};
    const qsizetype equals = text.indexOf('=');
    const QByteArrayView key = equals < 0 ? QByteArrayView() : text.first(equals).trimmed();
    if (key.isEmpty())
        return {SettingsLine::Stray, {}, {}};
    return {SettingsLine::Entry, key, text.sliced(equals + 1)};
}

/// Where the first line of @p text begins.
inline qsizetype firstSettingsLine(const QByteArray& text)
{
    return text.startsWith(kByteOrderMark) ? qsizetype(sizeof kByteOrderMark - 1) : 0;
}

/// Calls @p visit(line, begin, end) for each line of @p text; [begin, end) is the line's place, its line end included.
template<typename Visit>
void forEachSettingsLine(const QByteArray& text, Visit visit)
{
    qsizetype begin = firstSettingsLine(text);
    while (begin < text.size()) {
        const qsizetype newline = text.indexOf('\n', begin);
        const qsizetype textEnd = newline < 0 ? text.size() : newline;
        const qsizetype end = newline < 0 ? text.size() : newline + 1;
        visit(parseSettingsLine(QByteArrayView(text).sliced(begin, textEnd - begin)), begin, end);
        begin = end;
    }
}

} // namespace zyn
