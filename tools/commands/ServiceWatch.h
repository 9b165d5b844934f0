// Notices the end of a service.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QSocketNotifier>

#include <functional>
#include <memory>
#include <utility>

namespace zyn::tool {

/// Notices that the process which serves a socket ends, in whatever way. A kernel that cannot tell leaves it unnoticed.
class ServiceWatch
{
public:
    ServiceWatch(QByteArray path, std::function<void()> ended)
        : m_path(std::move(path))
        , m_ended(std::move(ended))
    {}

    /// Watches the process that serves now, unless one is being watched.
    void start();

private:
    const QByteArray m_path;
    const std::function<void()> m_ended;
    posix::UniqueFd m_process;
    std::unique_ptr<QSocketNotifier> m_end;
};

} // namespace zyn::tool
