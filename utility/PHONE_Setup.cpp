// The set-up of calls.
#include "utility/PHONE_Setup.h"

#include "platform/SETUP_SET_Manager.h"
#include "utility/PHONE_Settings_p.h"

using zyn::settingPart;
using zyn::setting::kPrepend;

PHONE_Setup::PHONE_Setup() = default;

PHONE_Setup::~PHONE_Setup() = default;

bool PHONE_Setup::setPrepend(bool prepend)
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, true);
    return settings.setSettingInfo(settingPart(kPrepend.group), settingPart(kPrepend.key), prepend);
}

bool PHONE_Setup::isPrepend()
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    bool prepend = false;
    settings.getSettingInfo(settingPart(kPrepend.group), settingPart(kPrepend.key), prepend, false);
    return prepend;
}
