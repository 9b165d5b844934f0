// The lines that a program of the handset writes for whoever looks after it.
#pragma once

#include <QtCore/QString>

namespace zyn::handset {

/// Writes "<program>: <text>" and a line end to standard error, at once, the text made printable. A line that standard
/// error does not take at once, as with a full pipe that nobody reads, is lost: no program waits for its log.
void log(const QString& text);

} // namespace zyn::handset
