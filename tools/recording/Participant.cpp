// The processes that send and hear messages.
#include "tools/recording/Participant.h"

#include "platform/qcop/ChannelDirectory_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <chrono>
#include <set>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr std::chrono::milliseconds kFresh{10};
/// Above what the kernel keeps of a program's name.
constexpr qsizetype kProgramLimit = 64;

QList<Participant> listenersOf(const QCString& channel)
{
    std::set<pid_t> processes;
    if (const auto directory = ChannelDirectory::open(ChannelEnvironment::current().root(), channel)) {
        for (const QByteArray& name : directory->listeners().value_or(QList<QByteArray>()))
            processes.insert(ChannelDirectory::owner(name));
    }
    processes.erase(static_cast<pid_t>(QCoreApplication::applicationPid()));
    QList<Participant> list;
    for (const pid_t process : processes) {
        // A dead one's socket stays until the next message.
        if (const QString program = programOf(process); !program.isEmpty())
            list.append({program, process});
    }
    return list;
}

} // namespace

QString programOf(int64_t number)
{
    QFile name(u"/proc/%1/comm"_s.arg(number)); // no regular file: its size is not known before
    return name.open(QIODevice::ReadOnly) ? QString::fromUtf8(name.read(kProgramLimit).trimmed()) : QString();
}

const QList<Participant>& Audience::of(const QCString& channel)
{
    Listeners& listeners = m_channels[channel];
    if (!listeners.age.isValid() || listeners.age.hasExpired(kFresh.count())) {
        listeners.list = listenersOf(channel);
        listeners.age.start();
    }
    return listeners.list;
}

} // namespace zyn::tool
