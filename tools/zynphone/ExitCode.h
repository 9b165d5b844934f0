// How the tool ends: its exit codes, the error that a verb ends with, and what a service that does not answer makes of
// it.
#pragma once

#include <QtCore/QString>

#include <utility>

namespace zyn::tool {

enum ExitCode : int {
    Done = 0,
    Failed = 1,        ///< the handset, a service or a file did not do what was asked, or is not sound
    Usage = 2,         ///< the command line asks for something that does not exist
    NothingPicked = 3, ///< the user was asked and picked nothing
    NoStore = 4,       ///< the directory is none of a store
    Interrupted = 130, ///< a signal ended it before its work was done
};

/// Thrown by a verb that cannot go on. The message is one line without the verb's name and without a full stop.
class CommandError
{
public:
    CommandError(ExitCode code, QString message)
        : m_code(code)
        , m_message(std::move(message))
    {}

    ExitCode code() const { return m_code; }
    const QString& message() const { return m_message; }

private:
    ExitCode m_code;
    QString m_message;
};

inline CommandError failure(QString message)
{
    return CommandError(Failed, std::move(message));
}

inline CommandError usageError(QString message)
{
    return CommandError(Usage, std::move(message));
}

/// Why a request to @p service, which listens at @p path, failed: found out by a connection to it, since the library's
/// results do not tell.
CommandError serviceError(const QString& service, const QString& path);

/// The same of a request to the recent-call service.
CommandError recentCallServiceError();

} // namespace zyn::tool
