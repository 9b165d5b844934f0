// Messages of several senders on many channels, whose listeners stop, die, come and leave: who stayed has heard each
// once, in order; who came late, from there on.
#include "tests/faults/Campaign.h"
#include "tests/faults/MessageBoard.h"
#include "tests/faults/ProcessStatus.h"
#include "tests/support/Process.h"

#include "platform/QCopChannel.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <numeric>
#include <set>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace faults {
namespace {

using channels::Board;
using channels::Journal;
using channels::kSenders;
using channels::Range;
using channels::Refusals;
using channels::Shared;
using channels::Traffic;

/// How long nothing may change before what is waited for is a loss.
constexpr std::chrono::milliseconds kStandstill = 60s;
constexpr auto kLook = 1ms;
/// The sender that is killed in the middle.
constexpr size_t kKilledSender = kSenders - 1;
/// The most descriptors of the sender that has few: it has to give up connections all the time.
constexpr int kFewDescriptors = 256;
/// What a process may take in memory beyond its own size, in KiB, while listeners stop now and then.
constexpr qint64 kUsualGrowth = qint64{48} * 1024;
/// What waits for one listener at most, in KiB, and what the kernel holds beside that.
constexpr qint64 kQueueLimit = qint64{16} * 1024;
constexpr qint64 kSocketBuffers = 1024;
/// The most that a sender takes for that, in KiB: on a busy machine as much waits for the listener that reads, a buffer
/// that grows is there twice for a moment, and so are a message and its frame.
constexpr qint64 kFullGrowth = 3 * kQueueLimit + 4 * qint64{1024};
/// How much is sent, in bytes, before the listener that reads is waited for, and for how long nothing comes when the
/// rest waits in a sender without a loop.
constexpr quint32 kStep = 4 * 1024 * 1024;
constexpr std::chrono::milliseconds kNothingComes{300};
/// Descriptors of a process that are not connections and may come after its start: a watch, an event loop's.
constexpr qint64 kOwnDescriptors = 6;

/// Waits until @p condition holds, for as long as @p moves changes; false when it stands still for so long.
template<typename Condition, typename Moves>
bool waitWhileMoving(const Condition& condition, const Moves& moves, std::chrono::milliseconds standstill = kStandstill)
{
    auto last = moves();
    QDeadlineTimer deadline(standstill);
    while (!condition()) {
        if (auto next = moves(); next != last) {
            last = next;
            deadline.setRemainingTime(standstill);
        } else if (deadline.hasExpired()) {
            return false;
        }
        std::this_thread::sleep_for(kLook);
    }
    return true;
}

/// Waits until the process says that it is ready; on a busy machine 200 listeners take their time.
bool waitReady(QProcess& process)
{
    QByteArray output;
    while (!output.contains("ready") && process.waitForReadyRead(int(kStandstill.count())))
        output += process.readAllStandardOutput();
    return output.contains("ready");
}

/// A process of the campaign: a sender or a listener.
class Peer
{
public:
    Peer(const QString& role, const QStringList& arguments)
        : m_process(role::start(role, arguments))
        , m_isReady(waitReady(*m_process))
        , m_memory(memoryOf(id(), "VmHWM"))
        , m_descriptors(descriptorsOf(id()))
    {}

    qint64 id() const { return m_process->processId(); }
    bool isReady() const { return m_isReady; }
    bool isStopped() const { return m_isStopped; }
    /// What it has grown by since its start.
    qint64 growth() const { return memoryOf(id(), "VmHWM") - m_memory; }
    qint64 newDescriptors() const { return descriptorsOf(id()) - m_descriptors; }

    void stop() { tell(SIGSTOP, true); }
    void resume() { tell(SIGCONT, false); }
    void kill()
    {
        tell(SIGKILL, false);
        m_process->waitForFinished(role::kTimeout);
    }
    void leave()
    {
        m_process->write("leave\n");
        m_process->waitForBytesWritten(role::kTimeout);
    }
    bool hasEnded() { return m_process->state() == QProcess::NotRunning || m_process->waitForFinished(0); }
    /// Ends it; whether it was well.
    bool end()
    {
        m_process->closeWriteChannel();
        return role::finish(*m_process) == EXIT_SUCCESS;
    }

private:
    void tell(int signal, bool isStopped)
    {
        if (id() > 0)
            ::kill(pid_t(id()), signal);
        m_isStopped = isStopped;
    }

