// What makes a damaged store sound again.
#pragma once

#include "tools/store/FileRepair.h"
#include "tools/store/StoreFiles.h"
#include "tools/zynphone/Finding.h"

#include <QtCore/QStringList>

#include <map>

namespace zyn::tool {

/**
 * The repair of a store directory, worked out before anything is changed.
 *
 * Record files, the favourites' file and their contact files get their size, header and blank slots, and records that
 * say where they are; calls with the uid of another get one above all others. A contact file keeps the slots that it
 * has beyond those of the settings, and stays as it is when these say that it has none. One that is no favourite's gets
 * a free place when it has entries, and is removed when it has none. A favourite without a file gets one. Files that a
 * dead process left are removed. What is no file of a store, or cannot be read, stays, and so does a contact file for
 * which no place is free.
 */
class StoreRepair
{
public:
    explicit StoreRepair(const StoreFiles& files);

    /// What is done, in this order.
    const Findings& log() const { return m_log; }
    bool isNeeded() const { return !m_changed.empty() || !m_removed.isEmpty(); }

    /// Changes the files, each whole or not at all. Throws at the first that cannot be changed.
    void apply() const;

private:
    using Images = std::map<QString, QByteArray>;

    void repairCalls();
    void repairFavourites();
    void repairContact(const QString& name, FavouritesRepair& favourites, bool isRegistered);
    void addMissingContacts(const QByteArray& details);
    void repairRest();
    /// Notes that the file @p name is to hold @p image, unless it does.
    void change(const QString& name, const QByteArray& image);
    void remove(const QString& name, const QString& why);

    const StoreFiles& m_files;
    Findings m_log;
    RenumberedCalls m_renumbered;
    Images m_changed;
    QStringList m_removed;
};

} // namespace zyn::tool
