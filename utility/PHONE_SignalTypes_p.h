// Registers the argument types of a class's signals, so that connections by name can be queued.
#pragma once

#include <QtCore/QMetaObject>

namespace zyn {

/**
 * Makes the argument types of a class's own signals known under the names that the signals give them.
 *
 * Connections by pointer to member do not need it. An array is left out: it is a pointer that lives only while its
 * signal is delivered, and a connection that would queue it is better refused. Always true, so that it can initialise a
 * static that runs it once.
 */
bool registerSignalTypes(const QMetaObject& metaObject);

} // namespace zyn