    std::unique_ptr<QProcess> m_process;
    bool m_isReady;
    bool m_isStopped = false;
    qint64 m_memory;
    qint64 m_descriptors;
};

/// How a listener ends: with all messages, with those until it left, or anywhere.
enum class End { Stays, Leaves, Dies };

struct ListenerPeer
{
    ListenerPeer(const Traffic& traffic, int number, End howItEnds, const QList<int>& listensOn)
        : path(traffic.folder + u"/journal-%1"_s.arg(number))
        , journal(std::make_unique<Shared<Journal>>(path))
        , end(howItEnds)
        , numbers(listensOn)
        , process(u"messages-listen"_s, traffic.arguments() + QStringList{path, textOf(listensOn)})
    {}

    static QString textOf(const QList<int>& numbers)
    {
        QStringList texts;
        for (const int number : numbers)
            texts += QString::number(number);
        return texts.join(u',');
    }

    QString path;
    std::unique_ptr<Shared<Journal>> journal;
    End end;
    QList<int> numbers; ///< of its channels
    Peer process;
    bool isLeaving = false;
    int stoppedUntil = 0; ///< the step of the campaign that has it go on
};

/// Senders and listeners of one kind of traffic, and what must hold of them.
class Conversation
{
public:
    Conversation(Campaign& campaign, Traffic traffic)
        : m_campaign(campaign)
        , m_traffic(std::move(traffic))
        , m_board(m_traffic.board())
    {}

    Board& board() { return *m_board.get(); }
    std::vector<std::unique_ptr<ListenerPeer>>& listeners() { return m_listeners; }
    qint64 heard() const { return m_heard; }

    void addSender(quint32 total, const QString& how, int descriptors = 0)
    {
        const auto number = m_senders.size();
        m_refusals.push_back(std::make_unique<Shared<Refusals>>(m_traffic.refusals(int(number))));
        m_senders.push_back(std::make_unique<Peer>(
            u"messages-send"_s, m_traffic.arguments()
                                    + QStringList{QString::number(number), QString::number(m_campaign.random()()),
                                                  QString::number(total), how, QString::number(descriptors)}));
        m_campaign.check(m_senders.back()->isReady(), u"sender %1 starts"_s.arg(number));
    }
    ListenerPeer& addListener(End end, const QList<int>& numbers)
    {
        m_listeners.push_back(std::make_unique<ListenerPeer>(m_traffic, m_nextListener++, end, numbers));
        m_campaign.check(m_listeners.back()->process.isReady(), u"a listener starts"_s);
        return *m_listeners.back();
    }
    QList<int> allChannels() const
    {
        QList<int> numbers(m_traffic.channels);
        std::iota(numbers.begin(), numbers.end(), 0);
        return numbers;
    }

    void killSender(size_t number)
    {
        m_senders[number]->kill();
        board().isKilled[number] = 1;
    }
    /// Has the senders send, and waits until each has sent @p count messages in all.
    bool sendUpTo(quint32 allowed, quint32 count)
    {
        board().allowed = allowed;
        const auto least = [&] {
            quint32 all = allowed;
            for (size_t sender = 0; sender < m_senders.size(); ++sender)
                all = board().isKilled[sender] ? all : std::min<quint32>(all, board().counts[sender]);
            return all;
        };
        return m_campaign.check(waitWhileMoving([&] { return least() >= count; }, least), u"the senders go on"_s);
    }
    std::vector<std::unique_ptr<Peer>>& senders() { return m_senders; }

    std::set<quint64> refused(size_t sender) const
    {
        std::set<quint64> all;
        const Refusals& refusals = *m_refusals[sender]->get();
        for (quint32 i = 0; i < refusals.count; ++i)
            all.insert(keyOf(refusals.ranges[i].channel, refusals.ranges[i].from));
        return all;
    }
    /// The messages that the listener has not got, of those that it should, from one sender.
    std::set<quint64> missed(const ListenerPeer& listener, size_t sender);
    /// Whether the listener has what has been sent, apart from what was refused at the end.
    bool waitUntilHeard(const ListenerPeer& listener);
    /// Ends the listener, if it has not ended, and checks what it has heard.
    void finish(ListenerPeer& listener);
    void endSenders();

private:
    static quint64 keyOf(quint32 channel, quint32 number) { return quint64(channel) << 32U | number; }
    void check(const ListenerPeer& listener);

