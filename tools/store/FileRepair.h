// Makes sound files out of damaged ones: lists of calls, contacts' files, the favourites' file.
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
 * Takes the records in use over into a fresh file of as many slots as it must have, each in its slot or, where the file
 * has no such slot, in the lowest free one. When there are too many, the oldest do not fit. Each change is told.
 */
class SlotRepair
{
public:
    virtual ~SlotRepair() = default;

    /// What the file must hold in place of @p image.
    QByteArray repaired(const QByteArray& image);
    /// How many records in use the last repaired() found.
    int recordCount() const { return m_recordCount; }

protected:
    /// For the file @p name, of which a free slot holds @p blank.
    SlotRepair(QString name, QByteArray blank, Findings& log);

    /// How many slots the file that holds @p image gets, in which @p records records were found.
    virtual int slotsFor(const QByteArray& image, int records) const = 0;
    /// Whether @p record, of @p slot of a file whose header says nothing, is likely to be one.
    virtual bool isLikely(const QByteArray& record, int slot) const = 0;
    /// Whether @p record is newer than @p other.
    virtual bool isNewer(const QByteArray& record, const QByteArray& other) const = 0;
    /// Puts right what is wrong with @p record, which comes from slot @p from and goes to slot @p to.
    virtual void correct(QByteArray& record, int from, int to) = 0;

    /// Tells what was done to the record in @p slot.
    void report(int slot, const QString& text);
    /// Puts right and tells what any call in use has, whatever kind of record it is part of.
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

/// One list's file. A record of a damaged file is taken for one when two of these hold: its flag says that it is in
/// use, it names its slot, it names its list.
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

/// Gives each call of the sound record files @p images, by their names, a uid of its own: all but the first of several
/// get one above all others, so that they count as newer. When no uid is left above, calls get lower ones first. The
/// result are those with another uid.
RenumberedCalls renumberCalls(std::map<QString, QByteArray>& images, Findings& log);

/// A record of a damaged file is taken for one when two of these hold: its flag says that it is in use, it names its
/// slot, it has the file's number. The settings, which may have changed, cost no record its slot.
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

/// Gives the entries that were made of @p calls, in the sound @p image of the file @p name, the uids of these.
void renumberEntries(QByteArray& image, const QString& name, const RenumberedCalls& calls, Findings& log);

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
    void keep(const TopPalNumberDetail& found, int place, bool isTrusted);
    void report(int place, const QString& text);
    bool isTaken(const QString& number) const;
    bool hasFile(const QString& number) const;

    std::array<TopPalNumberDetail, ActivityLog_ENG_RecordStore::kFavourites> m_places;
    const StoreFiles& m_files;
    Findings& m_log;
};

} // namespace zyn::tool
