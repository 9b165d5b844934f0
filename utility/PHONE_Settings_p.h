// Where the settings of the phone applications are, and their names.
#pragma once

#include "platform/AM_Global.h"
#include "utility/FixedText_p.h"

#include <QtCore/QFile>
#include <QtCore/QString>

#include <string_view>

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

/// A group or key of a settings file, from a literal, whose characters it shares.
inline QString settingPart(std::u16string_view literal)
{
    return QString::fromRawData(reinterpret_cast<const QChar*>(literal.data()), static_cast<qsizetype>(literal.size()));
}

/// The name of a setting.
struct SettingName
{
    std::u16string_view group;
    std::u16string_view key;
};

namespace setting {

/// @{ Of kPhoneSettings.
inline constexpr SettingName kMaxAnswered{u"RECENTCALL_SET", u"maxAnsweredCall"};
inline constexpr SettingName kMaxMissed{kMaxAnswered.group, u"maxMissedCall"};
inline constexpr SettingName kMaxDialed{kMaxAnswered.group, u"maxDialedCall"};
inline constexpr SettingName kMaxFrequent{kMaxAnswered.group, u"maxFrequentCall"};
inline constexpr SettingName kIdleSendView{kMaxAnswered.group, u"viewFromIdleSend"};
inline constexpr SettingName kTwoLineView{kMaxAnswered.group, u"twoLineView"};
inline constexpr SettingName kPrepend{u"Setup", u"prepend"};
inline constexpr std::u16string_view kSpeedDialGroup = u"Turbo Dialing"; ///< its keys are the indexes
/// @}

/// Of kFixedDialSwitch.
inline constexpr SettingName kFixedDial{u"Fixed Dial", u"Feat_8998"};
/// Of kTopPalsSwitch.
inline constexpr SettingName kTopPalsItems{u"TopPals-UI", u"MaxItemsToLog"};

} // namespace setting
} // namespace zyn
