// How the tool ends: its exit codes, and the error that a verb ends with.
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

/// Thrown by a verb that cannot go on. The message is one line without the verb's name and without a full
/// stop.
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

} // namespace zyn::tool
