// The command-line tool as its users run it.
#pragma once

#include "tests/support/Process.h"

#include <QtCore/QProcess>
#include <QtTest/QTest>

namespace tool {

/// The words of a command line; '' stands for an empty one, %20 for a blank.
inline QStringList words(const QString& line)
{
    QStringList result;
    for (const QString& word : line.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        result += word == QLatin1String("''") ? QLatin1String("")
                                              : QString::fromUtf8(QByteArray::fromPercentEncoding(word.toUtf8()));
    return result;
}

/// Standard output, standard error and exit code of the tool, while which the test's event loop runs.
inline QString run(const QStringList& arguments)
{
    QProcess process;
    process.start(QStringLiteral(ZYN_TOOL), arguments);
    if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, role::kTimeout))
        return QStringLiteral("does not end");
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError())
           + QStringLiteral("exit %1").arg(role::finish(process));
}

inline QString run(const char* line)
{
    return run(words(QString::fromUtf8(line)));
}

} // namespace tool
