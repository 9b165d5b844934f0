// The services of the handset, as processes of a measurement.
#pragma once

#include "bench/Bench.h"
#include "bench/Child.h"

#include <optional>

namespace bench {

/// A service that is ready, and ends with the object.
class Service
{
public:
    /// Starts the program @p name of this build, whose files are in @p directory.
    Service(const std::string& name, const QByteArray& directory);

    pid_t id() const { return m_process->id(); }
    /// How many nanoseconds it took until it was ready.
    double readyAfter() const { return m_readyAfter; }

private:
    std::optional<Child> m_process;
    double m_readyAfter = 0;
};

/// The path of a program of this build.
std::string program(const std::string& name);

/// Adds a call beside @p clients - 1 idle clients of the service, until it is stored.
Prepare addBesideClients(int clients);

/// The role of a bare server.
int serveBare(const std::vector<std::string>& words);

} // namespace bench
