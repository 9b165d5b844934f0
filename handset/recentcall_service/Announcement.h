// What the recent-call service tells everybody.
#pragma once

namespace zyn::handset {

/// Announces that the missed calls may be others than before; told in the log when that cannot be done.
void announceMissedCalls();

} // namespace zyn::handset
