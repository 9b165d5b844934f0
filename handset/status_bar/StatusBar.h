// The status bar: a line for each signal of the phone.
#pragma once

class PHONE_AsyncMsgReceiver;

namespace zyn::handset {

class Output;

/// From now on writes a line with the name and the value of each signal of @p relay. Both arguments must live until the
/// event loop ends.
void showStatus(PHONE_AsyncMsgReceiver& relay, Output& output);

} // namespace zyn::handset
