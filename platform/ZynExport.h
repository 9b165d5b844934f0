// The one export macro: marks what the shared libraries offer; everything else is hidden.
#pragma once

#include <QtCore/qglobal.h>

#define ZYN_EXPORT Q_DECL_EXPORT
