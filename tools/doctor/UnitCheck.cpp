// The service manager's units: whether they start the programs of this installation.
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "tools/doctor/UnitFile.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kProgramPrefix[] = "zyn-";

/// The value of a variable that names a directory, or @p otherwise.
QByteArray directoryFrom(const char* variable, const QByteArray& otherwise)
{
    const QByteArray value = qgetenv(variable);
    return value.startsWith('/') ? value : otherwise;
}

/// Where the user's service manager finds its units, those with precedence first.
QList<QByteArray> userDirectories()
{
    const QByteArray home = QFile::encodeName(QDir::homePath());
    QList<QByteArray> directories{directoryFrom("XDG_CONFIG_HOME", home + "/.config") + "/systemd/user",
                                  "/etc/systemd/user"};
    if (const QByteArray runtime = directoryFrom("XDG_RUNTIME_DIR", {}); !runtime.isEmpty())
        directories += runtime + "/systemd/user";
    return directories
           + QList<QByteArray>{"/run/systemd/user",
                               directoryFrom("XDG_DATA_HOME", home + "/.local/share") + "/systemd/user",
                               "/usr/local/lib/systemd/user", "/usr/lib/systemd/user"};
}

QList<QByteArray> systemDirectories()
{
    return {"/etc/systemd/system", "/run/systemd/system", "/usr/local/lib/systemd/system", "/usr/lib/systemd/system"};
}

struct Manager
{
    QList<QByteArray> (*directories)();
    const char* unit; ///< the kind of its units
    const char* command;
};

constexpr Manager kManagers[] = {
    {userDirectories, "user unit", "systemctl --user"},
    {systemDirectories, "system unit", "systemctl"},
};

Finding startFinding(const Manager& manager, const Unit& unit, const UnitStart& start)
{
    const QString name = QFileInfo(QFile::decodeName(start.program)).fileName();
    const QFileInfo other(QFile::decodeName(start.program));
    const QFileInfo own(QDir(QCoreApplication::applicationDirPath()), name);
    const QString subject = QFile::decodeName(start.file);
    const bool isOwn = other.exists() && other.canonicalFilePath() == own.canonicalFilePath();
    const QString kind = QLatin1String(manager.unit);
    if (isOwn)
        return ok(subject, u"the %1 starts %2"_s.arg(kind, other.filePath()));
    const QString unitName = QFile::decodeName(unit.name);
    QString text = u"the %1 %2 starts %3"_s.arg(kind, unitName, other.filePath());
    text += other.exists() ? u", not %1"_s.arg(own.filePath()) : u", which is not there"_s;
    const QString remedy = u"%1 edit %2, with [Service], ExecStart= and ExecStart=%3; then %1 restart %2"_s.arg(
        QLatin1String(manager.command), unitName, shellWord(QFile::encodeName(own.filePath())));
    if (!unit.isEnabled)
        return note(subject, text + u"; it is not enabled"_s, remedy);
    return wrong(subject, text, remedy);
}

} // namespace

Findings checkUnits()
{
    Findings findings;
    for (const Manager& manager : kManagers) {
        for (const Unit& unit : unitsIn(manager.directories())) {
            for (const UnitStart& start : unit.starts) {
                if (start.program.sliced(start.program.lastIndexOf('/') + 1).startsWith(kProgramPrefix))
                    findings.push_back(startFinding(manager, unit, start));
            }
        }
    }
    return findings;
}

} // namespace zyn::tool
