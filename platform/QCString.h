// The 8-bit string of channel and message names.
#pragma once

#include <QtCore/QByteArray>

/// A NUL-terminated byte string, compared byte for byte.
using QCString = QByteArray;
