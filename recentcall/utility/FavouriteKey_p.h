// The key of a favourite.
#pragma once

#include <QtCore/QString>

namespace zyn {

/// What names a favourite, and its file: the end of its number, so that it is the same with and without a prefix.
inline constexpr qsizetype kFavouriteKeyLength = 7;

inline QString favouriteKey(const QString& number)
{
    return number.right(kFavouriteKeyLength);
}

} // namespace zyn
