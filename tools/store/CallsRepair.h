// Makes sound record files of calls out of damaged ones.
#pragma once

#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/store/SlotRepair.h"

#include <map>

namespace zyn::tool {

/// One list's file. A record of a damaged file is taken for one when two of these hold: its flag says
/// that it is in use, it names its slot, it names its list.
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

} // namespace zyn::tool
