// How the tool ends: exit codes, errors of verbs, and the diagnosis of a service that does not answer.
#pragma once

#include <QtCore/QString>

#include <utility>

namespace zyn::tool {

enum ExitCode : int {
    Done = 0,
    Failed = 1,          ///< the handset, a service or a file failed, or a check found a fault
    Usage = 2,           ///< the command line is invalid
    NothingPicked = 3,   ///< the user was asked and picked nothing
    NoStore = 4,         ///< the directory is not a store
    NobodyListens = 4,   ///< what was sent reaches nobody
    NotAllowed = 77,     ///< the kernel does not allow it here: test programs count it as skipped
    NotStarted = 125,    ///< a service that the command needs did not start
    NotExecutable = 126, ///< the command cannot be run
    NotFound = 127,      ///< there is no such command
    Interrupted = 130,   ///< ended by a signal before the work was done
};

/// Thrown by a verb that fails. The message is one line, without the verb's name and a full stop.
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

/// Why a request to @p service at @p path failed. The library's results do not tell, so this connects again.
CommandError serviceError(const QString& service, const QString& path);

/// That @p service at @p path has not answered for as long as the library waits.
CommandError noAnswerError(const QString& service, const QString& path);

/// serviceError() for the recent-call service.
CommandError recentCallServiceError();

} // namespace zyn::tool
