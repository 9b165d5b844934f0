// The words of a line of a script.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::handset {

/// Splits @p line at its blanks. A word in double quotes may hold blanks, and may be empty; an open quote is
/// a ScriptError.
QStringList scriptWords(const QString& line);

/// The whole number @p word, from @p lowest to @p highest; a ScriptError when it is none.
int scriptNumber(const QString& word, int lowest, int highest);

} // namespace zyn::handset
