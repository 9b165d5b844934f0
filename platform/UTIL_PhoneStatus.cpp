// States of the stand-in handset, read from its state file at every question.
#include "platform/UTIL_PhoneStatus.h"

#include "platform/HandsetState_p.h"

#include <algorithm>

using zyn::handset::readState;

TAPI_SIM_STATUS_E UTIL_GetSimCardStatus()
{
    return static_cast<TAPI_SIM_STATUS_E>(readState(zyn::handset::kSimCard));
}

int UTIL_GetKeypadLockStatus()
{
    return readState(zyn::handset::kKeypadLock);
}

int UTIL_GetPhoneSystemStatus()
{
    return readState(zyn::handset::kPhoneSystem);
}

int TAPI_FIXDIALING_GetStatus(int /*card*/, TAPI_BOOL_STATUS_E* state)
{
    const int error = readState(zyn::handset::kFixedDialingError);
    if (error == 0 && state)
        *state = static_cast<TAPI_BOOL_STATUS_E>(std::clamp(readState(zyn::handset::kFixedDialing), 0, 0xFF));
    return error;
}
