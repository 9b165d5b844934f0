// Checks the record file of a list of calls.
#include "tools/zynphone/RecordFileCheck.h"

#include "recentcall/utility/RecordFile_p.h"
#include "tools/zynphone/CallText.h"
#include "tools/zynphone/StoreFileProblems.h"

#include <QtCore/QHash>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;
using Call = PHONE_ENG_RecentCall;

/// The list whose file has the name @p name.
RC_CALL_CATEGORY_T listNamed(const QString& name)
{
    const auto found = std::ranges::find_if(zyn::kRecordLists, [&](RC_CALL_CATEGORY_T list) {
        return name == QLatin1String(zyn::recordFileName(list)).sliced(1);
    });
    return found == std::end(zyn::kRecordLists) ? RC_CALL_CATEGORY_NONE : *found;
}

/// What is wrong with the record in @p place of the file of @p list, seen alone.
QStringList recordProblems(const Call& record, int place, RC_CALL_CATEGORY_T list)
{
    QStringList problems;
    if (record.slot != place)
        problems += u"the record names slot %1"_s.arg(record.slot);
    if (list != RC_CALL_CATEGORY_NONE && record.category != list)
        problems += u"the category is %1"_s.arg(categoryWord(record.category));
    return problems + textProblems(record);
}

/// Looks at the slots one after the other.
class SlotCheck
{
public:
    explicit SlotCheck(RC_CALL_CATEGORY_T list)
        : m_list(list)
    {}

    void look(const Call& record, int place)
    {
        for (const QString& problem : recordProblems(record, place, m_list))
            report(place, problem);
        if (const auto other = m_placeOfUid.constFind(record.uid); other != m_placeOfUid.cend())
            report(place, u"uid %1 is that of slot %2 too"_s.arg(record.uid).arg(*other));
        else
            m_placeOfUid.insert(record.uid, place);
        m_records.push_back(record);
        m_records.back().slot = place;
    }

    void lookAtFree(const Call& record, int place)
    {
        if (zyn::bytesOf(record) != zyn::bytesOf(Call()))
            report(place, u"it is free but not blank"_s);
    }

    const QStringList& problems() const { return m_problems; }
    Table table() const { return Table(slotColumns(), m_records); }

private:
    void report(int place, const QString& problem) { m_problems += u"slot %1: %2"_s.arg(place).arg(problem); }

    RC_CALL_CATEGORY_T m_list;
    QHash<int32_t, int> m_placeOfUid;
    QStringList m_problems;
    std::vector<Call> m_records;
};

} // namespace

namespace zyn::tool {

bool isRecordFileName(const QString& name)
{
    return listNamed(name) != RC_CALL_CATEGORY_NONE;
}

bool isRecordFileImage(const QByteArray& image)
{
    return image.size() == kRecordFileSize && hasValidHeader(image);
}

FileFindings checkRecordFile(const QString& name, const QByteArray& image)
{
    const RC_CALL_CATEGORY_T list = listNamed(name);
    QStringList problems = headerProblems(image);
    const int places = problems.isEmpty() ? std::min(recordCount(image), kRecordSlots) : 0;
    problems += sizeProblems(image, kRecordFileSize);
    SlotCheck check(list);
    for (int place = 0; place < places; ++place) {
        if (isRecordInUse(image, place))
            check.look(recordAt(image, place), place);
        else
            check.lookAtFree(recordAt(image, place), place);
    }
    const QString kind = list == RC_CALL_CATEGORY_NONE ? u"calls"_s : categoryWord(list) + u" calls"_s;
    return {kind, problems + check.problems(), check.table()};
}

} // namespace zyn::tool
