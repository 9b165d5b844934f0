// The store of recent calls against a plain model: what is in the files after any sequence of operations.
#include "fuzz/Fuzz.h"

#include "platform/SETUP_SET_Manager.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "utility/PHONE_Settings_p.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

namespace zyn::fuzz {
namespace {

using Call = PHONE_ENG_RecentCall;

constexpr int kLists = 3;
constexpr int kProcesses = 2;
constexpr const char* kLimitKeys[kLists] = {"maxAnsweredCall", "maxMissedCall", "maxDialedCall"};

bool isUsed(const Call& call)
{
    return call.inUse != 0;
}

/// What the files should hold, and what two processes should know of them, each by what it has read and done.
class Model
{
public:
    using Slots = std::bitset<kRecordSlots>;

    Model() { m_limits.fill(kRecordSlots); }

    int limit(int list) const { return m_limits.at(size_t(list)); }
    Call& at(int list, int slot) { return m_files.at(size_t(list)).at(size_t(slot)); }
    Slots& known(int process, int list) { return m_known.at(size_t(process)).at(size_t(list)); }

    QByteArray image(int list) const
    {
        QByteArray bytes = bytesOf(StoreFileHeader{}).toByteArray();
        for (const Call& call : m_files.at(size_t(list)))
            bytes += bytesOf(call);
        return bytes;
    }

    int32_t takeUid()
    {
        const int32_t uid = m_nextUid;
        m_nextUid = uid == std::numeric_limits<int32_t>::max() ? uid : uid + 1;
        return uid;
    }

    /// The lowest slot that @p process does not know to be in use; -1 when there is none below the limit.
    int freeSlot(int process, int list)
    {
        for (int slot = 0; slot < limit(list); ++slot) {
            if (!known(process, list)[size_t(slot)])
                return slot;
        }
        return -1;
    }

    /// The calls that @p process reads, newest first, from which it learns.
    std::vector<Call> read(int process, int list)
    {
        std::vector<Call> calls;
        for (int slot = 0; slot < limit(list); ++slot) {
            const Call& call = at(list, slot);
            if (!isUsed(call))
                continue;
            known(process, list)[size_t(slot)] = true;
            if (call.uid >= m_nextUid) {
                m_nextUid = call.uid;
                takeUid();
            }
            calls.push_back(call);
        }
        std::ranges::stable_sort(calls, std::greater(), &Call::uid);
        return calls;
    }

    void setLimit(int list, int limit) { m_limits.at(size_t(list)) = limit; }
    void forget(int process) { m_known.at(size_t(process)) = {}; }
    void blank(int list) { m_files.at(size_t(list)).fill(Call()); }

    /// All calls go, of the slots that the lists have together.
    void clear(int process)
    {
        const int all = std::min(m_limits[0] + m_limits[1] + m_limits[2], kRecordSlots);
        for (auto& file : m_files)
            std::fill_n(file.begin(), all, Call());
        forget(process);
        m_nextUid = 0;
    }

private:
    std::array<std::array<Call, kRecordSlots>, kLists> m_files;
    std::array<std::array<Slots, kLists>, kProcesses> m_known;
    std::array<int, kLists> m_limits;
    int32_t m_nextUid = 0;
};

/// The store, the files, and the model of them.
class Stores
{
public:
    Stores()
    {
        for (auto& store : m_stores)
            store = std::make_unique<RecentCall_ENG_RecordStore>();
        m_stores[0]->clearAllData();
    }

    void step(Input& input);
    void checkAll() const
    {
        for (int list = 0; list < kLists; ++list)
            check(list);
    }

private:
    QString path(int list) const { return m_folder.store(QLatin1String(recordFileName(kRecordLists[list]) + 1)); }
    void check(int list) const { require(readFile(path(list)) == m_model.image(list), "the file holds its calls"); }

    void add();
    void change();
    void remove();
    void removeAll();
    void read();
    void startAgain(int process);
    void moveLimit(Input& input);
    void damage(Input& input);
    Call callFrom(Input& input) const;

