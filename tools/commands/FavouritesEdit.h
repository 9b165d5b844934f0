// Changes of the favourites and their logs, by the process that owns them for as long.
#pragma once

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/ExitCode.h"

namespace zyn::tool {

/// That right, for as long as it lives; a failure when another process has it.
class FavouritesOwnership
{
public:
    FavouritesOwnership()
    {
        if (!m_lock.lock())
            throw failure(m_lock.problem());
    }

private:
    handset::ActivityLogLock m_lock;
};

Argument favouriteArgument();
/// The key of the favourite that the first argument names; a failure when it is none.
QString favouriteFrom(const Invocation& invocation);
/// The key of each place, none when there are no favourites. The library would make the file that names them, and anew
/// when it is damaged: a verb that only reads takes them from here, and fails in the latter case.
QStringList readKeys();
/// The failure of a verb for a number that is no favourite's.
CommandError noFavourite(const QString& number);
/// Appends the entries of a favourite, newest first; a failure when they cannot be read.
void readInto(handset::ActivityEntries& entries, const QString& key);

/// @{ Verbs that write, and refuse while another process owns the favourites.
Command replaceFavouriteCommand();
Command logFavouriteCommand();
Command removeFavouriteCommand();
/// @}

} // namespace zyn::tool
