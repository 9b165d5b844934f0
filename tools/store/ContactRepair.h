// Makes a sound file of a favourite's calls and messages out of a damaged one.
#pragma once

#include "handset/favourites/ActivityLog.h"
#include "tools/store/CallsRepair.h"
#include "tools/store/SlotRepair.h"

namespace zyn::tool {

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

} // namespace zyn::tool
