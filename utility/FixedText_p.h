// Text in the fixed-width fields of records.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <algorithm>
#include <cstring>
#include <span>

namespace zyn {

/// Stores @p text up to its first NUL, cut so that a NUL fits behind it; the rest of the field is cleared.
inline void storeText(std::span<char> field, const QByteArray& text)
{
    const size_t limit = std::min(field.size() - 1, static_cast<size_t>(text.size()));
    const size_t length = qstrnlen(text.constData(), limit);
    std::memcpy(field.data(), text.constData(), length);
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(length), field.end(), '\0');
}

/// The field up to its first NUL, or the whole field: one that comes from a file or a socket may hold none.
inline QString latin1Text(std::span<const char> field)
{
    return QString::fromLatin1(field.data(), static_cast<qsizetype>(qstrnlen(field.data(), field.size())));
}

/// Whether @p text is the same in each encoding.
inline bool isAscii(QByteArrayView text)
{
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace zyn
