// Repairs a damaged store.
#pragma once

#include "tools/store/FileRepair.h"
#include "tools/store/StoreFiles.h"
#include "tools/zynphone/Finding.h"

#include <QtCore/QStringList>

#include <map>

namespace zyn::tool {

/**
 * The repair of a store, planned before anything is changed.
 *
 * Record files, the file of favourites and contact files get their size, header and blank slots, and records with their
 * own slot numbers. Duplicate uids are replaced by new ones. A contact file keeps slots beyond the settings' number,
 * and is left alone if that is 0. A contact file without a favourite gets a free place if it has entries, otherwise it
 * is removed. A favourite without a file gets one. Files left by a dead process are removed. Other files stay, as do
 * unreadable ones and contact files for which no place is free.
 */
class StoreRepair
{
public:
    explicit StoreRepair(const StoreFiles& files);

    /// What is done, in order.
    const Findings& log() const { return m_log; }
    bool isNeeded() const { return !m_changed.empty() || !m_removed.isEmpty(); }

    /// Changes the files, each atomically. Throws at the first failure.
    void apply() const;

private:
    using Images = std::map<QString, QByteArray>;

    void repairCalls();
    void repairFavourites();
    void repairContact(const QString& name, FavouritesRepair& favourites, bool isRegistered);
    void addMissingContacts(const QByteArray& details);
    void repairRest();
    /// Plans to write @p image to the file @p name if it differs.
    void change(const QString& name, const QByteArray& image);
    void remove(const QString& name, const QString& why);

    const StoreFiles& m_files;
    Findings m_log;
    RenumberedCalls m_renumbered;
    Images m_changed;
    QStringList m_removed;
};

} // namespace zyn::tool
