// The sender of the calling thread: when it is made, and how it ends.
#include "platform/posix/ForkLocalFd_p.h"
#include "platform/qcop/ChannelSender_p.h"

#include <QtCore/QThread>

#include <chrono>
#include <utility>

#include <pthread.h>

namespace zyn {
namespace {

using Clock = std::chrono::steady_clock;

/// How long a thread or process waits in all at its end for listeners that have not received everything.
constexpr std::chrono::seconds kDrainTime{2};

/**
 * The state of one thread. It has no destructor, so that it outlives every object that has one: those of the thread,
 * and in the thread that ends the process the static ones, may still send, and no message may overtake those sent
 * before.
 */
struct SenderOfThread
{
    ChannelSender* sender;
    unsigned generation; ///< of the process that made the sender
    bool isEnding;
    Clock::duration waited;
};
thread_local SenderOfThread t_sender = {};

/// Waits for the listeners of the calling thread, for as long as it has not yet waited.
void drainThisThread()
{
    if (!t_sender.sender || t_sender.generation != posix::forkGeneration())
        return;
    const auto start = Clock::now();
    t_sender.sender->drain(kDrainTime - t_sender.waited);
    t_sender.waited += Clock::now() - start;
}

/// Ends what needs the thread's event loop.
void endLoop()
{
    drainThisThread();
    if (t_sender.sender)
        t_sender.sender->leaveLoop();
}

/// Is destroyed with the thread's other objects, or when the process ends.
struct ThreadSenderEnd
{
    ThreadSenderEnd() = default;
    ThreadSenderEnd(const ThreadSenderEnd&) = delete;
    ThreadSenderEnd& operator=(const ThreadSenderEnd&) = delete;
    ~ThreadSenderEnd()
    {
        endLoop();
        t_sender.isEnding = true;
    }
};

/// A sender ends after all the objects of its thread, and never in the thread that ends the process.
class SenderEnd
{
public:
    SenderEnd()
    {
        ::pthread_key_create(&m_key, [](void* sender) { end(static_cast<ChannelSender*>(sender)); });
    }
    SenderEnd(const SenderEnd&) = delete;
    SenderEnd& operator=(const SenderEnd&) = delete;
    /// Comes after the static objects of those who use the library. The key stays: threads may go on.
    ~SenderEnd()
    {
        drainThisThread();
        t_sender.isEnding = true;
    }

    void follow(ChannelSender* sender) const { ::pthread_setspecific(m_key, sender); }

private:
    static void end(ChannelSender* sender)
    {
        drainThisThread();
        t_sender.sender = nullptr;
        delete sender;
    }

    pthread_key_t m_key = {};
};
const SenderEnd theSenderEnd;

ChannelSender& threadSender()
{
    // What a forked child finds gathered is its parent's to write.
    if (t_sender.sender && t_sender.generation != posix::forkGeneration())
        delete std::exchange(t_sender.sender, nullptr);
    if (t_sender.sender)
        return *t_sender.sender;
    t_sender.sender = new ChannelSender;
    t_sender.generation = posix::forkGeneration();
    theSenderEnd.follow(t_sender.sender);
    if (t_sender.isEnding) {
        t_sender.sender->leaveLoop();
        return *t_sender.sender;
    }
    static thread_local const ThreadSenderEnd t_end;
    // Who waits for a QThread does not wait for its thread_local objects.
    QObject::connect(QThread::currentThread(), &QThread::finished, t_sender.sender->loop(), &endLoop,
                     Qt::DirectConnection);
    return *t_sender.sender;
}

} // namespace

bool ChannelSender::sendFromThisThread(const QByteArray& channel, const ChannelFrame& frame)
{
    const bool isAccepted = threadSender().send(channel, frame);
    if (t_sender.isEnding)
        drainThisThread(); // nobody may come to do so later
    return isAccepted;
}

} // namespace zyn
