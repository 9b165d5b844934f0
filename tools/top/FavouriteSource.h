// The favourites and what of theirs is unread.
#pragma once

namespace zyn::tool {

class PhoneState;

/// Reads the activity log into @p state. Makes and changes no file.
void readFavourites(PhoneState& state);

} // namespace zyn::tool
