// What the handset on the screen costs, beside a window of Qt Quick with nothing in it.
#pragma once

#include <QtCore/QString>

namespace bench {

/// A table, as a document has it; each window is watched for as many seconds, first while nothing happens and then
/// while status messages come.
QString measureWindow(int seconds);

} // namespace bench
