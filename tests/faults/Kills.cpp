// Kills the services, and applications that write, at any moment of their work: nothing that was acknowledged is lost,
// and nothing is left behind.
#include "handset/phone_server/PhoneControl.h"
#include "platform/CommandFrame_p.h"
#include "platform/SETUP_SET_Manager.h"
#include "platform/Socket_Command.h"
#include "platform/posix/StagedFile_p.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tests/faults/CallLedger.h"
#include "tests/faults/Service.h"
#include "utility/PHONE_CommandSocket_p.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QDirIterator>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using std::chrono::microseconds;
namespace rc = zyn::recentcall;

namespace faults {
namespace {

const QString kStorePath = u"/tmp/phone"_s;
/// A list holds 50 calls: before one overflows, all are emptied.
constexpr int kCallsAtATime = 40;

/// How far the campaign is, over all its parts.
class Course
{
public:
    explicit Course(Campaign& campaign)
        : m_campaign(campaign)
    {}

    void noteKill(bool isKilled, const QString& what)
    {
        m_campaign.breakThings();
        m_campaign.check(isKilled, what + u" ended by itself"_s);
        m_campaign.progress(++m_kills, m_campaign.length(10'000, 40));
    }
    /// A random time up to @p longest, short ones as likely as long ones.
    microseconds delay(int longest) const
    {
        const int most = m_campaign.random().bounded(1, longest + 1);
        return microseconds(m_campaign.random().bounded(1, most + 1));
    }

private:
    Campaign& m_campaign;
    qint64 m_kills = 0;
};

/// What the tool finds wrong with the store.
QByteArray storeFaults(const Campaign& campaign)
{
    Process tool;
    const QString result = u"/tmp/store-check"_s;
    tool.fork([&] {
        const int file = ::open(qPrintable(result), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(file, STDOUT_FILENO);
        ::dup2(file, STDERR_FILENO);
        const QByteArray program = QFile::encodeName(campaign.program("zynphone"));
        ::execl(program.constData(), "zynphone", "inspect", "--verify", qPrintable(kStorePath), nullptr);
    });
    const bool isGood = tool.finish();
    const QByteArray found = contentsOf(result);
    QFile::remove(result);
    return isGood ? QByteArray() : "the tool says: " + found;
}

// The recent-call service.

bool clearCalls()
{
    return PHONE_RecentCall_DeleteAll(RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE) == 0;
}

/// What a second application shares with the campaign: how many calls it may still add.
struct Allowance
{
    std::atomic<int> left;
};

/// Adds calls for as long as the campaign lets it, whether or not the service is there.
void addForEver(CallLedger& ledger, Allowance& allowance)
{
    for (;;) {
        if (allowance.left <= 0) {
            pauseFor(microseconds(200));
            continue;
        }
        --allowance.left;
        Call call = CallLedger::call(ledger.begin());
        if (PHONE_RecentCall_AddRecord(call) != 0)
            pauseFor(microseconds(1000));
    }
}

/// An application that adds, lists, removes and reads calls, and notes in the ledger what it was told.
class CallClient
{
public:
    CallClient(Campaign& campaign, CallLedger& ledger, Allowance& allowance)
        : m_campaign(campaign)
        , m_ledger(ledger)
        , m_allowance(allowance)
    {}

    /// Does one thing; false when the service did not answer.
    bool step()
    {
        m_campaign.operate();
        if (m_allowance.left <= 0)
            return clear();
        const int choice = m_campaign.random().bounded(10);
        if (choice < 6 || m_last.empty())
            return add() && (choice % 2 == 0 || list());
        return choice < 8 ? list() : choice < 9 ? remove() : markRead();
    }
    bool list()
    {
        const auto calls = listCalls();
        m_last = calls.value_or(std::vector<Call>());
        if (calls)
            m_ledger.check(m_campaign, *calls, u"list"_s);
        return calls.has_value();
    }
    bool clear()
    {
        if (!m_ledger.removeAll(clearCalls))
            return false;
        m_allowance.left = kCallsAtATime;
        m_last.clear();
        return true;
    }

private:
    bool add()
    {
        --m_allowance.left;
        Call call = CallLedger::call(m_ledger.begin());
        return PHONE_RecentCall_AddRecord(call) == 0;
    }
    Call one()
    {
        const auto at = m_last.begin() + m_campaign.random().bounded(int(m_last.size()));
        Call call = *at;
        m_last.erase(at);
        return call;
    }
    bool remove()
    {
        Call call = one();
        const int id = m_ledger.idOf(call);
        m_ledger.set(id, CallLedger::Maybe);
        const int result = PHONE_RecentCall_DeleteRecord(call);
        if (result == 0)
            m_ledger.set(id, CallLedger::Gone);
        m_campaign.check(result != 1, u"a listed call cannot be removed: %1"_s.arg(id));
        return result == 0;
    }
    bool markRead()
    {
        const Call call = one();
        const rc::Status result = rc::markRead(call);
        if (result == rc::Success)
            m_ledger.markRead(m_ledger.idOf(call));
        m_campaign.check(result != rc::NoSuchRecord, u"a listed call cannot be read"_s);
        return result == rc::Success;
    }

    Campaign& m_campaign;
    CallLedger& m_ledger;
    Allowance& m_allowance;
    std::vector<Call> m_last;
};

void killRecentCallService(Campaign& campaign, Course& course)
{
    constexpr int kLongestLife = 5000; // microseconds
    CallLedger ledger;
    const Shared<Allowance> allowance;
    CallClient client(campaign, ledger, *allowance.operator->());
    Process service;
    Process other;
    Killer killer;
    qint64 interrupted = 0;
    campaign.check(service.start(campaign.program("zyn-recentcalld")), u"the recent-call service starts"_s);
    other.fork([&] { addForEver(ledger, *allowance.operator->()); });
    const qint64 kills = campaign.length(1000, 12);
    for (qint64 i = 0; i < kills; ++i) {
        killer.aim(service, course.delay(kLongestLife));
        bool isAnswered = true;
        while (!killer.hasStruck())
            isAnswered = client.step();
        interrupted += isAnswered ? 0 : 1;
        course.noteKill(service.waitKilled(), u"the recent-call service"_s);
        ledger.check(campaign, callsOnDisk(campaign, kStorePath), u"file"_s);
        campaign.check(service.start(campaign.program("zyn-recentcalld")), u"the recent-call service starts"_s);
        campaign.check(client.list(), u"the recent-call service answers"_s);
        campaign.check(namesIn(kStorePath) == QStringList({u"rc_a"_s, u"rc_d"_s, u"rc_m"_s}),
                       u"in the store: "_s + namesIn(kStorePath).join(u' '));
        const QString sockets = QLatin1String(rc::kSocketDirectory);
        campaign.check(namesIn(sockets) == QStringList({u"recentcall_interface"_s, u"recentcall_interface.lock"_s}),
                       u"beside the socket: "_s + namesIn(sockets).join(u' '));
    }
    other.kill();
    const QByteArray faults = storeFaults(campaign);
    campaign.check(faults.isEmpty(), QString::fromLocal8Bit(faults));
    campaign.check(service.stop(), u"the recent-call service ends"_s);
    campaign.measure(u"recentcalld kills in a request"_s, interrupted);
    campaign.operate(ledger.count());
}

// The owner of the favourites.

constexpr int kFavourites = 5;

QString favourite(int number)
{
    return u"030111222%1"_s.arg(number);
}
/// The number that comes and goes in the last favourite's place.
const QString kOtherFavourite = u"0301112229"_s;

Call callOfFavourite(int id)
{
    Call call = CallLedger::call(id);
    call.setPhoneNumber(favourite(id % kFavourites));
    call.category = RC_CALL_CATEGORY_MISSED;
    return call;
}

/// What the files of the favourites say, and must go on to say.
class FavouritesWatch
{
public:
    explicit FavouritesWatch(Campaign& campaign)
        : m_campaign(campaign)
    {}

    /// Checks the files: no entry twice or torn, and what was seen stays, unless newer ones have taken its place.
    void check()
    {
        const QByteArray details = contentsOf(kStorePath + u'/' + QLatin1String(zyn::kTopPalsDetailsName));
        m_campaign.check(zyn::DetailsFile::isValid(details), u"the file of the favourites is not valid"_s);
        for (int number = 0; number < kFavourites - 1; ++number)
            checkOne(number);
    }
    /// Whether the calls @p listed of favourites that stay are all logged.
    bool hasAll(const std::vector<Call>& listed)
    {
        return std::ranges::all_of(listed, [&](const Call& call) {
            const int id = idOf(call);
            return id % kFavourites == kFavourites - 1 || entriesOf(id % kFavourites).contains(id);
        });
    }

private:
    static int idOf(const Call& call) { return CallLedger().idOf(call); }
    static QSet<int> entriesOf(int number, const std::function<void(const PHONE_ENG_ActivityLog&, int)>& look = {})
    {
        const QByteArray image = contentsOf(kStorePath + u'/' + zyn::favouriteKey(favourite(number)));
        QSet<int> ids;
        PHONE_ENG_ActivityLog entry;
        for (const int slot : zyn::ContactFile::usedSlots(image, zyn::ContactFile::count(image))) {
            zyn::ContactFile::read(entry, image, slot);
            if (look)
                look(entry, slot);
            ids.insert(idOf(entry));
        }
        return ids;
    }
    void checkOne(int number)
    {
        constexpr int kSlots = 15;
        const QString key = zyn::favouriteKey(favourite(number));
        m_campaign.check(zyn::ContactFile::isValid(contentsOf(kStorePath + u'/' + key), kSlots),
                         u"the file of %1 is not valid"_s.arg(key));
        QSet<int> ids;
        entriesOf(number, [&](const PHONE_ENG_ActivityLog& entry, int slot) {
            const int id = idOf(entry);
            const Call made = callOfFavourite(id);
            m_campaign.check(entry.topPalsAvlPos == slot && entry.getPhoneNumber() == key
                                 && entry.getDisplayName() == made.getDisplayName() && entry.duration == made.duration
                                 && entry.callType == made.callType && id % kFavourites == number,
                             u"an entry of %1 is not whole: %2"_s.arg(key).arg(id));
            m_campaign.check(!ids.contains(id), u"a call of %1 is logged twice: %2"_s.arg(key).arg(id));
            ids.insert(id);
        });
        const int oldest = ids.isEmpty() ? 0 : *std::ranges::min_element(ids);
        for (const int id : std::as_const(m_seen[size_t(number)])) {
            m_campaign.check(ids.contains(id) || (ids.size() == kSlots && id < oldest),
                             u"an entry of %1 is lost: %2"_s.arg(key).arg(id));
        }
        m_seen[size_t(number)] = ids;
    }

    Campaign& m_campaign;
    std::array<QSet<int>, kFavourites> m_seen;
};

bool announceFavourite(const QString& old, const QString& number)
{
    return zyn::sendMessage(zyn::kModifyFavourite, {old, number, u"somebody"_s, QString(), 0});
}

bool isFavourite(const QString& number)
{
    const QByteArray image = contentsOf(kStorePath + u'/' + QLatin1String(zyn::kTopPalsDetailsName));
    return image.contains(zyn::favouriteKey(number).toLatin1());
}

bool hasOnly(const QSet<QString>& known)
{
    return std::ranges::all_of(namesIn(kStorePath), [&](const QString& name) { return known.contains(name); });
}

void killFavouritesOwner(Campaign& campaign, Course& course)
{
    Process service;
    Process owner;
    Killer killer;
    const QString program = campaign.program("zyn-favourites");
    campaign.check(service.start(campaign.program("zyn-recentcalld")), u"the recent-call service starts"_s);
    campaign.check(owner.start(program), u"the owner of the favourites starts"_s);
    for (int number = 0; number < kFavourites; ++number) {
        announceFavourite({}, favourite(number));
        campaign.check(comesTrue([&] { return isFavourite(favourite(number)); }), u"a favourite is registered"_s);
    }
    FavouritesWatch watch(campaign);
    QSet<QString> known{u"rc_a"_s,
                        u"rc_d"_s,
                        u"rc_m"_s,
                        QLatin1String(zyn::kTopPalsDetailsName),
                        QLatin1String(zyn::kSeenCallsName),
                        QLatin1String(zyn::kActivityLogLockName),
                        zyn::favouriteKey(kOtherFavourite)};
    for (int number = 0; number < kFavourites; ++number)
        known.insert(zyn::favouriteKey(favourite(number)));
    int next = 0;
    int listed = 0;
    const qint64 kills = campaign.length(500, 7);
    for (qint64 i = 0; i < kills; ++i) {
        if (listed >= kCallsAtATime && campaign.check(clearCalls(), u"the calls are cleared"_s))
            listed = 0;
        // It begins 100 ms after it has heard of a call, or as soon as it has started.
        const bool isAtWork = campaign.random().bounded(3) == 0;
        if (isAtWork)
            killer.aim(owner, microseconds(95'000) + course.delay(15'000));
        for (int calls = campaign.random().bounded(1, 5); calls > 0; --calls, ++next, ++listed) {
            Call call = callOfFavourite(next);
            campaign.operate();
            campaign.check(PHONE_RecentCall_AddRecord(call) == 0, u"a call is added"_s);
        }
        if (campaign.random().bounded(2) == 0) {
            const QString last = favourite(kFavourites - 1);
            campaign.operate();
            if (isFavourite(last))
                announceFavourite(last, kOtherFavourite);
            else
                announceFavourite(isFavourite(kOtherFavourite) ? kOtherFavourite : QString(), last);
        }
        if (!isAtWork) {
            owner.kill();
            campaign.check(owner.start(program), u"the owner of the favourites starts"_s);
            killer.aim(owner, course.delay(4000));
        }
        while (!killer.hasStruck())
            pauseFor(microseconds(500));
        course.noteKill(owner.waitKilled(), u"the owner of the favourites"_s);
        watch.check();
        campaign.check(owner.start(program), u"the owner of the favourites starts"_s);
        const auto calls = listCalls();
        if (campaign.check(calls.has_value(), u"the recent-call service answers"_s)) {
            campaign.check(comesTrue([&] { return watch.hasAll(*calls); }), u"a listed call of a favourite is lost"_s);
            // The last step of what it does at its start.
            campaign.check(comesTrue([&] { return hasOnly(known); }),
                           u"in the store: "_s + namesIn(kStorePath).join(u' '));
        }
        watch.check();
    }
    campaign.check(owner.stop(), u"the owner of the favourites ends"_s);
    campaign.check(service.stop(), u"the recent-call service ends"_s);
    QDir(kStorePath).removeRecursively();
}

// The phone server.

/// A connection to the server's control socket.
class Network
{
public:
    Network()
        : m_socket(zyn::posix::connectUnix(zyn::phonecontrol::kSocketPath, zyn::kCommandTimeout))
    {}

    /// Whether the server says that it has happened.
    bool say(const QStringList& words)
    {
        return ask(zyn::phonecontrol::Say, words.join(QChar(u'\0')).toUtf8() + '\0') == zyn::phonecontrol::Done;
    }
    bool isAnswered() { return ask(zyn::phonecontrol::ListCalls, {}) == zyn::phonecontrol::Calls; }

private:
    int ask(int command, const QByteArray& data)
    {
        if (!zyn::sendCommand(m_socket.get(), command, std::as_bytes(std::span(data.data(), size_t(data.size())))))
            return -1;
        const std::unique_ptr<UTIL_CommandBody> answer(Socket_ReadCommand(m_socket.get()));
        return answer ? answer->commandId : -1;
    }

    zyn::posix::UniqueFd m_socket;
};

void killPhoneServer(Campaign& campaign, Course& course)
{
    constexpr int kLongestLife = 5000; // microseconds
    CallLedger ledger(CallLedger::Key::Number);
    Process service;
    Process phone;
    Killer killer;
    campaign.check(service.start(campaign.program("zyn-recentcalld")), u"the recent-call service starts"_s);
    campaign.check(phone.start(campaign.program("zyn-phoned")), u"the phone server starts"_s);
    int begun = 0;
    qint64 interrupted = 0;
    const qint64 kills = campaign.length(500, 7);
    for (qint64 i = 0; i < kills; ++i) {
        if (begun >= kCallsAtATime) {
            campaign.check(ledger.removeAll(clearCalls), u"the calls are cleared"_s);
            begun = 0;
        }
        Network network;
        killer.aim(phone, course.delay(kLongestLife));
        while (!killer.hasStruck()) {
            if (begun >= kCallsAtATime) {
                network.isAnswered();
                continue;
            }
            const int id = ledger.begin();
            ++begun;
            campaign.operate();
            const bool isMissed = id % 2 == 0;
            const bool isSaid = network.say({u"incoming"_s, CallLedger::number(id), CallLedger::name(id)})
                                && (isMissed || network.say({u"answer"_s}))
                                && network.say({isMissed ? u"missed"_s : u"hangup"_s});
            if (isSaid)
                ledger.set(id, CallLedger::Kept);
            else
                ++interrupted;
            campaign.check(isSaid || killer.hasStruck(), u"the phone server refuses a call"_s);
        }
        course.noteKill(phone.waitKilled(), u"the phone server"_s);
        const auto calls = listCalls();
        if (campaign.check(calls.has_value(), u"the recent-call service answers"_s))
            ledger.check(campaign, *calls, u"list"_s);
        campaign.check(phone.start(campaign.program("zyn-phoned")), u"the phone server starts"_s);
        campaign.check(Network().isAnswered(), u"the phone server answers"_s);
        const QStringList names = namesIn(QLatin1String(zyn::voicecall::kSocketDirectory));
        campaign.check(names
                           == QStringList({u"phone_control"_s, u"phone_control.lock"_s, u"voicecall_interface"_s,
                                           u"voicecall_interface.lock"_s}),
                       u"beside the sockets: "_s + names.join(u' '));
    }
    campaign.check(phone.stop(), u"the phone server ends"_s);
    campaign.check(service.stop(), u"the recent-call service ends"_s);
    campaign.measure(u"phoned kills in a call"_s, interrupted);
    QDir(kStorePath).removeRecursively();
}

// Applications that write.

/// What two writers of settings say, each of its own key.
struct SettingsProgress
{
    std::atomic<int> begun[2];
    std::atomic<int> done[2];
};

/// A text that says which it is, and is long now and then.
QString textOf(int number)
{
    return u"%1:"_s.arg(number) + QString(number * 37 % 2000, QChar(u'a' + number % 26));
}

int numberIn(const QString& text)
{
    const int number = text.section(u':', 0, 0).toInt();
    return text == textOf(number) ? number : -1;
}

const QString kSettings = u"/tmp/faults-settings/zyn_app9.cfg"_s;
const std::array kKeys{u"first"_s, u"second"_s};

void writeForEver(SettingsProgress& progress, size_t which)
{
    SETUP_SET_Manager settings(kSettings, false);
    for (int number = progress.done[which] + 1;; ++number) {
        progress.begun[which] = number;
        if (settings.setSettingInfo(u"group"_s, kKeys[which], textOf(number)))
            progress.done[which] = number;
    }
}

QString setting(const QString& key)
{
    QString text;
    SETUP_SET_Manager(kSettings, false).getSettingInfo(u"group"_s, key, text, QString());
    return text;
}

void killSettingsWriter(Campaign& campaign, Course& course)
{
    QDir().mkpath(QFileInfo(kSettings).path());
    const Shared<SettingsProgress> shared;
    SettingsProgress& progress = *shared.operator->();
    SETUP_SET_Manager(kSettings, false).setSettingInfo(u"group"_s, u"kept"_s, u"as it was"_s);
    Process victim;
    Process other;
    other.fork([&] { writeForEver(progress, 1); });
    const qint64 kills = campaign.length(4000, 7);
    for (qint64 i = 0; i < kills; ++i) {
        victim.fork([&] { writeForEver(progress, 0); });
        const pid_t id = victim.id();
        pauseFor(course.delay(3000));
        course.noteKill(victim.kill(), u"a writer of settings"_s);
        const int otherDone = progress.done[1];
        const int number = numberIn(setting(kKeys[0]));
        if (progress.done[0] > 0 || number != -1) {
            campaign.check(number == progress.done[0] || number == progress.begun[0],
                           u"a setting is %1, after %2 was stored and %3 begun"_s.arg(number)
                               .arg(progress.done[0].load())
                               .arg(progress.begun[0].load()));
            progress.done[0] = number;
        }
        campaign.check(setting(u"kept"_s) == u"as it was", u"a setting that nobody changed has changed"_s);
        campaign.check(otherDone == 0 || numberIn(setting(kKeys[1])) >= otherDone, u"a stored setting is lost"_s);
        campaign.check(comesTrue([&] { return progress.done[1] >= otherDone + 2; }), u"the other writer goes on"_s);
        const QString left = QFileInfo(kSettings).fileName() + QLatin1String(zyn::posix::kStagedInfix);
        const QStringList names = namesIn(QFileInfo(kSettings).path());
        campaign.check(!names.contains(left + QString::number(id)) && names.size() <= 3,
                       u"beside the settings: "_s + names.join(u' '));
    }
    other.kill();
    campaign.operate(progress.begun[0] + progress.begun[1]);
    QDir(QFileInfo(kSettings).path()).removeRecursively();
}

/// Adds calls to the store, and removes the oldest, as its only user.
void addToStoreForEver(CallLedger& ledger, quint32 seed)
{
    auto& store = *RecentCall_ENG_RecordStore::instance();
    QRandomGenerator random(seed);
    QSortedList<Call> calls;
    calls.setAutoDelete(true);
    for (const RC_CALL_CATEGORY_T list : zyn::kRecordLists)
        store.readDataList(calls, list);
    for (;;) {
        if (calls.count() < kCallsAtATime && random.bounded(4) != 0) {
            const int id = ledger.begin();
            auto call = std::make_unique<Call>(CallLedger::call(id));
            if (store.addItem(*call)) {
                ledger.set(id, CallLedger::Kept);
                calls.append(call.release());
            }
        } else if (!calls.isEmpty()) {
            const Call call = *calls.first();
            const int id = ledger.idOf(call);
            ledger.set(id, CallLedger::Maybe);
            if (store.removeItem(call))
                ledger.set(id, CallLedger::Gone);
            calls.removeFirst();
        }
    }
}

void killStoreWriter(Campaign& campaign, Course& course)
{
    CallLedger ledger;
    Process writer;
    const qint64 kills = campaign.length(4000, 7);
    for (qint64 i = 0; i < kills; ++i) {
        if (campaign.random().bounded(8) == 0) { // the next one makes the files
            ledger.removeFiles();
            QDir(kStorePath).removeRecursively();
        }
        writer.fork([&, seed = campaign.random().generate()] { addToStoreForEver(ledger, seed); });
        pauseFor(course.delay(3000));
        course.noteKill(writer.kill(), u"a writer of calls"_s);
        ledger.check(campaign, callsOnDisk(campaign, kStorePath, true), u"file"_s);
        ledger.forgetUnderWay();
        const QStringList left = namesIn(kStorePath).filter(QLatin1String(zyn::posix::kStagedInfix));
        campaign.check(left.size() <= 1, u"in the store: "_s + left.join(u' '));
    }
    // The next user of the store finds it, and leaves nothing else.
    writer.fork([] { RecentCall_ENG_RecordStore::instance(); });
    campaign.check(writer.finish(), u"the store is opened"_s);
    ledger.check(campaign, callsOnDisk(campaign, kStorePath), u"file"_s);
    campaign.check(namesIn(kStorePath) == QStringList({u"rc_a"_s, u"rc_d"_s, u"rc_m"_s}),
                   u"in the store: "_s + namesIn(kStorePath).join(u' '));
    const QByteArray faults = storeFaults(campaign);
    campaign.check(faults.isEmpty(), QString::fromLocal8Bit(faults));
    campaign.operate(ledger.count());
    QDir(kStorePath).removeRecursively();
}

} // namespace

void kills(Campaign& campaign)
{
    Course course(campaign);
    killRecentCallService(campaign, course);
    QDir(kStorePath).removeRecursively();
    killFavouritesOwner(campaign, course);
    killPhoneServer(campaign, course);
    killSettingsWriter(campaign, course);
    killStoreWriter(campaign, course);
}

} // namespace faults
