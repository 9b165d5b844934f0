// The files of the handset that lists follow.
#include "qml/module/HandsetFiles.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

using namespace Qt::StringLiterals;

namespace zyn::qml {
namespace {

constexpr char kSettingsPlace[] = "ZYN_APP_WRITE_PATH";
constexpr char kStorePlace[] = "ZYN_LOCAL_APP_WRITE_PATH";

/// A longer settings file is not read.
constexpr qint64 kSettingsLimit = qint64{1024} * 1024;

constexpr qsizetype kFavouriteKeyLength = 7;

/// The magic number and the version with which a file of the favourites begins, and its size.
constexpr char kStoreHeader[] = "\xD0\xC0\xB0\xA0\x05\x00\x00"; // and the NUL
constexpr qint64 kFavouritesSize = 128;

QString settingsFile(QLatin1String name)
{
    const QString place = QFile::decodeName(qgetenv(kSettingsPlace));
    const QString folder =
        place.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/zynphone"_L1
                        : place;
    return folder + "/setup/"_L1 + name;
}

/// A feature switch is not looked for in the user's configuration.
QString switchFile(QLatin1String name)
{
    return QFile::decodeName(qgetenv(kSettingsPlace)) + "/setup/"_L1 + name;
}

/// The file @p name of the activity log.
QString activityLogFile(const QString& name)
{
    const QString place = QFile::decodeName(qgetenv(kStorePlace).trimmed());
    return (place.isEmpty() ? u"/tmp"_s : place) + "/phone/"_L1 + name;
}

} // namespace

QString phoneSettingsFile()
{
    return settingsFile("zyn_app4.cfg"_L1);
}

QString fixedDialSwitchFile()
{
    return switchFile("zyn_fixeddial.cfg"_L1);
}

QString favouritesSwitchFile()
{
    return switchFile("zyn_toppals.cfg"_L1);
}

QString deskStateFile()
{
    return settingsFile("zyn_handset.cfg"_L1);
}

QString phoneSettingsProblem()
{
    const QString path = phoneSettingsFile();
    const QFileInfo file(path);
    if (!file.exists() || (file.isFile() && file.isReadable() && file.size() <= kSettingsLimit))
        return {};
    return QCoreApplication::translate("HandsetFiles", "The settings cannot be read: %1").arg(path);
}

QString favouritesFile()
{
    return activityLogFile(u"topPalsDetails"_s);
}

QStringList favouriteFiles(const QString& name)
{
    const bool canBeOne = !name.isEmpty() && !name.contains(u'/') && !name.contains(QChar::Null);
    return canBeOne ? QStringList{activityLogFile(name)} : QStringList();
}

QString favouriteKey(const QString& number)
{
    return number.right(kFavouriteKeyLength);
}

FavouritesFile checkFavouritesFile()
{
    const QFileInfo info(favouritesFile());
    if (!info.exists() && !info.isSymLink())
        return FavouritesFile::Missing;
    QFile file(info.filePath());
    const bool isValid = info.isFile() && info.size() == kFavouritesSize && file.open(QIODevice::ReadOnly)
                         && file.read(sizeof kStoreHeader) == QByteArray(kStoreHeader, sizeof kStoreHeader);
    return isValid ? FavouritesFile::Valid : FavouritesFile::Damaged;
}

QString favouritesProblem()
{
    return QCoreApplication::translate("HandsetFiles", "The favourites cannot be read: %1").arg(favouritesFile());
}

} // namespace zyn::qml
