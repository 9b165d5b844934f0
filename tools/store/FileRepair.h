// Repairs single files of a store: lists of calls, contact files, the file of favourites.
#pragma once

#include "handset/favourites/ActivityLog.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/store/StoreFiles.h"
#include "tools/zynphone/Finding.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <array>
#include <map>
#include <span>
#include <vector>

namespace zyn::tool {

/**
 * Copies the records in use to a new file of the required number of slots, each to its slot or, if there is none, to
 * the lowest free one. If they do not fit, the oldest are dropped. Each change is logged.
 */
class SlotRepair
{
public:
    virtual ~SlotRepair() = default;

    /// The repaired contents for @p image.
    QByteArray repaired(const QByteArray& image);
    /// The number of records in use found by the last repaired().
    int recordCount() const { return m_recordCount; }

protected:
    /// For the file @p name, with @p blank in free slots.
    SlotRepair(QString name, QByteArray blank, Findings& log);

    /// The number of slots for the file @p image, in which @p records records were found.
    virtual int slotsFor(const QByteArray& image, int records) const = 0;
    /// Whether @p record in @p slot of a file with an invalid header is likely to be a record.
    virtual bool isLikely(const QByteArray& record, int slot) const = 0;
    /// Whether @p record is newer than @p other.
    virtual bool isNewer(const QByteArray& record, const QByteArray& other) const = 0;
    /// Repairs @p record, which moves from slot @p from to slot @p to.
    virtual void correct(QByteArray& record, int from, int to) = 0;

    /// Logs a change of the record in @p slot.
    void report(int slot, const QString& text);
    /// Repairs and logs the faults that a call in use can have in any kind of file.
    void correctCall(PHONE_ENG_RecentCall& call, int slot);
    /// Ends @p field with a NUL if it has none.
    void endText(std::span<char> field, int slot, const QString& what);

    const QString& name() const { return m_name; }

private:
    struct Placed
    {
        int slot;
        QByteArray record;
    };

    std::vector<Placed> recordsIn(const QByteArray& image);
    void dropOldest(std::vector<Placed>& records);
    QByteArray arrange(std::vector<Placed>& records);
    void reportSize(const QByteArray& image, const QByteArray& result);

    const QString m_name;
    const QByteArray m_blank;
    Findings& m_log;
    int m_slots = 0;
    int m_recordCount = 0;
};

/// One list's file. Under an invalid header a record counts if two of these hold: its flag says in use, it holds its
/// slot number, it holds its list.
class CallsRepair : public SlotRepair
{
public:
    CallsRepair(const QString& name, Findings& log);

protected:
    int slotsFor(const QByteArray& image, int records) const override;
    bool isLikely(const QByteArray& record, int slot) const override;
    bool isNewer(const QByteArray& record, const QByteArray& other) const override;
    void correct(QByteArray& record, int from, int to) override;

private:
    const RC_CALL_CATEGORY_T m_list;
};

/// Gives each call of the valid record files @p images, by name, a unique uid: of several calls with one uid, all but
/// the first get a uid above all others, so that they count as newer. If there are not enough, all calls get lower ones
/// first. Returns the calls whose uid has changed.
RenumberedCalls renumberCalls(std::map<QString, QByteArray>& images, Findings& log);

/// Under an invalid header a record counts if two of these hold: its flag says in use, it holds its slot number, it has
/// the file's number. Changed settings cost no record its slot.
class ContactRepair : public SlotRepair
{
public:
    ContactRepair(const QString& name, Findings& log);

protected:
    int slotsFor(const QByteArray& image, int records) const override;
    bool isLikely(const QByteArray& record, int slot) const override;
    bool isNewer(const QByteArray& record, const QByteArray& other) const override;
    void correct(QByteArray& record, int from, int to) override;

private:
    const handset::AgeOrder m_isOlder;
};

/// Updates the entries made from @p calls to their new uids, in the valid @p image of the file @p name.
void renumberEntries(QByteArray& image, const QString& name, const RenumberedCalls& calls, Findings& log);

/// The places of a damaged file, except that those with a missing, duplicate or invalid number become free. A number
/// with a file in the store is a favourite's, whatever else its place says. Each change is logged.
class FavouritesRepair
{
public:
    /// Five free places if @p files have no file of favourites.
    FavouritesRepair(const StoreFiles& files, Findings& log);

    /// Assigns @p number to the lowest free place; false if none is free or the number does not fit.
    bool add(const QString& number);

    QByteArray image() const;

private:
    void keep(const TopPalNumberDetail& found, int place, bool isTrusted);
    void report(int place, const QString& text);
    bool isTaken(const QString& number) const;
    bool hasFile(const QString& number) const;

    std::array<TopPalNumberDetail, ActivityLog_ENG_RecordStore::kFavourites> m_places;
    const StoreFiles& m_files;
    Findings& m_log;
};

} // namespace zyn::tool
