// The word that somebody may have meant.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::handset {

/// A question whether the nearest of @p known was meant, for errors about an unknown @p word; empty if none is near.
QString suggestion(const QString& word, const QStringList& known);

} // namespace zyn::handset
