// The command-line tool as its users run it.
#pragma once

#include "tests/support/Role.h"

#include <QtCore/QFile>
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

/// Adds a row for each part of the transcripts in the file @p path: "# name", then command lines behind "$ ", each with
/// what the tool writes in answer.
inline void addTranscripts(const QString& path)
{
    QTest::addColumn<QStringList>("exchanges");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no transcripts");
    const QString text = QString::fromUtf8(file.readAll()).trimmed();
    for (const QString& transcript : text.split(QStringLiteral("\n# ")).mid(1)) {
        const QStringList parts = transcript.split(QStringLiteral("\n$ "));
        QTest::newRow(qPrintable(parts.first())) << parts.mid(1);
    }
}

/// Runs the lines of the row's transcript and compares.
inline void followTranscript()
{
    QFETCH(QStringList, exchanges);
    for (const QString& exchange : exchanges) {
        const QString line = exchange.section(QLatin1Char('\n'), 0, 0);
        QCOMPARE(line + QLatin1Char('\n') + run(words(line)), exchange);
    }
}

} // namespace tool
