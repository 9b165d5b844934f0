// What arguments and values may be at this moment, for completion: read from files, so that no service is waited for.
#pragma once

#include "handset/common/Completion.h"

namespace zyn::tool {

/// The uids of the logged calls.
handset::Candidates callUids(const QStringList& arguments);
/// The numbers of the logged calls.
handset::Candidates callNumbers(const QStringList& arguments);
/// The indices of the calls in the list that is the first of @p arguments.
handset::Candidates callIndices(const QStringList& arguments);
/// The numbers of the favourites.
handset::Candidates favouriteNumbers(const QStringList& arguments);
/// The places of the entries of the favourite whose number is the first of @p arguments.
handset::Candidates entryPlaces(const QStringList& arguments);
/// The words of all messages.
handset::Candidates messageWords(const QStringList& arguments);
/// The names of the messages on the channel that is the first of @p arguments.
handset::Candidates messageNames(const QStringList& arguments);

} // namespace zyn::tool
