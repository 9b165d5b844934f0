// Where the settings of the phone applications are.
#pragma once

#include "platform/AM_Global.h"
#include "utility/FixedText_p.h"

#include <QtCore/QFile>
#include <QtCore/QString>

namespace zyn {

/// The application whose settings file holds the recent-call, speed-dial and set-up groups.
inline constexpr auto kPhoneSettings = static_cast<AM_Global::Apps>(4);

/// The environment variable that names the directory of the feature-switch files.
inline constexpr char kSwitchDirectory[] = "ZYN_APP_WRITE_PATH";

/// @{ The feature-switch files: their paths behind that directory.
inline constexpr char kFixedDialSwitch[] = "/setup/zyn_fixeddial.cfg";
inline constexpr char kTopPalsSwitch[] = "/setup/zyn_toppals.cfg";
/// @}

/// The path of a feature-switch file: @p suffix alone when the directory is not set.
inline QString switchFile(const char* suffix)
{
    QByteArray path = qgetenv(kSwitchDirectory);
    if (!isAscii(path))
        return QFile::decodeName(path) + QLatin1String(suffix);
    path += suffix;
    return QString::fromLatin1(path);
}

} // namespace zyn
