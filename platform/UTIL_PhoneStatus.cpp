// States of the stand-in handset, read from its state file at every question.
#include "platform/UTIL_PhoneStatus.h"

#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"

#include <algorithm>

namespace {

int read(const zyn::handset::State& state)
{
    SETUP_SET_Manager settings(zyn::handset::stateFile(), false);
    int value = 0;
    settings.getSettingInfo(QLatin1String(zyn::handset::kGroup), QLatin1String(state.key), value, 0);
    return value;
}

} // namespace

TAPI_SIM_STATUS_E UTIL_GetSimCardStatus()
{
    return static_cast<TAPI_SIM_STATUS_E>(read(zyn::handset::kSimCard));
}

int UTIL_GetKeypadLockStatus()
{
    return read(zyn::handset::kKeypadLock);
}

int UTIL_GetPhoneSystemStatus()
{
    return read(zyn::handset::kPhoneSystem);
}

int TAPI_FIXDIALING_GetStatus(int /*card*/, TAPI_BOOL_STATUS_E* state)
{
    const int error = read(zyn::handset::kFixedDialingError);
    if (error == 0 && state)
        *state = static_cast<TAPI_BOOL_STATUS_E>(std::clamp(read(zyn::handset::kFixedDialing), 0, 0xFF));
    return error;
}
