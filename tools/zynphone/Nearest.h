// The word that somebody may have meant.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

/// The one of @p known whose beginning, and then as a whole, takes the fewest edits to be @p word; null when
/// that is half of the word or more.
QString nearestWord(const QString& word, const QStringList& known);

/// The end of an error about an unknown @p word: asks whether the nearest of @p known was meant; empty when there is
/// none.
QString suggestion(const QString& word, const QStringList& known);

} // namespace zyn::tool
