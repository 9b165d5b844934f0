// States of the handset that applications may ask for.
#pragma once

#include "platform/TAPI.h"
#include "platform/ZynExport.h"

/// State of the SIM card.
ZYN_EXPORT TAPI_SIM_STATUS_E UTIL_GetSimCardStatus();

/// State of the keypad lock; 0 is the state in which the code that shows the IMEI is allowed.
ZYN_EXPORT int UTIL_GetKeypadLockStatus();

/// State of the phone system; 0 means that the telephony API may be asked.
ZYN_EXPORT int UTIL_GetPhoneSystemStatus();
