// Where the settings files lie.
#pragma once

#include "platform/AM_Global.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>

namespace zyn {

/// The directory of the settings files, which need not exist: "setup" under the directory that the environment
/// variable ZYN_APP_WRITE_PATH names, or under the user's configuration directory when that is unset or empty.
inline QString settingsDirectory()
{
    const QString writePath = QFile::decodeName(qgetenv("ZYN_APP_WRITE_PATH"));
    if (!writePath.isEmpty())
        return writePath + QLatin1String("/setup");
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + QLatin1String("/zynphone/setup");
}

/// The settings file of application @p app.
inline QString settingsFile(AM_Global::Apps app)
{
    return settingsDirectory() + QStringLiteral("/zyn_app%1.cfg").arg(int{app});
}

} // namespace zyn
