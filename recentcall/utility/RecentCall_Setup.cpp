// The recent-call settings.
#include "recentcall/utility/RecentCall_Setup.h"

#include "platform/SETUP_SET_Manager.h"
#include "platform/TAPI.h"
#include "platform/UTIL_PhoneStatus.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Log_p.h"
#include "utility/PHONE_Settings_p.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace {

constexpr char kSetupSource[] = "../recentcall/utility/RecentCall_Setup";

using zyn::setting::kTwoLineView;

constexpr int kDefaultLimit = 50;
constexpr int kDefaultFrequent = 5;
constexpr unsigned int kDefaultTopPalsItems = 15;
constexpr int kFirstSimCard = 1;
constexpr TAPI_BOOL_STATUS_E kEnabled{1};

std::unique_ptr<RecentCall_Setup> s_setup;

template<typename Value>
Value readSetting(SETUP_SET_Manager& settings, const zyn::SettingName& name, Value defaultValue)
{
    Value value = defaultValue;
    settings.getSettingInfo(zyn::settingPart(name.group), zyn::settingPart(name.key), value, defaultValue);
    return value;
}

int readLimit(SETUP_SET_Manager& settings, const zyn::SettingName& name)
{
    return std::clamp(readSetting(settings, name, kDefaultLimit), 0, zyn::kRecordSlots);
}

/// The setting has a numbering of its own.
RC_CALL_CATEGORY_T toView(int setting)
{
    switch (setting) {
    case 1:
        return RC_CALL_CATEGORY_ANSWERED;
    case 2:
        return RC_CALL_CATEGORY_MISSED;
    case 3:
        return RC_CALL_CATEGORY_EXTRA;
    case 4:
        return RC_CALL_CATEGORY_ALL;
    default:
        return RC_CALL_CATEGORY_DIALED;
    }
}

} // namespace

RecentCall_Setup* RecentCall_Setup::instance()
{
    if (!s_setup)
        s_setup = std::make_unique<RecentCall_Setup>();
    return s_setup.get();
}

void RecentCall_Setup::destroy()
{
    s_setup.reset();
}

RecentCall_Setup::RecentCall_Setup()
{
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    m_maxAnswered = readLimit(settings, zyn::setting::kMaxAnswered);
    m_maxMissed = readLimit(settings, zyn::setting::kMaxMissed);
    m_maxDialed = readLimit(settings, zyn::setting::kMaxDialed);
    m_maxFrequent = readSetting(settings, zyn::setting::kMaxFrequent, kDefaultFrequent);
    m_idleSendView = toView(readSetting(settings, zyn::setting::kIdleSendView, 0));
    PHONE_Log(kPhoneLogLevel, "RC settings: %d, %d,%d,%d,%d", m_maxAnswered, m_maxMissed, m_maxDialed, m_maxFrequent,
              m_idleSendView);
}

int RecentCall_Setup::getMaxRecordSize(RC_CALL_CATEGORY_T category) const
{
    switch (category) {
    case RC_CALL_CATEGORY_ANSWERED:
        return m_maxAnswered;
    case RC_CALL_CATEGORY_MISSED:
        return m_maxMissed;
    case RC_CALL_CATEGORY_DIALED:
        return m_maxDialed;
    case RC_CALL_CATEGORY_ALL:
        return m_maxAnswered + m_maxMissed + m_maxDialed;
    default:
        return 0;
    }
}

bool RecentCall_Setup::setTwoLineView(bool on)
{
    zyn::logEntry(kSilentLogLevel, kSetupSource, __func__);
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    if (settings.setSettingInfo(zyn::settingPart(kTwoLineView.group), zyn::settingPart(kTwoLineView.key), on))
        return true;
    PHONE_Log(kPhoneLogLevel, "unable to set setupvalue");
    return false;
}

bool RecentCall_Setup::getTwoLineView()
{
    zyn::logEntry(kSilentLogLevel, kSetupSource, __func__);
    SETUP_SET_Manager settings(zyn::kPhoneSettings, false);
    return readSetting(settings, kTwoLineView, false);
}

bool RecentCall_Setup::isFixedDialFlexOn()
{
    const QString path = zyn::switchFile(zyn::kFixedDialSwitch);
    std::printf("******** fixed dial flex: %s ********\n", path.toLatin1().constData());
    SETUP_SET_Manager settings(path, false);
    return readSetting(settings, zyn::setting::kFixedDial, true);
}

bool RecentCall_Setup::isFixedDialingAvailable()
{
    zyn::logEntry(kSilentLogLevel, kSetupSource, __func__);
    if (!isFixedDialFlexOn()) {
        std::printf("FDN flex is off");
        return false;
    }
    if (UTIL_GetPhoneSystemStatus() != 0)
        return false;
    TAPI_BOOL_STATUS_E state{};
    return TAPI_FIXDIALING_GetStatus(kFirstSimCard, &state) == 0 && state == kEnabled;
}

bool RecentCall_Setup::isPttOMAFlexOn()
{
    return true;
}

bool RecentCall_Setup::isPttKodiakFlexOn()
{
    return true;
}

bool RecentCall_Setup::isPttFlexOn()
{
    return isPttOMAFlexOn() || isPttKodiakFlexOn();
}

unsigned int RecentCall_Setup::getMaxTopPalsAvlItems()
{
    SETUP_SET_Manager settings(zyn::switchFile(zyn::kTopPalsSwitch), false);
    return readSetting(settings, zyn::setting::kTopPalsItems, kDefaultTopPalsItems);
}
