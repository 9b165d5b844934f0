// Checks the file of a favourite's calls and messages.
#include "tools/store/ContactFileCheck.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/StoreFileProblems.h"
#include "tools/zynphone/ActivityText.h"
#include "tools/zynphone/Console.h"

#include <algorithm>
#include <deque>
#include <string_view>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Entry = PHONE_ENG_ActivityLog;

constexpr std::string_view kDialedCharacters = "0123456789*#+";

/// What is wrong with @p entry, in @p slot of the file @p name, seen alone.
QStringList entryProblems(const Entry& entry, int slot, const QString& name)
{
    QStringList problems;
    if (entry.topPalsAvlPos != slot)
        problems += u"the entry names slot %1"_s.arg(entry.topPalsAvlPos);
    if (entry.topPalsAvlIndex < 0)
        problems += u"the index is %1"_s.arg(entry.topPalsAvlIndex);
    if (isContactFileName(name) && entry.getPhoneNumber() != name)
        problems += u"the number is '%1'"_s.arg(printable(entry.getPhoneNumber()));
    problems += flagProblems(entry) + textProblems(entry);
    if (!isTerminated(entry.msgString))
        problems += u"the message has no NUL"_s;
    return problems;
}

/// Looks at the slots one after the other.
class EntryCheck
{
public:
    EntryCheck(const QString& name, const QStringList& problems)
        : m_name(name)
        , m_problems(problems)
    {}

    void look(const QByteArray& image, int slot)
    {
        Entry& entry = m_entries.emplace_back();
        zyn::readContactRecord(entry, image, slot);
        if (entry.inUse == 0) {
            if (zyn::contactRecordBytes(entry) != zyn::contactRecordBytes(m_blank))
                m_problems.add(slot, u"it is free but not blank"_s);
            m_entries.pop_back();
            return;
        }
        m_problems.add(slot, entryProblems(entry, slot, m_name));
        entry.topPalsAvlPos = slot;
    }

    const Problems& problems() const { return m_problems; }
    Table table() const { return Table(activityColumns(), m_entries); }

private:
    const QString m_name;
    const Entry m_blank;
    Problems m_problems;
    std::deque<Entry> m_entries; ///< entries that never move, as each copy writes trace text
};

} // namespace

bool isContactFileName(const QString& name)
{
    return !name.isEmpty() && std::ranges::all_of(name, [](QChar character) {
        return kDialedCharacters.find(character.toLatin1()) != kDialedCharacters.npos;
    });
}

bool isContactFileImage(const QByteArray& image)
{
    const int slots = contactRecordCount(image);
    if (!hasValidHeader(image) || image.size() != contactFileSize(slots))
        return false;
    Entry entry;
    const int32_t nowhere = entry.topPalsAvlPos;
    int known = 0;
    for (int slot = 0; slot < slots; ++slot) {
        readContactRecord(entry, image, slot);
        known += entry.topPalsAvlPos == slot || entry.topPalsAvlPos == nowhere ? 1 : 0;
    }
    return known >= slots - known;
}

FileFindings checkContactFile(const QString& name, const QByteArray& image)
{
    QStringList problems = headerProblems(image);
    const int slots = problems.isEmpty() ? contactRecordCount(image) : 0;
    problems += sizeProblems(image, contactFileSize(contactSlots()));
    EntryCheck check(name, problems);
    for (int slot = 0; slot < slots; ++slot)
        check.look(image, slot);
    return {u"activities of a favourite"_s, kSlotWord, check.problems(), check.table()};
}

} // namespace zyn::tool
