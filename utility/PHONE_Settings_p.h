// Where the settings of the phone applications are.
#pragma once

#include "platform/AM_Global.h"

#include <QtCore/QFile>
#include <QtCore/QString>

namespace zyn {

/// The application whose settings file holds the recent-call, speed-dial and set-up groups.
inline constexpr auto kPhoneSettings = static_cast<AM_Global::Apps>(4);

/// @{ The feature-switch files: their paths behind the directory that ZYN_APP_WRITE_PATH names.
inline constexpr char kFixedDialSwitch[] = "/setup/zyn_fixeddial.cfg";
inline constexpr char kTopPalsSwitch[] = "/setup/zyn_toppals.cfg";
/// @}

/// The path of a feature-switch file: @p suffix alone when the directory is not set.
inline QString switchFile(const char* suffix)
{
    return QFile::decodeName(qgetenv("ZYN_APP_WRITE_PATH")) + QLatin1String(suffix);
}

} // namespace zyn