    const Folder m_folder;
    Model m_model;
    std::array<std::unique_ptr<RecentCall_ENG_RecordStore>, kProcesses> m_stores;
    int m_process = 0; ///< who does the step
    int m_list = 0;    ///< and to which list
    Call m_call;       ///< with which call
};

Call Stores::callFrom(Input& input) const
{
    Call call(QString::number(input.byte()), QDateTime::fromSecsSinceEpoch(1'700'000'000), 60);
    call.category = kRecordLists[m_list];
    call.inUse = 1;
    call.uid = input.byte();
    call.slot = int8_t(input.byte()) % (kRecordSlots + 3);
    return call;
}

void Stores::step(Input& input)
{
    const int what = input.below(16);
    const int where = input.byte();
    m_process = where % kProcesses;
    m_list = where / kProcesses % kLists;
    m_call = callFrom(input);
    switch (what) {
    case 0:
        return moveLimit(input);
    case 1:
        return startAgain(m_process);
    case 2:
        m_stores.at(size_t(m_process))->clearAllData();
        m_model.clear(m_process);
        return checkAll();
    case 3:
        return removeAll();
    case 4:
        return damage(input);
    case 5:
    case 6:
        return change();
    case 7:
    case 8:
        return remove();
    case 9:
    case 10:
    case 11:
        return read();
    default:
        return add();
    }
}

void Stores::add()
{
    const int slot = m_model.freeSlot(m_process, m_list);
    const int32_t uid = m_model.takeUid();
    const bool isAdded = m_stores.at(size_t(m_process))->addItem(m_call);
    require(isAdded == (slot >= 0) && m_call.slot == slot && m_call.uid == uid, "a call gets the lowest free slot");
    if (isAdded) {
        m_model.at(m_list, slot) = m_call;
        m_model.known(m_process, m_list)[size_t(slot)] = true;
    }
    check(m_list);
}

void Stores::change()
{
    const bool hasSlot = m_call.slot >= 0 && m_call.slot < m_model.limit(m_list);
    require(m_stores.at(size_t(m_process))->modifyItem(m_call) == hasSlot, "a call is changed in a slot of its list");
    if (hasSlot)
        m_model.at(m_list, m_call.slot) = m_call;
    check(m_list);
}

void Stores::remove()
{
    const bool hasSlot = m_call.slot >= 0 && m_call.slot < m_model.limit(m_list);
    require(m_stores.at(size_t(m_process))->removeItem(m_call) == hasSlot, "a call is removed from a slot of its list");
    if (hasSlot) {
        m_model.at(m_list, m_call.slot) = Call();
        m_model.known(m_process, m_list)[size_t(m_call.slot)] = false;
    }
    check(m_list);
}

void Stores::removeAll()
{
    require(m_stores.at(size_t(m_process))->removeItems(m_call.category), "a list can be emptied");
    auto& known = m_model.known(m_process, m_list);
    for (int slot = 0; slot < m_model.limit(m_list); ++slot) {
        if (known[size_t(slot)])
            m_model.at(m_list, slot) = Call();
    }
    known.reset();
    check(m_list);
}

void Stores::read()
{
    QSortedList<Call> list;
    list.setAutoDelete(true);
    m_stores.at(size_t(m_process))->readDataList(list, m_call.category);
    const std::vector<Call> expected = m_model.read(m_process, m_list);
    require(std::ranges::equal(list, expected,
                               [](const Call* call, const Call& other) { return bytesOf(*call) == bytesOf(other); }),
            "a list is what was added, newest first");
}

/// Another process takes the place of @p process, and knows nothing yet.
void Stores::startAgain(int process)
{
    m_stores.at(size_t(process)) = std::make_unique<RecentCall_ENG_RecordStore>();
    m_model.forget(process);
}

/// A limit holds from the start of a process on.
void Stores::moveLimit(Input& input)
{
    const int limit = input.below(kRecordSlots + 1);
    SETUP_SET_Manager(kPhoneSettings, false)
        .setSettingInfo(QStringLiteral("RECENTCALL_SET"), QLatin1String(kLimitKeys[m_list]), limit);
    RecentCall_Setup::destroy();
    m_model.setLimit(m_list, limit);
    for (int process = 0; process < kProcesses; ++process)
        startAgain(process);
    checkAll();
}

/// Somebody spoils a file: no call is shown that is not in it, and a process that starts has a valid file again.
void Stores::damage(Input& input)
{
    const QByteArray whole = m_model.image(m_list);
    QByteArray spoilt = whole;
    const qsizetype place = input.number<uint16_t>() % whole.size();
    if (input.below(2) == 0)
        spoilt.truncate(place);
    else
        spoilt[place] = char(spoilt[place] ^ (input.byte() | 1));
    writeFile(path(m_list), spoilt);
    const bool hasHeader = spoilt.startsWith(whole.first(qsizetype{sizeof(StoreFileHeader)}));
    int used = 0;
    for (int slot = 0; hasHeader && slot < m_model.limit(m_list); ++slot) {
        const auto flag = static_cast<qsizetype>(RecordFile::offset(slot)) + qsizetype{offsetof(Call, inUse)};
        used += flag < spoilt.size() && spoilt[flag] != 0 ? 1 : 0;
    }
    QSortedList<Call> list;
    list.setAutoDelete(true);
    m_stores.at(size_t(m_process))->readDataList(list, m_call.category);
    require(list.count() == used, "a damaged file shows the calls that are left");

    startAgain(m_process);
    if (hasHeader && spoilt.size() == whole.size()) {
        require(readFile(path(m_list)) == spoilt, "a file with a damaged call stays");
        writeFile(path(m_list), whole);
    } else {
        m_model.blank(m_list);
    }
    // The uids go on behind the damaged ones otherwise.
    m_stores.at(size_t(m_process))->clearAllData();
    m_model.clear(m_process);
    checkAll();
}

/// Two processes that add, change, remove and read, with limits that move and files that are damaged.
void operateStores(Input& input)
{
    Stores stores;
    while (!input.isAtEnd())
        stores.step(input);
    stores.checkAll();
}

QList<QByteArray> storeSeeds()
{
    // A step is what, where, and the number, uid and slot of a call.
    const auto step = [](char what, char where) { return seed({what, where, 17, 3, 1}); };
    QByteArray mixed;
    for (char where = 0; where < kProcesses * kLists; ++where)
        mixed += step(15, where) + step(15, where) + step(9, where) + step(5, where) + step(7, where);
    return {
        mixed,
        step(15, 0).repeated(52) + step(9, 0) + step(3, 0),
        mixed + step(0, 2) + '\1' + step(15, 2).repeated(2) + step(1, 2) + step(9, 2) + step(2, 2),
        mixed + step(4, 0) + QByteArray("\x40\0\0", 3) + mixed + step(4, 2) + QByteArray("\x02\0\1\7", 4) + mixed,
    };
}

constexpr std::array kStoreTargets{
    Target{"store_sequence", "the store of recent calls, against a model", operateStores, storeSeeds},
};

} // namespace

std::span<const Target> storeTargets()
{
    return kStoreTargets;
}

} // namespace zyn::fuzz
