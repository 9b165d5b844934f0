// Shell completion.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

struct Command;

/// The hidden verb that the shell calls with the words of a command line.
inline constexpr QLatin1String kCompleteVerb("__complete");

/// The completions of the last of @p words, which follow the name of @p tool, one per line: verbs, options and fixed
/// words.
QString completions(const Command& tool, const QStringList& words);

} // namespace zyn::tool
