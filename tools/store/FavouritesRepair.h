// Makes a sound file of the favourites out of a damaged one.
#pragma once

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "tools/store/Findings.h"
#include "tools/store/StoreFiles.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <array>

namespace zyn::tool {

/// The places that a damaged file tells, but for those whose number is missing, twice there or can name no file: they
/// become free. A number that has a file in the store is a favourite's, whatever else its place says. Each change is
/// told.
class FavouritesRepair
{
public:
    /// Five free places when @p files have no file of the favourites.
    FavouritesRepair(const StoreFiles& files, Findings& log);

    /// Gives @p number the lowest free place; false when none is free or a place does not hold the number.
    bool add(const QString& number);

    QByteArray image() const;

private:
    void take(const TopPalNumberDetail& found, int place, bool isTrusted);
    void tell(int place, const QString& text);
    bool isTaken(const QString& number) const;
    bool hasFile(const QString& number) const;

    std::array<TopPalNumberDetail, ActivityLog_ENG_RecordStore::kFavourites> m_places;
    const StoreFiles& m_files;
    Findings& m_log;
};

} // namespace zyn::tool
