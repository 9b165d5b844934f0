// The variables that name directories.
#include "platform/SettingsFile_p.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "utility/PHONE_Settings_p.h"

#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

Finding relativePath(const QString& variable)
{
    return wrong(variable, u"it holds no absolute path, so every process looks elsewhere or nowhere"_s,
                 u"export %1=/an/absolute/path for every process alike, or unset %1"_s.arg(variable));
}

Finding checkChannelPath(const QString& variable, const QByteArray& value)
{
    const QByteArray root = ChannelEnvironment::current().root();
    if (root.isEmpty())
        return relativePath(variable);
    const std::optional<Finding> above = exists(root) ? std::nullopt : writableDirectoryFault(parentOf(root));
    if (above)
        return wrong(variable,
                     u"nobody can make the directory %1: above it, %2"_s.arg(QFile::decodeName(value), above->text),
                     above->remedy);
    return ok(variable, u"the channels are in %1"_s.arg(QFile::decodeName(root)));
}

Finding checkRuntimePath(const QString& variable, const QByteArray& value)
{
    if (!ChannelEnvironment::current().channelPath.isEmpty())
        return ok(variable, u"not looked at, since ZYN_QCOP_PATH is set"_s);
    if (!value.startsWith('/'))
        return relativePath(variable);
    const QByteArray root = ChannelEnvironment::current().root();
    std::optional<Finding> fault = privateDirectoryFault(value);
    if (!fault && root.isEmpty())
        fault = wrong(QFile::decodeName(value), u"it may not be used"_s, u"name a directory that is yours alone"_s);
    if (!fault)
        return ok(variable, u"the channels are in %1"_s.arg(QFile::decodeName(root)));
    return wrong(variable, u"no channel can be used with %1: %2"_s.arg(QFile::decodeName(value), fault->text),
                 u"%1, or unset %2 for every process alike"_s.arg(fault->remedy, variable));
}

Finding checkDataPath(const QString& variable, const QByteArray& value)
{
    const QByteArray directory = value.trimmed();
    if (!directory.isEmpty() && !directory.startsWith('/'))
        return relativePath(variable);
    const std::optional<Finding> fault = writableDirectoryFault(parentOf(storeDirectoryPath()));
    if (fault && !exists(storeDirectoryPath()))
        return wrong(variable, u"no store can be made in %1: %2"_s.arg(QFile::decodeName(directory), fault->text),
                     fault->remedy);
    return ok(variable, u"the store is %1"_s.arg(QFile::decodeName(storeDirectoryPath())));
}

Finding checkSettingsPath(const QString& variable, const QByteArray& value)
{
    if (!value.startsWith('/'))
        return relativePath(variable);
    const QByteArray part = existingPart(QFile::encodeName(settingsDirectory()));
    if (const auto fault = writableDirectoryFault(part))
        return wrong(variable,
                     u"no settings can be kept in %1: of %2, %3"_s.arg(QFile::decodeName(value),
                                                                       QFile::decodeName(part), fault->text),
                     u"export %1=/a/directory, or %2"_s.arg(variable, fault->remedy));
    return ok(variable, u"the settings are in %1"_s.arg(settingsDirectory()));
}

/// A variable, the check of its value, and the state if it is unset or empty.
struct Variable
{
    const char* name;
    Finding (*check)(const QString& variable, const QByteArray& value);
    QString (*whenUnset)();
};

constexpr Variable kVariables[] = {
    {"ZYN_QCOP_PATH", checkChannelPath, [] { return u"not set: XDG_RUNTIME_DIR tells where the channels are"_s; }},
    {"XDG_RUNTIME_DIR", checkRuntimePath,
     [] {
         return u"not set: without ZYN_QCOP_PATH, too, the channels are in %1"_s.arg(
             QFile::decodeName(ChannelEnvironment().root()));
     }},
    {"ZYN_LOCAL_APP_WRITE_PATH", checkDataPath,
     [] { return u"not set: the store is %1"_s.arg(QFile::decodeName(storeDirectoryPath())); }},
    {"ZYN_APP_WRITE_PATH", checkSettingsPath,
     [] {
         return u"not set: the settings are in %1, the feature switches in %2"_s.arg(
             settingsDirectory(), QFileInfo(switchFile(kFixedDialSwitch)).path());
     }},
};

} // namespace

Findings checkEnvironment()
{
    Findings findings;
    for (const Variable& variable : kVariables) {
        const QString name = QLatin1String(variable.name);
        const QByteArray value = qgetenv(variable.name);
        findings.push_back(value.isEmpty() ? note(name, variable.whenUnset()) : variable.check(name, value));
    }
    return findings;
}

} // namespace zyn::tool
