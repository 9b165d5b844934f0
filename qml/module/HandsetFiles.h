// The files of the handset that lists follow.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>

namespace zyn::qml {

/// @{ The settings files, at the places that SETUP_SET_Manager and RecentCall_Setup describe. They need not exist.
QString phoneSettingsFile();    ///< of all phone applications: limits of lists, speed dial, set-up of calls
QString fixedDialSwitchFile();  ///< whether the handset has fixed dialing
QString favouritesSwitchFile(); ///< how many entries a favourite has
QString deskStateFile();        ///< what a desk plays instead of the handset's hardware
/// @}

/// Why what is stored in the phone settings cannot be known, for people; empty when it can.
QString phoneSettingsProblem();

/// The file of the favourites, which need not exist.
QString favouritesFile();
/// The file that has the entries of the favourite @p name, which need not exist; none when it can have no file.
QStringList favouriteFiles(const QString& name);

/// The name under which the activity log has the favourite @p number.
QString favouriteKey(const QString& number);

/// What is true of the file of the favourites.
enum class FavouritesFile : uint8_t {
    Missing, ///< there are no favourites
    Damaged, ///< it cannot be read, or is none: whoever makes the process's store replaces it
    Valid,
};
FavouritesFile checkFavouritesFile();
/// What tells people of a damaged one.
QString favouritesProblem();

} // namespace zyn::qml
