// Which programs the service manager's units start.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <vector>

namespace zyn::tool {

/// A command of a unit.
struct UnitStart
{
    QByteArray file;    ///< that has the line: the unit's own or a drop-in
    QByteArray program; ///< its absolute path
};

/// A service that a service manager knows.
struct Unit
{
    QByteArray name;
    bool isEnabled = false; ///< another unit wants it
    std::vector<UnitStart> starts;
};

/**
 * The services in @p directories, of which earlier ones take precedence, as the service manager reads them: a drop-in
 * of any directory adds to a unit, and an empty command resets what came before. What cannot be read, is no regular
 * file or longer than 256 KiB starts nothing.
 */
std::vector<Unit> unitsIn(const QList<QByteArray>& directories);

} // namespace zyn::tool
