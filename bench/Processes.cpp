// What the kernel tells of a running process, in its files below /proc.
#include "bench/Processes.h"

#include "bench/Bench.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {
namespace {

QString contents(const QString& path)
{
    QFile file(path);
    require(file.open(QIODevice::ReadOnly), "a process's file");
    return QString::fromLatin1(file.readAll());
}

/// The sum of what stands behind the names that @p form matches, in a file of the process.
qint64 sum(const QString& path, const QString& form)
{
    const QString text = contents(path);
    qint64 all = 0;
    for (auto match = QRegularExpression(form + u":\\s*(\\d+)"_s).globalMatch(text); match.hasNext();)
        all += match.next().captured(1).toLongLong();
    return all;
}

} // namespace

qint64 wakeUps(pid_t process)
{
    const QString tasks = u"/proc/%1/task/"_s.arg(process);
    qint64 all = 0;
    for (const QString& task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        all += sum(tasks + task + u"/status"_s, u"voluntary_ctxt_switches"_s);
    return all;
}

qint64 privateMemory(pid_t process)
{
    return sum(u"/proc/%1/smaps_rollup"_s.arg(process), u"Private_(?:Clean|Dirty)"_s);
}

double processorTime(pid_t process)
{
    constexpr qsizetype kUserTicks = 11; // behind the program's name in parentheses, which may hold anything
    const QString stat = contents(u"/proc/%1/stat"_s.arg(process));
    const QStringList words = stat.mid(stat.lastIndexOf(u')') + 2).split(u' ');
    const qint64 ticks = words.value(kUserTicks).toLongLong() + words.value(kUserTicks + 1).toLongLong();
    return 1000.0 * static_cast<double>(ticks) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

} // namespace bench
