// What can be wrong with every kind of store file.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <algorithm>
#include <span>

namespace zyn::tool {

/// No file of a store is longer, in bytes.
inline constexpr qsizetype kStoreFileLimit = qsizetype{16} * 1024 * 1024;

/// What a place in a file of records is called.
inline constexpr char kSlotWord[] = "slot";

/// The read flags that have a meaning.
inline constexpr uint8_t kKnownReadFlags = PHONE_ENG_RecentCall::kRead | PHONE_ENG_RecentCall::kStrictRead;

/// What is wrong with the header that @p image begins with; then its slots may be anything.
QStringList headerProblems(const QByteArray& image);

/// A size that is not the one that @p expected says, or nothing.
QStringList sizeProblems(const QByteArray& image, qint64 expected);

/// The flags of @p call, which is in use, that have no meaning.
QStringList flagProblems(const PHONE_ENG_RecentCall& call);

/// The texts of @p call that are not ended.
QStringList textProblems(const PHONE_ENG_RecentCall& call);

inline bool isTerminated(std::span<const char> field)
{
    return std::ranges::find(field, '\0') != field.end();
}

} // namespace zyn::tool
