// The end of a verb that would go on for as long as it is left to.
#pragma once

#include "tools/zynphone/Command.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <chrono>
#include <limits>
#include <optional>

namespace zyn::tool {

/// How many seconds the event loop may run, as the option says.
class TimeLimit
{
public:
    static QCommandLineOption option(const QString& text = QStringLiteral("end after that time"))
    {
        return valueOption(QStringLiteral("for"), QStringLiteral("SECONDS"), text);
    }

    /// @param option  the one that sets it, if not option()
    explicit TimeLimit(const Invocation& invocation, const QString& option = QStringLiteral("for"))
        : m_seconds(limitFrom(invocation, option, kMaxSeconds))
    {}

    bool isSet() const { return m_seconds.has_value(); }

    /// From now on the time runs; nothing ends when none is set.
    void start() const
    {
        if (m_seconds)
            QTimer::singleShot(std::chrono::seconds(*m_seconds), QCoreApplication::instance(), &QCoreApplication::quit);
    }

private:
    /// The longest time that a timer takes.
    static constexpr int kMaxSeconds = std::numeric_limits<int>::max() / 1000;

    std::optional<int> m_seconds;
};

} // namespace zyn::tool
