// The senders and listeners of the campaign `messages`, each in a process of its own.
#include "tests/faults/MessageBoard.h"

#include "platform/QCopChannel.h"
#include "tests/support/Process.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QRandomGenerator>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <cstring>
#include <functional>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace faults::channels {
namespace {

/// How many messages at most are sent in one turn of an event loop.
constexpr int kBurst = 64;
constexpr std::chrono::milliseconds kPause{1};

/// What a payload begins with.
struct Place
{
    quint32 sender;
    quint32 channel;
    quint32 number;
};

/// Spreads the bits of a message's place, so that its size and its bytes are its own.
quint32 mixed(const Place& place)
{
    return (place.sender * 2'654'435'761U) ^ (place.channel * 40'503U) ^ (place.number * 2'246'822'519U);
}

/// Notes a range, unless there are so many that the campaign is lost anyway.
template<size_t Size>
void note(std::array<Range, Size>& ranges, Number& count, const Range& range)
{
    if (count >= Size)
        qFatal("more losses than can be noted");
    ranges[count] = range;
    ++count;
}

class Sender
{
public:
    /// TRAFFIC... NUMBER SEED TOTAL
    explicit Sender(const QStringList& arguments)
        : m_traffic(arguments)
        , m_number(arguments[3].toUInt())
        , m_random(arguments[4].toUInt())
        , m_total(arguments[5].toUInt())
        , m_board(m_traffic.board())
        , m_refusals(m_traffic.refusals(int(m_number)))
    {}

    bool isDone() const { return m_count >= m_total; }
    bool isAllowed() const { return m_count < m_board->allowed; }

    void sendOne()
    {
        const quint32 left = m_total - m_count;
        const auto channels = quint32(m_traffic.channels);
        const quint32 rounds = kLastRounds * channels;
        const quint32 channel = left > rounds ? m_random.bounded(channels) : (rounds - left) % channels;
        Board::Sent& sent = m_board->sent[m_number][channel];
        const quint32 number = sent.begun++;
        if (!QCopChannel::send(m_traffic.channel(channel), "m", m_traffic.payload(m_number, channel, number)))
            note(m_refusals->ranges, m_refusals->count, {m_number, channel, number, number + 1});
        ++sent.done;
        m_board->counts[m_number] = ++m_count;
    }

    /// Sends from an event loop, many in a turn.
    void sendFromLoop()
    {
        for (int left = m_random.bounded(1, kBurst + 1); left > 0 && isAllowed() && !isDone(); --left)
            sendOne();
        if (!isDone())
            QTimer::singleShot(isAllowed() ? 0ms : kPause, [this] { sendFromLoop(); });
    }

    /// Sends without a loop: what waits for a listener then follows with later messages only.
    void sendAtOnce()
    {
        while (!isDone())
            isAllowed() ? sendOne() : std::this_thread::sleep_for(kPause);
    }

private:
    const Traffic m_traffic;
    const quint32 m_number;
    QRandomGenerator m_random;
    const quint32 m_total;
    quint32 m_count = 0;
    const Shared<Board> m_board;
    const Shared<Refusals> m_refusals;
};

class Listener : public QCopChannel
{
public:
    Listener(const Traffic& traffic, quint32 channel, Journal* journal)
        : QCopChannel(traffic.channel(channel))
        , m_traffic(traffic)
        , m_channel(channel)
        , m_journal(*journal)
    {}

    void receive(const QCString& message, const QByteArray& data) override
    {
        Place place = {};
        if (data.size() >= qsizetype(sizeof place))
            std::memcpy(&place, data.constData(), sizeof place);
        Journal::Heard& heard = m_journal.heard[place.sender % kSenders][m_channel];
        const bool isWhole = message == "m" && place.channel == m_channel && place.sender < kSenders
                             && data == m_traffic.payload(place.sender, place.channel, place.number);
        if (!isWhole || place.number < heard.next) {
            ++heard.wrong;
            return;
        }
        if (heard.next == 0)
            heard.first = place.number;
        else if (place.number > heard.next)
            note(m_journal.gaps, m_journal.gapCount, {place.sender, m_channel, heard.next, place.number});
        heard.next = place.number + 1;
    }

private:
    const Traffic& m_traffic;
    const quint32 m_channel;
    Journal& m_journal;
};

/// Calls @p onLine for each piece that comes on standard input, and @p onEnd at its end.
class Input
{
public:
    Input(std::function<void()> onLine, std::function<void()> onEnd)
        : m_notifier(STDIN_FILENO, QSocketNotifier::Read)
    {
        QObject::connect(&m_notifier, &QSocketNotifier::activated,
                         [this, onLine = std::move(onLine), onEnd = std::move(onEnd)] {
                             std::array<char, 64> bytes;
                             const bool isLine = ::read(STDIN_FILENO, bytes.data(), bytes.size()) > 0;
                             m_notifier.setEnabled(isLine);
                             isLine ? onLine() : onEnd();
                         });
    }

private:
    QSocketNotifier m_notifier;
};

} // namespace

QByteArray Traffic::payload(quint32 sender, quint32 channel, quint32 number) const
{
    const Place place = {sender, channel, number};
    const quint32 mix = mixed(place);
    QByteArray data(qsizetype(sizeof place + mix % largest), char(mix >> 24U));
    std::memcpy(data.data(), &place, sizeof place);
    return data;
}

int sendRole(const QStringList& arguments)
{
    Sender sender(arguments);
    if (const rlim_t descriptors = arguments[7].toUInt(); descriptors > 0) {
        const rlimit low = {descriptors, descriptors};
        ::setrlimit(RLIMIT_NOFILE, &low);
    }
    role::sayReady();
    const Input input([] {}, [] { QCoreApplication::exit(); });
    if (arguments[6] == u"loop")
        QTimer::singleShot(0, [&] { sender.sendFromLoop(); });
    else
        sender.sendAtOnce();
    return QCoreApplication::exec();
}

int listenRole(const QStringList& arguments)
{
    const Traffic traffic(arguments);
    const Shared<Board> board(traffic.board());
    const Shared<Journal> journal(arguments[3]);
    std::vector<std::unique_ptr<Listener>> listeners;
    std::vector<quint32> channels;
    for (const QString& number : arguments[4].split(u','))
        channels.push_back(number.toUInt());
    const auto forAll = [&](quint32 channel, auto&& action) {
        for (quint32 sender = 0; sender < kSenders; ++sender)
            board->isKilled[sender] ? void() : action(journal->heard[sender][channel], board->sent[sender][channel]);
    };
    for (const quint32 channel : channels) {
        forAll(channel, [](auto& heard, const auto& sent) { heard.sentBefore = sent.done; });
        listeners.push_back(std::make_unique<Listener>(traffic, channel, journal.get()));
        forAll(channel, [](auto& heard, const auto& sent) { heard.begunBefore = sent.begun; });
    }
    role::sayReady();

    QTimer leaving;
    QDeadlineTimer deadline;
    leaving.callOnTimeout([&] {
        bool hasAll = true;
        for (const quint32 channel : channels)
            forAll(channel, [&](const auto& heard, const auto&) { hasAll = hasAll && heard.next >= heard.leftAt; });
        if (hasAll || deadline.hasExpired())
            QCoreApplication::exit();
    });
    const auto leave = [&] {
        for (const quint32 channel : channels)
            forAll(channel, [](auto& heard, const auto& sent) {
                const quint32 done = sent.done;
                heard.leftAt = done > heard.begunBefore ? done : 0;
            });
        deadline.setRemainingTime(role::kTimeout / 2);
        leaving.start(kPause);
    };
    const Input input(leave, [] { QCoreApplication::exit(); });
    return QCoreApplication::exec();
}

} // namespace faults::channels
