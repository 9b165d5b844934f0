// Changes the favourites and their logs, as their temporary owner.
#pragma once

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/ExitCode.h"

namespace zyn::tool {

/// The owner's lock, held while it lives; a failure if another process has it.
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
/// The key of the favourite named by the first argument; a failure if it is not a favourite.
QString favouriteFrom(const Invocation& invocation);
/// The key of each place; none if there are no favourites. Unlike the library it does not create or replace the file of
/// favourites, so a verb that only reads uses this; it fails if the file is damaged.
QStringList readKeys();
/// The failure for a number that is not a favourite.
CommandError noFavourite(const QString& number);
/// Appends the entries of a favourite, newest first; a failure if they cannot be read.
void readInto(handset::ActivityEntries& entries, const QString& key);

/// @{ Verbs that write; they fail while another process owns the favourites.
Command replaceFavouriteCommand();
Command logFavouriteCommand();
Command removeFavouriteCommand();
/// @}

} // namespace zyn::tool
