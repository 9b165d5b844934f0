// Ways to get a message from one process to several, of which our channels are one.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The bytes of every message's payload.
inline constexpr char kPayload[] = "fifteen bytes..";

/// What a frame of ours takes on the way, so that bare ones are as long.
inline constexpr size_t kFrameSize = 39;

/// The column of the peer that can do what one message from a fresh process does.
inline constexpr char kDbus[] = "libdbus";

/// What sender and listeners share: how many messages each listener is to hear, and when it heard the last of them.
struct Board
{
    static constexpr int kListeners = 64;

    std::atomic<int64_t> expected;
    std::atomic<int64_t> heardAt[kListeners];
};

/// A listener's count: it says so when it has heard all.
class Ear
{
public:
    Ear(Board& board, int index, int done)
        : m_board(board)
        , m_index(index)
        , m_done(done)
    {}
    void hear();
    int index() const { return m_index; }

private:
    Board& m_board;
    int m_index;
    int m_done; ///< where to say so
    int64_t m_heard = 0;
};

class Transport
{
public:
    Transport() = default;
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;
    virtual ~Transport() = default;

    /// Sends one message to all listeners.
    virtual void send() = 0;
    /// Ends a turn, in which messages may have been gathered.
    virtual void flush() {}
};

struct Kind
{
    const char* name;
    /// Listens, says that it is ready, and hears for ever.
    void (*listen)(Ear& ear);
    /// A sender, whose listeners are ready.
    std::unique_ptr<Transport> (*connect)(int listeners);
    bool needsBus = false;  ///< whether a message bus runs for it
    bool isSlow = false;    ///< whether fewer messages tell as much
    const char* shown = ""; ///< the column's name
};

/// The kinds that there are, or that are installed. Their sockets are in the directory that ZYN_QCOP_PATH names.
std::vector<Kind> ourTransports();
std::vector<Kind> peerTransports();

/// The names of all peers.
std::vector<const char*> peerNames();

/// The path of a socket in the directory of the measurement.
std::string socketPath(const std::string& name);

} // namespace bench
