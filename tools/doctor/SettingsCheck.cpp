// The settings files, the list of emergency numbers, and the enabled features.
#include "platform/HandsetState_p.h"
#include "platform/SettingsFile_p.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "tools/doctor/KnownSettings.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/PHONE_Settings_p.h"

#include <QtCore/QFileInfo>
#include <QtCore/QStringList>

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

Findings checkValues(const std::vector<KnownSetting>& settings)
{
    Findings findings;
    for (const KnownSetting& setting : settings) {
        if (setting.isMistaken())
            findings.push_back(wrong(setting.path,
                                     u"%1 in [%2] is \"%3\", and should be %4"_s.arg(setting.key, setting.group,
                                                                                     setting.text(), setting.values),
                                     u"correct it, or remove its line, so that it has its default"_s));
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
        return note(path,
                    u"it does not exist: no number is an emergency number; the handset writes it when it starts"_s,
                    u"on a desk, zynphone emergency write 112 911"_s);
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
    findings.add(checkValues(phoneSettings()));
    findings.add(checkValues(handsetSettings()));
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
