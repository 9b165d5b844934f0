// One-shot requests to the phone server, whose answers reach whatever PHONE_MsgClient objects exist.
#pragma once

#include "platform/ZynExport.h"

/// @file
/// Each request prints debug lines: see platform/QuietTrace.h.

/// Switches the radio on or off; answered by PHONE_MsgClient::signalSetRFModResult.
ZYN_EXPORT void PHONE_SetRFMode(bool on);

/// Tells the phone server the current language, as a number that the telephony platform gives its meaning.
ZYN_EXPORT void PHONE_SetTAPILanguage(int language);
