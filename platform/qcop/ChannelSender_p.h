// What a thread sends on channels.
#pragma once

#include "platform/posix/DirectoryWatch_p.h"
#include "platform/qcop/ChannelDirectory_p.h"
#include "platform/qcop/ChannelPeers_p.h"

#include <chrono>
#include <list>
#include <memory>
#include <unordered_map>
#include <utility>

namespace zyn {

class SenderLoop;

/**
 * Sends the messages of one thread, each thread having a sender of its own, so that none waits for another.
 *
 * In a running event loop of a dispatcher that tells the end of every turn, what follows the first messages of a turn
 * on a channel is gathered and written at the turn's end. What listeners do not take at once follows from the loop, or,
 * without one, with later messages on any channel, and at the latest when the thread or the process ends, for which it
 * waits for a bounded time.
 *
 * A thread may use any number of channels. Beyond what is reasonable to keep open, those that were not used for longest
 * are given up whose listeners have received all.
 */
class ChannelSender
{
public:
    ChannelSender();
    ChannelSender(const ChannelSender&) = delete;
    ChannelSender& operator=(const ChannelSender&) = delete;
    ~ChannelSender();

    /// Sends to the listeners of @p channel, as QCopChannel::send does.
    bool send(const QCString& channel, const ChannelFrame& frame);
    /// Waits until listeners have taken all that is pending, at most for @p time. Needs nothing of Qt, which
    /// may be gone.
    void drain(std::chrono::nanoseconds time);

    /// The thread's event loop; null after leaveLoop().
    SenderLoop* loop() { return m_loop.get(); }
    /// Needs no event loop from now on: everything is written at once.
    void leaveLoop();

private:
    /// A channel's root and name.
    using Place = std::pair<QByteArray, QCString>;
    struct PlaceHash
    {
        size_t operator()(const Place& place) const { return qHash(place.second); }
    };
    struct Channel
    {
        Channel(ChannelSender& sender, std::list<Place>::iterator place);

        std::list<Place>::iterator recent;
        ChannelPeers peers;
    };

    void followEnvironment();
    Channel& channelAt(const Place& place);
    void makeRoom();
    void forgetOtherRoots();
    void flushFromLoop();
    void flushSome(size_t most);

    ChannelEnvironment m_environment;
    QByteArray m_root;
    quint64 m_rootMoment = 0; ///< of the watch, when the root was looked for
    posix::DirectoryWatch m_watch;
    ChannelConnections m_connections;
    std::unordered_map<Place, Channel, PlaceHash> m_channels;
    std::list<Place> m_recent; ///< the places of m_channels, the one last used at the end
    std::unique_ptr<SenderLoop> m_loop;
};

} // namespace zyn
