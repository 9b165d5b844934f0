// Types and calls of the telephony API.
#pragma once

#include "platform/ZynExport.h"

#include <cstdint>

using UINT8 = uint8_t;
using UINT32 = uint32_t;

/// State of the SIM card; 0 and 3 are the states that allow the PIN control codes.
enum TAPI_SIM_STATUS_E : int {};

/// A yes-or-no state in one byte: 1 is yes.
enum TAPI_BOOL_STATUS_E : uint8_t {};

/**
 * Asks whether fixed dialing is enabled.
 *
 * @param card   the SIM card, 1 being the first
 * @param state  set to 1 when fixed dialing is enabled, to another value when not; untouched on failure
 * @return 0, or the telephony API's error
 */
ZYN_EXPORT int TAPI_FIXDIALING_GetStatus(int card, TAPI_BOOL_STATUS_E* state);
