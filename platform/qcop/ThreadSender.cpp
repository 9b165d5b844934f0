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
struct Thread
{
    ChannelSender* sender;
    unsigned generation; ///< of the process that made the sender
    bool isEnding;
    Clock::duration waited;
};
thread_local Thread t_thread = {};

/// Waits for the listeners of the calling thread, for as long as it has not yet waited.
void drainThisThread()
{
    if (!t_thread.sender || t_thread.generation != posix::forkGeneration())
        return;
    const auto start = Clock::now();
    t_thread.sender->drain(kDrainTime - t_thread.waited);
    t_thread.waited += Clock::now() - start;
}

/// Ends what needs the thread's event loop.
void endLoop()
{
    drainThisThread();
    if (t_thread.sender)
        t_thread.sender->leaveLoop();
}

/// Is destroyed with the thread's other objects, or when the process ends.
struct ThreadEnd
{
    ThreadEnd() = default;
    ThreadEnd(const ThreadEnd&) = delete;
    ThreadEnd& operator=(const ThreadEnd&) = delete;
    ~ThreadEnd()
    {
        endLoop();
        t_thread.isEnding = true;
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
        t_thread.isEnding = true;
    }

    void follow(ChannelSender* sender) const { ::pthread_setspecific(m_key, sender); }

private:
    static void end(ChannelSender* sender)
    {
        drainThisThread();
        t_thread.sender = nullptr;
        delete sender;
    }

    pthread_key_t m_key = {};
};
const SenderEnd theSenderEnd;

ChannelSender& threadSender()
{
    // What a forked child finds gathered is its parent's to write.
    if (t_thread.sender && t_thread.generation != posix::forkGeneration())
        delete std::exchange(t_thread.sender, nullptr);
    if (t_thread.sender)
        return *t_thread.sender;
    t_thread.sender = new ChannelSender;
    t_thread.generation = posix::forkGeneration();
    theSenderEnd.follow(t_thread.sender);
    if (t_thread.isEnding) {
        t_thread.sender->leaveLoop();
        return *t_thread.sender;
    }
    static thread_local const ThreadEnd t_end;
    // Who waits for a QThread does not wait for its thread_local objects.
    QObject::connect(QThread::currentThread(), &QThread::finished, t_thread.sender->loop(), &endLoop,
                     Qt::DirectConnection);
    return *t_thread.sender;
}

} // namespace

bool ChannelSender::sendFromThisThread(const QByteArray& channel, const ChannelFrame& frame)
{
    const bool isAccepted = threadSender().send(channel, frame);
    if (t_thread.isEnding)
        drainThisThread(); // nobody may come to do so later
    return isAccepted;
}

} // namespace zyn
