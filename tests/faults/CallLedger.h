// What a campaign knows of the calls that it has made: what must be in the log, what may be, and what may not.
#pragma once

#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "tests/faults/Campaign.h"

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QSet>

#include <array>
#include <atomic>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include <sys/mman.h>

namespace faults {

using Call = PHONE_ENG_RecentCall;

/// Memory that a process shares with those that it forks, blank at first.
template<typename Plain>
class Shared
{
public:
    Shared()
        : m_memory(::mmap(nullptr, sizeof(Plain), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (m_memory == MAP_FAILED)
            qFatal("no memory to share");
    }
    Shared(const Shared&) = delete;
    Shared& operator=(const Shared&) = delete;
    ~Shared() { ::munmap(m_memory, sizeof(Plain)); }
    Plain* operator->() const { return static_cast<Plain*>(m_memory); }

private:
    void* m_memory;
};

/**
 * The calls of a campaign, each with a number of its own, which its start time and its texts tell.
 *
 * Forked processes write into it, too: what one has said before it is killed stays.
 */
class CallLedger
{
public:
    enum Fate : char {
        Unknown, ///< never made
        Maybe,   ///< on its way into the list, or out of it
        Kept,    ///< acknowledged: it must be there
        Gone,    ///< its removal was acknowledged: it may not be there
    };

    /// What tells a call's number: programs that have a clock of their own give the start.
    enum class Key { Start, Number };

    explicit CallLedger(Key key = Key::Start)
        : m_key(key)
    {}

    /// A new call, which may be in the list from now on.
    int begin()
    {
        const int id = m_shared->next++;
        if (id >= kLimit)
            qFatal("a campaign makes at most %d calls", kLimit);
        m_shared->fates[id] = Maybe;
        return id;
    }
    void set(int id, Fate fate) { m_shared->fates[id] = fate; }
    Fate fate(int id) const { return id >= 0 && id < kLimit ? m_shared->fates[id].load() : Unknown; }
    int count() const { return m_shared->next; }

    static Call call(int id)
    {
        Call call(number(id), QDateTime::fromSecsSinceEpoch(kFirstStart + id), id * 7 % 3600);
        call.setDisplayName(name(id));
        call.category = zyn::kRecordLists[id % 3];
        call.inUse = 1;
        return call;
    }
    static QString number(int id) { return QStringLiteral("030%1").arg(id, 7, 10, QLatin1Char('0')); }
    static QString name(int id) { return QStringLiteral("caller %1").arg(id); }

    int idOf(const Call& found) const
    {
        return m_key == Key::Start ? found.startTime - kFirstStart : found.getPhoneNumber().mid(3).toInt();
    }
    const QSet<int>& kept() const { return m_kept; }
    void markRead(int id) { m_read.insert(id); }

    /// Learns what forked processes have said.
    void learn()
    {
        for (; m_learned < count(); ++m_learned)
            m_open.insert(m_learned);
        for (auto id = m_open.begin(); id != m_open.end();) {
            if (fate(*id) == Kept)
                m_kept.insert(*id);
            else
                m_kept.remove(*id);
            id = fate(*id) == Gone ? m_open.erase(id) : std::next(id);
        }
    }
    /// What is on its way and was not seen can no longer come.
    void forgetUnderWay()
    {
        learn();
        for (const int id : std::as_const(m_open)) {
            if (fate(id) == Maybe)
                set(id, Gone);
        }
    }
    /// All that is kept is being removed by @p remove, which tells whether it has been: then none of it may come back.
    bool removeAll(const std::function<bool()>& remove)
    {
        learn();
        const QSet<int> removed = std::exchange(m_kept, {});
        for (const int id : removed)
            set(id, Maybe);
        const bool isRemoved = remove();
        for (const int id : removed) {
            if (isRemoved)
                set(id, Gone);
        }
        return isRemoved;
    }
    /// The files are gone, and nothing is on its way.
    void removeFiles()
    {
        forgetUnderWay();
        removeAll([] { return true; });
        m_open.clear();
        m_read.clear();
    }

