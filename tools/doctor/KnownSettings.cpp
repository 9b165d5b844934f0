// The settings that the library reads, and what their values may be.
#include "tools/doctor/KnownSettings.h"

#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "platform/SettingsFile_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Settings_p.h"

#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// What the value of a setting has to be.
struct Kind
{
    QString values;
    bool (*fits)(const KnownSetting& setting);
};

template<typename Value, Value Lowest, Value Highest>
bool isWithin(const KnownSetting& setting)
{
    Value value{};
    return SETUP_SET_Manager(setting.path, false).getSettingInfo(setting.group, setting.key, value, Value{})
           && value >= Lowest && value <= Highest;
}

constexpr auto isInt = isWithin<int, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()>;

Kind switchKind()
{
    return {u"true or false"_s, isWithin<bool, false, true>};
}

Kind numberKind()
{
    return {u"a number"_s, isInt};
}

Kind slotsKind()
{
    return {u"a number from 0 to %1"_s.arg(kRecordSlots), isWithin<int, 0, kRecordSlots>};
}

Kind countKind()
{
    return {u"a number from 0 on"_s, isWithin<unsigned int, 0, std::numeric_limits<unsigned int>::max()>};
}

Kind viewKind()
{
    return {u"1 (answered), 2 (missed), 3 (a view without a list), 4 (all), or another number (dialed)"_s, isInt};
}

struct SettingRow
{
    const SettingName& name;
    Kind (*kind)();
};

constexpr SettingRow kKnownSettings[] = {
    {setting::kMaxAnswered, slotsKind},  {setting::kMaxMissed, slotsKind},   {setting::kMaxDialed, slotsKind},
    {setting::kMaxFrequent, numberKind}, {setting::kIdleSendView, viewKind}, {setting::kTwoLineView, switchKind},
    {setting::kPrepend, switchKind},
};

KnownSetting known(const QString& path, const SettingRow& row)
{
    const Kind kind = row.kind();
    return {path, settingPart(row.name.group), settingPart(row.name.key), kind.values, kind.fits};
}

std::optional<QString> stored(const KnownSetting& setting)
{
    QString text;
    const bool isThere =
        SETUP_SET_Manager(setting.path, false).getSettingInfo(setting.group, setting.key, text, QString(), false);
    return isThere ? std::optional(text) : std::nullopt;
}

} // namespace

bool KnownSetting::isMistaken() const
{
    return stored(*this) && !fits(*this);
}

QString KnownSetting::text() const
{
    return stored(*this).value_or(QString());
}

std::vector<KnownSetting> phoneSettings()
{
    std::vector<KnownSetting> settings;
    for (const SettingRow& row : kKnownSettings)
        settings.push_back(known(settingsFile(kPhoneSettings), row));
    settings.push_back(known(switchFile(kFixedDialSwitch), {setting::kFixedDial, switchKind}));
    settings.push_back(known(switchFile(kTopPalsSwitch), {setting::kTopPalsItems, countKind}));
    return settings;
}

std::vector<KnownSetting> handsetSettings()
{
    std::vector<KnownSetting> settings;
    settings.reserve(handset::kStates.size());
    const Kind kind = numberKind();
    for (const handset::State& state : handset::kStates)
        settings.push_back(
            {handset::stateFile(), QLatin1String(handset::kGroup), QLatin1String(state.key), kind.values, kind.fits});
    return settings;
}

QString valuesHelp(const std::vector<KnownSetting>& settings)
{
    QString lines;
    for (const KnownSetting& setting : settings)
        lines += u"  [%1] %2: %3\n"_s.arg(setting.group, setting.key, setting.values);
    return lines;
}

} // namespace zyn::tool
