// The sender of the calling thread.
#pragma once

#include "platform/QCString.h"

namespace zyn {

class ChannelFrame;

/// Sends from the calling thread, whose sender lasts until the thread or the process ends, or until a fork.
bool sendFromThisThread(const QCString& channel, const ChannelFrame& frame);

} // namespace zyn
