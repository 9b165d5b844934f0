// What the verbs of zynphone favourites have in common, and those that change the favourites and their log.
#pragma once

#include "handset/favourites/ActivityLog.h"
#include "handset/favourites/Favourites.h"
#include "tools/zynphone/Command.h"

namespace zyn::tool {

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
