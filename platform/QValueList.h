// The list of values of the exported interface.
#pragma once

#include <QtCore/QList>

/// An implicitly shared list of values.
template<typename T>
using QValueList = QList<T>;
