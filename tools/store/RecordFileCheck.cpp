// Checks the record file of a list of calls.
#include "tools/store/RecordFileCheck.h"

#include "recentcall/utility/store/RecordFile_p.h"
#include "tools/store/StoreFileProblems.h"
#include "tools/zynphone/CallText.h"

#include <QtCore/QHash>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

/// What is wrong with the record in @p place of the file of @p list, seen alone.
QStringList recordProblems(const Call& record, int place, RC_CALL_CATEGORY_T list)
{
    QStringList problems;
    if (record.slot != place)
        problems += u"the record names slot %1"_s.arg(record.slot);
    if (list != RC_CALL_CATEGORY_NONE && record.category != list)
        problems += u"the category is %1"_s.arg(categoryWord(record.category));
    if (record.uid == zyn::kGreatestUid)
        problems += u"its uid leaves none for newer calls"_s;
    return problems + flagProblems(record) + textProblems(record);
}

/// Looks at the slots one after the other.
class SlotCheck
{
public:
    SlotCheck(RC_CALL_CATEGORY_T list, const QStringList& problems)
        : m_list(list)
        , m_problems(problems)
    {}

    void look(const Call& record, int place)
    {
        m_problems.add(place, recordProblems(record, place, m_list));
        if (const auto other = m_placeOfUid.constFind(record.uid); other != m_placeOfUid.cend())
            m_problems.add(place, u"uid %1 is that of slot %2 too"_s.arg(record.uid).arg(*other));
        else
            m_placeOfUid.insert(record.uid, place);
        m_records.push_back(record);
        m_records.back().slot = place;
    }

    void lookAtFree(const Call& record, int place)
    {
        if (zyn::bytesOf(record) != zyn::bytesOf(Call()))
            m_problems.add(place, u"it is free but not blank"_s);
    }

    const Problems& problems() const { return m_problems; }
    Table table() const { return Table(slotColumns(), m_records); }

private:
    RC_CALL_CATEGORY_T m_list;
    QHash<int32_t, int> m_placeOfUid;
    Problems m_problems;
    std::vector<Call> m_records;
};

} // namespace

QString recordFile(RC_CALL_CATEGORY_T list)
{
    return QLatin1String(recordFileName(list)).sliced(1);
}

RC_CALL_CATEGORY_T listOfFile(const QString& name)
{
    const auto found = std::ranges::find(kRecordLists, name, recordFile);
    return found == std::end(kRecordLists) ? RC_CALL_CATEGORY_NONE : *found;
}

bool isRecordFileName(const QString& name)
{
    return listOfFile(name) != RC_CALL_CATEGORY_NONE;
}

bool isRecordFileImage(const QByteArray& image)
{
    return image.size() == kRecordFileSize && hasValidHeader(image);
}

FileFindings checkRecordFile(const QString& name, const QByteArray& image)
{
    const RC_CALL_CATEGORY_T list = listOfFile(name);
    QStringList problems = headerProblems(image);
    const int places = problems.isEmpty() ? std::min(recordCount(image), kRecordSlots) : 0;
    problems += sizeProblems(image, kRecordFileSize);
    SlotCheck check(list, problems);
    for (int place = 0; place < places; ++place) {
        if (isRecordInUse(image, place))
            check.look(recordAt(image, place), place);
        else
            check.lookAtFree(recordAt(image, place), place);
    }
    const QString kind = list == RC_CALL_CATEGORY_NONE ? u"calls"_s : categoryWord(list) + u" calls"_s;
    return {kind, kSlotWord, check.problems(), check.table()};
}

} // namespace zyn::tool
