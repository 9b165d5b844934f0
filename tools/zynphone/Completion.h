// What a command line may go on with.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

struct Command;

/// The verb that the shell asks, with the words of a command line behind it; no help shows it.
inline constexpr QLatin1String kCompleteVerb("__complete");

/// What the last of @p words, which stand behind the name of @p tool, may become, a line each: verbs, options and fixed
/// words.
QString completions(const Command& tool, const QStringList& words);

} // namespace zyn::tool