    /// Checks what was found in the log, from where @p where tells; whatever was seen once must stay.
    void check(Campaign& campaign, const std::vector<Call>& found, const QString& where)
    {
        using namespace Qt::StringLiterals;
        learn();
        QSet<int> seen;
        for (const Call& call : found) {
            const int id = idOf(call);
            const QString which = QStringLiteral(" (%1 %2)").arg(where).arg(id);
            const Fate known = fate(id);
            campaign.check(known != Unknown && known != Gone,
                           (known == Gone ? u"a call has come back"_s : u"a call that nobody made"_s) + which);
            campaign.check(!seen.contains(id), u"a call is there twice"_s + which);
            campaign.check(isWhole(call, id), u"a call is not whole"_s + which);
            seen.insert(id);
            if (known == Maybe) {
                set(id, Kept);
                m_kept.insert(id);
                m_open.insert(id);
            }
        }
        for (const int id : std::as_const(m_kept))
            campaign.check(seen.contains(id),
                           QStringLiteral("an acknowledged call is lost (%1 %2)").arg(where).arg(id));
    }

private:
    static constexpr int kFirstStart = 1'500'000'000;
    static constexpr int kLimit = 8'000'000;

    bool isWhole(const Call& found, int id) const
    {
        Call expected = call(id);
        if (m_key == Key::Number)
            return found.getPhoneNumber() == number(id) && found.getDisplayName() == name(id)
                   && found.callType == expected.callType && found.duration >= 0 && found.startTime > kFirstStart;
        expected.uid = found.uid;
        expected.slot = found.slot;
        expected.readFlags = m_read.contains(id) ? Call::kRead : found.readFlags & Call::kRead;
        return zyn::RecordFile::bytes(expected) == zyn::RecordFile::bytes(found);
    }

    struct Table
    {
        std::atomic<int> next;
        std::atomic<Fate> fates[kLimit];
    };

    const Key m_key;
    Shared<Table> m_shared;
    QSet<int> m_kept;
    QSet<int> m_open; ///< those whose fate may change
    QSet<int> m_read;
    int m_learned = 0;
};

/// All voice calls of the log; nothing when the service does not answer.
inline std::optional<std::vector<Call>> listCalls()
{
    static constexpr std::array kVoice{RC_CALL_TYPE_VOICE};
    return zyn::handset::fetchCalls(RC_CALL_CATEGORY_ALL, kVoice);
}

/// The calls on disk in the store @p directory; no slot may be torn, and each file must be valid or missing.
inline std::vector<Call> callsOnDisk(Campaign& campaign, const QString& directory, bool mayMiss = false)
{
    using namespace Qt::StringLiterals;
    using zyn::RecordFile;
    std::vector<Call> calls;
    QHash<int32_t, QString> uids;
    for (const RC_CALL_CATEGORY_T list : zyn::kRecordLists) {
        const QString name = QLatin1String(zyn::recordFileName(list)).sliced(1);
        QFile file(directory + u'/' + name);
        const bool isThere = file.open(QIODevice::ReadOnly);
        campaign.check(isThere || mayMiss, name + u" is missing"_s);
        if (!isThere)
            continue;
        const QByteArray image = file.readAll();
        if (!campaign.check(RecordFile::isValid(image), name + u" is not valid"_s))
            continue;
        for (int slot = 0; slot < zyn::kRecordSlots; ++slot) {
            const Call call = RecordFile::at(image, slot);
            const QString which = QStringLiteral(" (%1, slot %2)").arg(name).arg(slot);
            if (!RecordFile::isInUse(image, slot)) {
                campaign.check(RecordFile::bytes(call) == RecordFile::bytes(Call()),
                               u"a free slot is not blank"_s + which);
                continue;
            }
            campaign.check(call.slot == slot && call.category == list, u"a slot is another's"_s + which);
            campaign.check(!uids.contains(call.uid), u"a uid is given twice"_s + which + uids.value(call.uid));
            uids.insert(call.uid, which);
            calls.push_back(call);
        }
    }
    return calls;
}

} // namespace faults
