// Messages from one process to listeners that are processes too.
#pragma once

#include "bench/Bench.h"
#include "bench/Child.h"
#include "bench/Transports.h"

#include <list>
#include <optional>

namespace bench {

/// What is sent, and how.
struct Traffic
{
    int listeners;
    bool isInLoop; ///< whether the sender sends from its event loop
    int burst = 1; ///< how many messages a turn sends
    int turns = 1; ///< how many turns, each when all listeners have heard the one before
};

struct Shared;

/// Processes that listen, and end with the object.
class Audience
{
public:
    /// Starts @p listeners of the kind with that name; their sockets are in @p directory.
    Audience(const QByteArray& directory, const std::string& kind, int listeners = 1);
    Audience(const Audience&) = delete;
    Audience& operator=(const Audience&) = delete;
    ~Audience();

    const Shared& shared() const { return *m_shared; }

    /// @{ What a single listener is to hear; waits for that, and gives the time of the last message.
    void expect(int messages) const;
    int64_t heard() const;
    /// @}

private:
    void startBus(const std::string& directory);

    std::unique_ptr<Shared> m_shared;
    std::optional<Child> m_bus;
    std::list<Child> m_listeners;
};

/// A job that measures until all listeners have heard: of one message, or of each of a burst.
Prepare exchange(const Kind& kind, const Traffic& traffic);

/// @{ The roles of its processes.
int listen(const std::vector<std::string>& words);
int sendInTurns(const std::vector<std::string>& words);
/// @}

} // namespace bench
