// Log lines on standard error.
#pragma once

#include <QtCore/QString>

namespace zyn::handset {

/// Writes "<program>: <text>", made printable, as a line to standard error at once. The line is lost if standard error
/// is not writable, as with a full pipe that nobody reads: no program waits for its log.
void log(const QString& text);

} // namespace zyn::handset
