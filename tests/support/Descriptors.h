// Counts the process's open descriptors, so that a test can tell when one is left.
#pragma once

#include <QtCore/QDir>

/// How many descriptors the process has open.
inline qsizetype openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}
