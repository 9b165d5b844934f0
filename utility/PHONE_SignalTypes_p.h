// Lets connections by name queue a class's signals.
#pragma once

#include <QtCore/QMetaObject>

namespace zyn {

/**
 * Makes the argument types of a class's own signals known under the names that the signals give them.
 *
 * Connections by pointer to member need nothing of it. An array is left out: it is a pointer that lives only
 * while its signal is delivered, and a connection that would queue it is better refused. Always true, so that a static
 * can stand for having been here.
 */
bool registerSignalTypes(const QMetaObject& metaObject);

} // namespace zyn
