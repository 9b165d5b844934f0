// Messages from several senders to listeners that come, go and stop reading: each comes once, in its sender's order.
#include "fuzz/Fuzz.h"

#include "platform/QCopChannel.h"
#include "platform/qcop/ChannelSender_p.h"

#include <QtCore/QCoreApplication>

#include <array>
#include <deque>
#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace zyn::fuzz {
namespace {

constexpr int kChannels = 2;
constexpr int kSenders = 3;

QByteArray channelName(int channel)
{
    return "/fuzz/" + QByteArray::number(channel);
}

/// A listener, and the messages that it still has to get from each sender.
class Listener : public QCopChannel
{
public:
    explicit Listener(int channel)
        : QCopChannel(channelName(channel))
        , m_channel(channel)
    {}

    int number() const { return m_channel; }
    void expect(int sender, const QByteArray& data) { m_expected.at(size_t(sender)).push_back(data); }
    bool hasAll() const
    {
        return std::ranges::all_of(m_expected, [](const auto& messages) { return messages.empty(); });
    }

    void receive(const QCString& message, const QByteArray& data) override
    {
        const int sender = message.toInt();
        auto& expected = m_expected.at(size_t(sender));
        require(!expected.empty() && expected.front() == data, "messages come once, in their sender's order");
        expected.pop_front();
    }

private:
    const int m_channel;
    std::array<std::deque<QByteArray>, kSenders> m_expected;
};

/// A listener whose thread reads nothing.
class StalledListener
{
public:
    explicit StalledListener(int channel)
    {
        std::promise<void> isThere;
        auto there = isThere.get_future();
        m_thread = std::thread([this, channel, &isThere] {
            const QCopChannel listener(channelName(channel));
            isThere.set_value();
            m_end.get_future().wait();
        });
        there.wait();
    }
    StalledListener(const StalledListener&) = delete;
    StalledListener& operator=(const StalledListener&) = delete;
    ~StalledListener()
    {
        m_end.set_value();
        m_thread.join();
    }

private:
    std::promise<void> m_end;
    std::thread m_thread;
};

class Conversation
{
public:
    Conversation()
    {
        for (auto& sender : m_senders)
            sender = std::make_unique<ChannelSender>();
    }

    void step(Input& input)
    {
        constexpr size_t kMostListeners = 8;
        switch (input.below(8)) {
        case 0:
            if (m_listeners.size() < kMostListeners)
                m_listeners.push_back(std::make_unique<Listener>(input.below(kChannels)));
            break;
        case 1:
            if (!m_listeners.empty())
                m_listeners.erase(m_listeners.begin() + input.below(int(m_listeners.size())));
            break;
        case 2:
            m_stalled = m_stalled ? nullptr : std::make_unique<StalledListener>(input.below(kChannels));
            break;
        case 3:
        case 4:
            QCoreApplication::processEvents();
            break;
        default:
            send(input);
        }
    }

    /// All listeners get what is still on its way.
    void finish()
    {
        constexpr int kMostTurns = 10'000;
        m_stalled = nullptr;
        for (int turn = 0; turn < kMostTurns; ++turn) {
            QCoreApplication::processEvents();
            if (std::ranges::all_of(m_listeners, [](const auto& listener) { return listener->hasAll(); }))
                return;
        }
        require(false, "each message comes");
    }

private:
    /// Few enough that a listener which reads nothing misses none, and large enough that some have to wait for it.
    void send(Input& input)
    {
        constexpr int kMostMessages = 500;
        constexpr qsizetype kSizeUnit = 64;
        const int sender = input.below(kSenders);
        const int channel = input.below(kChannels);
        const QByteArray name = QByteArray::number(sender);
        const QByteArray data = QByteArray::number(m_count) + QByteArray(input.byte() * kSizeUnit, 'x');
        if (m_count++ >= kMostMessages)
            return;
        require(m_senders.at(size_t(sender))->send(channelName(channel), ChannelFrame(name, data)),
                "a message can be sent");
        for (const auto& listener : m_listeners) {
            if (listener->number() == channel)
                listener->expect(sender, data);
        }
    }

    const Folder m_folder;
    std::array<std::unique_ptr<ChannelSender>, kSenders> m_senders;
    std::vector<std::unique_ptr<Listener>> m_listeners;
    std::unique_ptr<StalledListener> m_stalled;
    int m_count = 0;
};

void converse(Input& input)
{
    Conversation conversation;
    while (!input.isAtEnd())
        conversation.step(input);
    conversation.finish();
}

QList<QByteArray> conversationSeeds()
{
    const QByteArray listens = seed({0, 0});
    const auto send = [](char sender, char size) { return seed({7, sender, 0, size}); };
    return {
        listens + send(0, 1) + send(1, 2) + '\3' + listens + send(0, 3) + seed({1, 0}) + send(2, 100),
        seed({2, 0}) + listens + send(0, 100).repeated(40) + '\2' + '\0' + send(1, 1),
        listens + send(0, 1).repeated(20) + '\3' + send(0, 1).repeated(20),
    };
}

constexpr std::array kConversationTargets{
    Target{"channel_sequence", "messages of several senders to listeners that come, go and stop reading", converse,
           conversationSeeds},
};

} // namespace

std::span<const Target> conversationTargets()
{
    return kConversationTargets;
}

} // namespace zyn::fuzz