    Campaign& m_campaign;
    const Traffic m_traffic;
    const Shared<Board> m_board;
    std::vector<std::unique_ptr<Shared<Refusals>>> m_refusals;
    std::vector<std::unique_ptr<Peer>> m_senders;
    std::vector<std::unique_ptr<ListenerPeer>> m_listeners;
    int m_nextListener = 0;
    qint64 m_heard = 0;
};

std::set<quint64> Conversation::missed(const ListenerPeer& listener, size_t sender)
{
    std::set<quint64> all;
    const auto add = [&](quint32 channel, quint32 from, quint32 to) {
        for (quint32 number = from; number < to; ++number)
            all.insert(keyOf(channel, number));
    };
    const Journal& journal = *listener.journal->get();
    for (quint32 i = 0; i < journal.gapCount; ++i) {
        if (const Range& gap = journal.gaps[i]; gap.sender == sender)
            add(gap.channel, gap.from, gap.to);
    }
    for (const int number : listener.numbers) {
        const auto channel = quint32(number);
        const Journal::Heard& heard = journal.heard[sender][channel];
        if (heard.next > 0)
            add(channel, heard.begunBefore, heard.first);
        const bool hasEnd = listener.end != End::Dies && !board().isKilled[sender];
        const quint32 end =
            listener.end == End::Leaves ? heard.leftAt.load() : board().sent[sender][channel].done.load();
        if (hasEnd)
            add(channel, std::max<quint32>(heard.next, heard.begunBefore), end);
    }
    return all;
}

bool Conversation::waitUntilHeard(const ListenerPeer& listener)
{
    const auto left = [&] {
        qint64 all = 0;
        for (size_t sender = 0; sender < m_senders.size(); ++sender) {
            const auto lost = missed(listener, sender);
            const std::set<quint64> refusals = refused(sender);
            all += std::ranges::count_if(lost, [&](quint64 key) { return !refusals.contains(key); });
        }
        return all;
    };
    return waitWhileMoving([&] { return left() == 0; }, left);
}

void Conversation::check(const ListenerPeer& listener)
{
    const char* const kinds[] = {"that stayed", "that left", "that died"};
    const QString who = u"a listener %1"_s.arg(QLatin1String(kinds[int(listener.end)]));
    const Journal& journal = *listener.journal->get();
    for (size_t sender = 0; sender < m_senders.size(); ++sender) {
        qint64 wrong = 0;
        qint64 early = 0;
        for (const int channel : listener.numbers) {
            const Journal::Heard& heard = journal.heard[sender][size_t(channel)];
            wrong += heard.wrong;
            early += heard.next > 0 && heard.first < heard.sentBefore;
            m_heard += heard.next > 0 ? heard.next - heard.first : 0;
        }
        m_campaign.check(
            wrong == 0,
            u"%1 got %2 messages of sender %3 twice, late, elsewhere or damaged"_s.arg(who).arg(wrong).arg(sender));
        m_campaign.check(
            early == 0,
            u"%1 got messages of sender %2 from before it listened, on %3 channels"_s.arg(who).arg(sender).arg(early));
        const std::set<quint64> refusals = refused(sender);
        const auto lost = missed(listener, sender);
        const auto untold = std::ranges::count_if(lost, [&](quint64 key) { return !refusals.contains(key); });
        m_heard -= qint64(lost.size());
        m_campaign.check(
            untold == 0,
            u"%1 missed %2 messages that sender %3 had sent with success"_s.arg(who).arg(untold).arg(sender));
    }
}

void Conversation::finish(ListenerPeer& listener)
{
    if (listener.end != End::Dies)
        m_campaign.check(listener.process.end(), u"a listener ends well"_s);
    check(listener);
    QFile::remove(listener.path);
}

void Conversation::endSenders()
{
    for (size_t sender = 0; sender < m_senders.size(); ++sender) {
        if (!board().isKilled[sender])
            m_campaign.check(m_senders[sender]->end(), u"sender %1 ends well"_s.arg(sender));
    }
}
/// The number of the memory that all processes share on the channels, and whether the system still has it.
QByteArray sharedMemory(const QString& root)
{
    const QString target = QFile::symLinkTarget(root + u"/.zyn-changes"_s);
    return target.section(u'/', -1).section(u'-', 0, 0).toLatin1();
}
bool isThere(const QByteArray& memory)
{
    QFile table(u"/proc/sysvipc/shm"_s);
    if (memory.isEmpty() || !table.open(QIODevice::ReadOnly))
        return false;
    const QByteArrayList rows = table.readAll().split('\n');
    return std::ranges::any_of(rows, [&](const auto& row) { return row.simplified().split(' ').value(1) == memory; });
}

/// What is left in the channels' directory when the last process has ended, once somebody else came and went.
QStringList leftOver(const QString& root)
{
    {
        const QCopChannel last("/faults/last");
    }
    const auto all = QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
    return QDir(root).entryList(all);
}

/// Breaks listeners, step by step, while the senders send.
class Turmoil
{
public:
    Turmoil(Campaign& campaign, Conversation& conversation, int channels)
        : m_campaign(campaign)
        , m_conversation(conversation)
        , m_channels(channels)
    {}

