// The set-up of calls.
#include "utility/PHONE_Setup.h"

#include "platform/SETUP_SET_Manager.h"
#include "utility/PHONE_Settings_p.h"

namespace {

QString group()
{
    return QStringLiteral("Setup");
}

QString prependKey()
{
    return QStringLiteral("prepend");
}

} // namespace

PHONE_Setup::PHONE_Setup() = default;

PHONE_Setup::~PHONE_Setup() = default;

bool PHONE_Setup::setPrepend(bool prepend)
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, true);
    return settings.setSettingInfo(group(), prependKey(), prepend);
}

bool PHONE_Setup::isPrepend()
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    bool prepend = false;
    settings.getSettingInfo(group(), prependKey(), prepend, false);
    return prepend;
}
