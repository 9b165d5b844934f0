// The set-up of calls.
#pragma once

#include "platform/ZynExport.h"

/// The switch that has a prefix put in front of dialed numbers, in the settings that all applications share.
class ZYN_EXPORT PHONE_Setup
{
public:
    PHONE_Setup();
    virtual ~PHONE_Setup();

    /// Sets the switch to @p prepend. @return whether it was stored
    bool setPrepend(bool prepend);
    /// False when it was never set or the settings cannot be read.
    bool isPrepend();
};
