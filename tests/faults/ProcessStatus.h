// What the kernel knows of a process: its memory, its descriptors.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>

namespace faults {

/// A row of memory of the process's status in KiB, such as VmHWM, the most that it had in memory; -1 when it is gone.
inline qint64 memoryOf(qint64 process, const QByteArray& row)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith(row + ':'))
            return line.simplified().split(' ').value(1).toLongLong();
    }
    return -1;
}

/// How many descriptors the process has open.
inline qint64 descriptorsOf(qint64 process)
{
    return QDir(QStringLiteral("/proc/%1/fd").arg(process))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

} // namespace faults
