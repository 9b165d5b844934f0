// Where the feature-switch files lie.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

namespace zyn {

/// @{ The files by what stands behind the directory that ZYN_APP_WRITE_PATH names.
inline constexpr char kFixedDialSwitch[] = "/setup/zyn_fixeddial.cfg";
inline constexpr char kTopPalsSwitch[] = "/setup/zyn_toppals.cfg";
/// @}

/// The path of a feature-switch file: the bare suffix when the directory is not set.
inline QString switchFile(const char* suffix)
{
    return QFile::decodeName(qgetenv("ZYN_APP_WRITE_PATH")) + QLatin1String(suffix);
}

} // namespace zyn
