// The processes that send and hear messages.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QString>

#include <cstdint>

namespace zyn::tool {

/// A process that sends or hears messages.
struct Participant
{
    QString program;     ///< empty when it is not known
    int64_t process = 0; ///< its number; 0 when it is not known

    bool operator==(const Participant&) const = default;
    bool isKnown() const { return process > 0; }
};

/// The name of the program that the process @p number runs; empty when there is no such process here.
QString programOf(int64_t number);

/// Who listens on channels, apart from this process. Looks again for a channel that was not asked for in the last few
/// milliseconds, so that a burst of messages costs no more than one of them.
class Audience
{
public:
    /// Those that listen on @p channel, each process once, in the order of their numbers.
    const QList<Participant>& of(const QCString& channel);

private:
    struct Listeners
    {
        QElapsedTimer age;
        QList<Participant> list;
    };

    QHash<QCString, Listeners> m_channels;
};

} // namespace zyn::tool
