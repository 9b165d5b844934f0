// The one export macro: marks what the shared libraries offer; abi/ lists it.
#pragma once

#include <QtCore/qglobal.h>

/// In front of a class, a function or a variable: applications may use it.
#define ZYN_EXPORT Q_DECL_EXPORT
