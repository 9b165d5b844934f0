// What a status bar shows.
#pragma once

class PHONE_AsyncMsgReceiver;

namespace zyn::handset {

class Output;

/// From now on writes a line for each signal of @p relay: what it is about, and its value. Both are to live until the
/// event loop ends.
void showStatus(PHONE_AsyncMsgReceiver& relay, Output& output);

} // namespace zyn::handset
