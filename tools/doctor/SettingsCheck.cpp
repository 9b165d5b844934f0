// The settings files, the list of emergency numbers, and the enabled features.
#include "platform/HandsetState_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "platform/SettingsFile_p.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_Settings_p.h"

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct SettingsPath
{
    QString (*path)();
    bool isWritten; ///< the library writes to it
};

constexpr SettingsPath kFiles[] = {
    {[] { return settingsFile(kPhoneSettings); }, true},
    {handset::stateFile, true},
    {[] { return switchFile(kFixedDialSwitch); }, false},
    {[] { return switchFile(kTopPalsSwitch); }, false},
};

Finding checkLines(const QString& path)
{
    const std::optional<QList<int>> stray = SettingsFile(path).strayLines();
    if (!stray)
        return wrong(path, u"it is too long to be read, so every setting has its default"_s, u"shorten it to 1 MiB"_s);
    if (stray->isEmpty())
        return ok(path, u"every line is understood"_s);
    QStringList numbers;
    for (const int number : stray->first(std::min(stray->size(), qsizetype{5})))
        numbers += QString::number(number);
    const QString more = stray->size() > numbers.size() ? u" and more"_s : QString();
    return wrong(path,
                 u"passed over: line %1%2, neither [group] nor key=value in UTF-8"_s.arg(numbers.join(u", "_s), more),
                 u"correct or remove it, or put # before it"_s);
}

Finding checkFile(const SettingsPath& file)
{
    const QString path = file.path();
    const QByteArray name = QFile::encodeName(path);
    if (!exists(name))
        return note(path, u"it does not exist: every setting in it has its default"_s);
    if (const auto fault = fileFault(name, file.isWritten))
        return *fault;
    return checkLines(path);
}

/// What the value of a setting has to be.
struct Kind
{
    QString text;
    bool (*fits)(SETUP_SET_Manager&, const QString& group, const QString& key);
};

template<typename Value, Value Lowest, Value Highest>
bool isWithin(SETUP_SET_Manager& settings, const QString& group, const QString& key)
{
    Value value{};
    return settings.getSettingInfo(group, key, value, Value{}) && value >= Lowest && value <= Highest;
}

Kind switchKind()
{
    return {u"true or false"_s, isWithin<bool, false, true>};
}

Kind numberKind()
{
    using Limits = std::numeric_limits<int>;
    return {u"a number"_s, isWithin<int, Limits::min(), Limits::max()>};
}

Kind slotsKind()
{
    return {u"a number from 0 to %1"_s.arg(kRecordSlots), isWithin<int, 0, kRecordSlots>};
}

Kind countKind()
{
    return {u"a number from 0 on"_s, isWithin<unsigned int, 0, std::numeric_limits<unsigned int>::max()>};
}

struct Setting
{
    QString (*path)();
    const char* group;
    const char* key;
    Kind (*kind)();
};

constexpr auto kPhoneFile = [] { return settingsFile(kPhoneSettings); };

constexpr Setting kSettings[] = {
    {kPhoneFile, "RECENTCALL_SET", "maxAnsweredCall", slotsKind},
    {kPhoneFile, "RECENTCALL_SET", "maxMissedCall", slotsKind},
    {kPhoneFile, "RECENTCALL_SET", "maxDialedCall", slotsKind},
    {kPhoneFile, "RECENTCALL_SET", "maxFrequentCall", numberKind},
    {kPhoneFile, "RECENTCALL_SET", "viewFromIdleSend", numberKind},
    {kPhoneFile, "RECENTCALL_SET", "twoLineView", switchKind},
    {kPhoneFile, "Setup", "prepend", switchKind},
    {[] { return switchFile(kFixedDialSwitch); }, "Fixed Dial", "Feat_8998", switchKind},
    {[] { return switchFile(kTopPalsSwitch); }, "TopPals-UI", "MaxItemsToLog", countKind},
};

std::optional<Finding> valueFault(const Setting& setting)
{
    const QString group = QLatin1String(setting.group);
    const QString key = QLatin1String(setting.key);
    SETUP_SET_Manager settings(setting.path(), false);
    QString text;
    const Kind kind = setting.kind();
    if (!settings.getSettingInfo(group, key, text, QString(), false) || kind.fits(settings, group, key))
        return std::nullopt;
    return wrong(setting.path(), u"%1 in [%2] is \"%3\", and should be %4"_s.arg(key, group, text, kind.text),
                 u"correct it, or remove its line, so that it has its default"_s);
}

Findings checkValues()
{
    Findings findings;
    std::vector<Setting> settings(std::begin(kSettings), std::end(kSettings));
    for (const handset::State& state : handset::kStates)
        settings.push_back({handset::stateFile, handset::kGroup, state.key, numberKind});
    for (const Setting& setting : settings) {
        if (const auto fault = valueFault(setting))
            findings.push_back(*fault);
    }
    return findings;
}

/// Settings are written to temporary files beside theirs.
Findings checkDirectory()
{
    const QByteArray part = existingPart(QFile::encodeName(settingsDirectory()));
    const auto fault = writableDirectoryFault(part);
    return fault ? Findings{*fault} : Findings{};
}

Finding checkEmergencyList()
{
    const QString path = QLatin1String(emergency::kListFile);
    if (!exists(emergency::kListFile))
        return note(path, u"it does not exist: no number is an emergency number"_s);
    if (const auto fault = fileFault(emergency::kListFile, false))
        return *fault;
    return ok(path, u"%1 emergency numbers"_s.arg(emergency::readList().size()));
}

QString onOff(bool on)
{
    return on ? u"on"_s : u"off"_s;
}

struct Switch
{
    const char* name;
    QString (*state)(RecentCall_Setup&);
};

constexpr Switch kSwitches[] = {
    {"fixed dialing", [](RecentCall_Setup& setup) { return onOff(setup.isFixedDialFlexOn()); }},
    {"fixed dialing available", [](RecentCall_Setup& setup) { return onOff(setup.isFixedDialingAvailable()); }},
    {"push-to-talk", [](RecentCall_Setup& setup) { return onOff(setup.isPttFlexOn()); }},
    {"two-line view", [](RecentCall_Setup& setup) { return onOff(setup.getTwoLineView()); }},
    {"activities kept for a favourite",
     [](RecentCall_Setup& setup) { return QString::number(setup.getMaxTopPalsAvlItems()); }},
};

} // namespace

Findings checkSettings()
{
    Findings findings = checkDirectory();
    for (const SettingsPath& file : kFiles)
        findings.push_back(checkFile(file));
    const Findings ofValues = checkValues();
    findings.insert(findings.end(), ofValues.begin(), ofValues.end());
    findings.push_back(checkEmergencyList());
    return findings;
}

Findings checkSwitches()
{
    Findings findings;
    RecentCall_Setup setup;
    for (const Switch& feature : kSwitches)
        findings.push_back(ok(QLatin1String(feature.name), feature.state(setup)));
    return findings;
}

} // namespace zyn::tool
