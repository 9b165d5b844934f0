// Makes a sound file of slots out of a damaged one.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/store/Findings.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

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
    void tell(int slot, const QString& text);
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
    void tellShape(const QByteArray& image, const QByteArray& result);

    const QString m_name;
    const QByteArray m_blank;
    Findings& m_log;
    int m_slots = 0;
    int m_recordCount = 0;
};

} // namespace zyn::tool