    void step(int number);
    /// Has everybody go on, and asks those to leave that do not stay. What waits for one in a sender without a loop
    /// comes with its next message.
    void calm();
    /// Waits for those who leave, and checks what they have heard.
    void seeOff();

private:
    using Listeners = std::vector<std::unique_ptr<ListenerPeer>>;

    Listeners& all() { return m_conversation.listeners(); }
    int below(int limit) { return int(m_campaign.random().bounded(limit)); }
    ListenerPeer* any(End end);
    void stopAny(int step);
    void killAny();
    void join();
    void leaveAny();
    void collect();
    void kill(ListenerPeer& listener);

    static constexpr int kLongestStop = 12;
    static constexpr int kMostPassing = 4;

    Campaign& m_campaign;
    Conversation& m_conversation;
    const int m_channels;
};

ListenerPeer* Turmoil::any(End end)
{
    std::vector<ListenerPeer*> found;
    for (const auto& listener : all()) {
        if (listener->end == end && !listener->isLeaving)
            found.push_back(listener.get());
    }
    return found.empty() ? nullptr : found[size_t(below(int(found.size())))];
}

void Turmoil::stopAny(int step)
{
    ListenerPeer& listener = *all()[size_t(below(int(all().size())))];
    if (listener.process.isStopped() || listener.isLeaving)
        return;
    listener.process.stop();
    listener.stoppedUntil = step + 1 + below(kLongestStop);
    m_campaign.breakThings();
}

void Turmoil::kill(ListenerPeer& listener)
{
    listener.process.kill();
    m_conversation.finish(listener);
    std::erase_if(all(), [&](const auto& other) { return other.get() == &listener; });
    m_campaign.breakThings();
}

/// Somebody dies, perhaps while stopped, and somebody else comes in his place.
void Turmoil::killAny()
{
    if (ListenerPeer* listener = any(End::Dies))
        kill(*listener);
    m_conversation.addListener(End::Dies, m_conversation.allChannels());
}

void Turmoil::join()
{
    const auto passing = std::ranges::count_if(all(), [](const auto& other) { return other->end == End::Leaves; });
    if (passing >= kMostPassing)
        return;
    QList<int> numbers = m_conversation.allChannels();
    std::shuffle(numbers.begin(), numbers.end(), m_campaign.random());
    m_conversation.addListener(End::Leaves, numbers.first(1 + below(m_channels)));
    m_campaign.breakThings();
}

void Turmoil::leaveAny()
{
    ListenerPeer* listener = any(End::Leaves);
    if (!listener || listener->process.isStopped())
        return;
    listener->process.leave();
    listener->isLeaving = true;
    m_campaign.breakThings();
}

/// Checks what those have heard that have left.
void Turmoil::collect()
{
    for (const auto& listener : all()) {
        if (listener->isLeaving && listener->process.hasEnded())
            m_conversation.finish(*listener);
    }
    std::erase_if(all(), [](const auto& listener) { return listener->isLeaving && listener->process.hasEnded(); });
}

void Turmoil::step(int number)
{
    for (const auto& listener : all()) {
        if (listener->process.isStopped() && number >= listener->stoppedUntil)
            listener->process.resume();
    }
    switch (below(8)) {
    case 0:
        killAny();
        break;
    case 1:
    case 2:
        join();
        break;
    case 3:
    case 4:
        leaveAny();
        break;
    default:
        stopAny(number);
    }
    collect();
}

void Turmoil::calm()
{
    for (const auto& listener : all())
        listener->process.resume();
    while (ListenerPeer* listener = any(End::Dies))
        kill(*listener);
    while (any(End::Leaves))
        leaveAny();
}

void Turmoil::seeOff()
{
    const auto leaving = [&] {
        return std::ranges::count_if(all(), [](const auto& one) { return one->isLeaving && !one->process.hasEnded(); });
    };
    m_campaign.check(waitWhileMoving([&] { return leaving() == 0; }, leaving), u"those who leave have gone"_s);
    collect();
}

/// When all is calm again, nobody has more than he needs for who is there.
void checkProcesses(Campaign& campaign, Conversation& conversation, int channels)
{
    qint64 refused = 0;
    const auto check = [&](const QString& who, const Peer& process, size_t peers, qint64& growth) {
        growth = std::max(growth, process.growth());
        campaign.check(process.growth() <= kUsualGrowth, u"a %1 grows by %2 KiB"_s.arg(who).arg(process.growth()));
        campaign.check(process.newDescriptors() <= qint64(peers) * channels + kOwnDescriptors,
                       u"a %1 has %2 more descriptors than at its start"_s.arg(who).arg(process.newDescriptors()));
    };
    qint64 senderGrowth = 0;
    qint64 listenerGrowth = 0;
    for (size_t sender = 0; sender < kSenders; ++sender) {
        campaign.operate(conversation.board().counts[sender]);
        refused += qint64(conversation.refused(sender).size());
        if (sender != kKilledSender)
            check(u"sender"_s, *conversation.senders()[sender], conversation.listeners().size(), senderGrowth);
    }
    for (const auto& listener : conversation.listeners())
        check(u"listener"_s, listener->process, kSenders - 1, listenerGrowth);
    campaign.measure(u"refused"_s, refused);
    campaign.measure(u"sender KiB"_s, senderGrowth);
    campaign.measure(u"listener KiB"_s, listenerGrowth);
}

/// Listeners that break, on many channels.
void breakListeners(Campaign& campaign, const QString& folder)
{
    const auto channels = int(campaign.length(channels::kMostChannels, 10));
    const auto total = quint32(campaign.length(125'000, 600));
    const auto steps = quint32(campaign.length(2'000, 40));
    constexpr int kStaying = 3;
    Conversation conversation(campaign, Traffic(folder, channels, 160));
    for (int i = 0; i < kStaying; ++i)
        conversation.addListener(End::Stays, conversation.allChannels());
    conversation.addListener(End::Dies, conversation.allChannels());
    for (int i = 0; i < kSenders; ++i)
        conversation.addSender(total, i % 2 ? u"loop"_s : u"plain"_s, i < 2 ? kFewDescriptors : 0);

    Turmoil turmoil(campaign, conversation, channels);
    const quint32 mixed = total - channels::kLastRounds * quint32(channels);
    for (quint32 step = 1; step <= steps; ++step) {
        const auto upTo = [&](quint32 s) { return quint32(quint64(mixed) * s / steps); };
        if (!conversation.sendUpTo(upTo(step), upTo(std::max(step, 2U) - 2)))
            return;
        if (step == steps / 2) {
            conversation.killSender(kKilledSender);
            campaign.breakThings();
        }
        turmoil.step(int(step));
        campaign.progress(step, steps);
    }
    // The first of the last rounds brings those who leave what waits for them, the next one finds that they have left.
    turmoil.calm();
    conversation.sendUpTo(total - quint32(channels), total - quint32(channels));
    turmoil.seeOff();
    conversation.sendUpTo(total, total);
    const QByteArray memory = sharedMemory(qEnvironmentVariable("ZYN_QCOP_PATH"));
    for (const auto& listener : conversation.listeners()) {
        campaign.check(conversation.waitUntilHeard(*listener),
                       u"a listener that stayed hears the last of each channel"_s);
    }
    checkProcesses(campaign, conversation, channels);
    for (const auto& listener : conversation.listeners())
        conversation.finish(*listener);
    conversation.endSenders();
    campaign.check(!memory.isEmpty() && !isThere(memory), u"the shared memory %1 is left"_s.arg(QLatin1String(memory)));
    campaign.measure(u"heard"_s, conversation.heard());
    // Nobody sends to this one, and finds it dead: whoever comes next has to clear up after it.
    conversation.addListener(End::Dies, conversation.allChannels()).process.kill();
    campaign.breakThings();
}

/// One of two listeners is stopped until no more may wait for it: what it misses is what send() has refused.
void fillQueue(Campaign& campaign, const QString& folder, quint32 largest, const QString& how)
{
    const quint32 total = quint32(2 * (kQueueLimit + kSocketBuffers) * 1024 / (largest / 2));
    const Traffic traffic(folder, 1, largest);
    Conversation conversation(campaign, traffic);
    ListenerPeer& stopped = conversation.addListener(End::Stays, {0});
    ListenerPeer& reading = conversation.addListener(End::Stays, {0});
    conversation.addSender(total, how);
    stopped.process.stop();
    campaign.breakThings();
    // On a busy machine the one that reads would not come to it before too much waits for it, too. Without a loop, what
    // waits follows with later messages only, and may still become too much: that is refused, then.
    const bool hasLoop = how == u"loop";
    const quint32 step = std::max<quint32>(kStep / (largest / 2), 1);
    for (quint32 sent = 0; sent < total - 1;) {
        sent = std::min(sent + step, total - 1);
        if (!conversation.sendUpTo(sent, sent))
            return;
        const auto heard = [&] { return reading.journal->get()->heard[0][0].next.load(); };
        waitWhileMoving([&] { return heard() >= sent; }, heard, hasLoop ? kStandstill : kNothingComes);
    }
    const std::set<quint64> refused = conversation.refused(0);
    campaign.check(!refused.empty(), u"send() says when no more may wait"_s);
    qint64 waiting = 0;
    qint64 untilRefused = 0;
    for (quint32 number = 0; number < total - 1; ++number) {
        if (!refused.contains(number))
            waiting += traffic.payload(0, 0, number).size();
        if (number < (refused.empty() ? total : *refused.begin()))
            untilRefused = waiting;
    }
    campaign.check(untilRefused / 1024 >= kQueueLimit - largest / 1024 - kSocketBuffers,
                   u"%1 KiB wait when the first message is refused"_s.arg(untilRefused / 1024));
    campaign.check(waiting / 1024 <= kQueueLimit + kSocketBuffers, u"%1 KiB wait at most"_s.arg(waiting / 1024));
    const qint64 growth = conversation.senders()[0]->growth();
    campaign.check(growth <= kFullGrowth, u"a sender whose queue is full grows by %1 KiB"_s.arg(growth));
    stopped.process.resume();
    conversation.sendUpTo(total, total);
    // The last one follows what waits, and may be too much for it, too.
    campaign.check(conversation.waitUntilHeard(reading), u"the listener beside the stopped one hears all"_s);
    campaign.check(conversation.waitUntilHeard(stopped), u"the stopped listener goes on"_s);
    campaign.check(conversation.missed(stopped, 0) == conversation.refused(0), u"exactly what was refused is missed"_s);
    campaign.check(!hasLoop || conversation.missed(reading, 0).empty(),
                   u"the listener beside the stopped one misses nothing"_s);
    conversation.finish(stopped);
    conversation.finish(reading);
    conversation.endSenders();
    campaign.operate(total);
    campaign.measure(u"full queue, sender KiB"_s, growth);
    campaign.measure(u"full queue, refused of %1"_s.arg(total), qint64(refused.size()));
}

} // namespace

void messages(Campaign& campaign)
{
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"channels"_s);
    qputenv("ZYN_QCOP_PATH", QFile::encodeName(root));
    const auto makeFolder = [&](const QString& name) {
        QDir(folder.path()).mkdir(name);
        return folder.filePath(name);
    };
    breakListeners(campaign, makeFolder(u"many"_s));
    const QList<quint32> sizes =
        campaign.length(1, 0) ? QList<quint32>{2'048, 65'536, 1'048'576} : QList<quint32>{65'536};
    for (const quint32 size : sizes) {
        for (const QString& how : {u"plain"_s, u"loop"_s})
            fillQueue(campaign, makeFolder(u"full-%1-%2"_s.arg(size).arg(how)), size, how);
    }
    const QStringList rest = leftOver(root);
    campaign.check(rest.isEmpty(), u"left over: %1"_s.arg(rest.join(u' ')));
    qunsetenv("ZYN_QCOP_PATH");
}

} // namespace faults
