// The sender of the calling thread.
#include "platform/qcop/ThreadSender_p.h"

#include "platform/posix/ForkLocalFd_p.h"
#include "platform/qcop/ChannelSender_p.h"

#include <QtCore/QThread>

#include <memory>

namespace {

using zyn::ChannelSender;

/// How long a thread or process waits at its end for listeners that have not taken everything.
constexpr std::chrono::seconds kDrainTime{2};

/// Outlives the thread's sender, for what still sends from the destructor of a static object.
thread_local bool t_hasEnded = false;

class ThreadSender
{
public:
    ThreadSender() = default;
    ThreadSender(const ThreadSender&) = delete;
    ThreadSender& operator=(const ThreadSender&) = delete;
    ~ThreadSender()
    {
        t_hasEnded = true;
        end();
    }

    ChannelSender& get()
    {
        if (!m_sender || !isOwn()) {
            m_sender = std::make_unique<ChannelSender>();
            m_generation = zyn::posix::forkGeneration();
            // Who waits for a QThread does not wait for its thread_local objects.
            QObject::connect(
                QThread::currentThread(), &QThread::finished, m_sender.get(), [this] { end(); }, Qt::DirectConnection);
        }
        return *m_sender;
    }

private:
    void end()
    {
        if (m_sender && isOwn())
            m_sender->drain(kDrainTime);
        m_sender.reset();
    }
    /// Whether this process made the sender. What a forked child finds gathered is its parent's to write.
    bool isOwn() const { return m_generation == zyn::posix::forkGeneration(); }

    std::unique_ptr<ChannelSender> m_sender;
    unsigned m_generation = 0;
};

} // namespace

namespace zyn {

bool sendFromThisThread(const QCString& channel, const ChannelFrame& frame)
{
    if (t_hasEnded) {
        ChannelSender last;
        const bool isTaken = last.send(channel, frame);
        last.drain(kDrainTime);
        return isTaken;
    }
    static thread_local ThreadSender t_sender;
    return t_sender.get().send(channel, frame);
}

} // namespace zyn
