// Scenarios: tests that are written as text, one step a line.
#pragma once

#include "tests/support/Process.h"
#include "tests/support/StdoutCapture.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QVariant>

#include <functional>
#include <map>
#include <type_traits>

namespace scenario {

/// What a step does with the words behind its first one, if it wants any; it shows what that returns, of a bool only
/// that it is false.
class Verb
{
public:
    template<typename Action>
    Verb(Action action) // NOLINT(google-explicit-constructor): a table of actions is one of verbs
        : m_show([action](const QStringList& words) {
            const auto act = [&] {
                if constexpr (std::is_invocable_v<Action>)
                    return action();
                else
                    return action(words);
            };
            if constexpr (std::is_void_v<decltype(act())>)
                return act(), QString();
            else if constexpr (std::is_same_v<decltype(act()), bool>)
                return act() ? QString() : QStringLiteral("failed");
            else
                return QVariant(act()).toString();
        })
    {}

    QString operator()(const QStringList& words) const { return m_show(words); }

private:
    std::function<QString(const QStringList& words)> m_show;
};

using Verbs = std::map<QString, Verb>;

/// What was written, in one line: '|' ends each of its own, and a trace line is the name of the operation in angle
/// brackets.
inline QString lineOf(const QByteArray& output)
{
    static const QRegularExpression trace(QStringLiteral("utility/\\w+,(\\w+),\\d+ \n"));
    return QString::fromLatin1(output).replace(trace, QStringLiteral("<\\1>")).replace(u'\n', u'|');
}

/// The verbs with what they write: each shows it before what else it shows.
inline Verbs withOutput(Verbs verbs)
{
    for (auto& [name, verb] : verbs) {
        verb = [act = verb](const QStringList& words) {
            StdoutCapture capture;
            const QString result = act(words);
            return lineOf(capture.take()) + result;
        };
    }
    return verbs;
}

/// The bytes that a text stands for: "%0A" is one byte, and "x*9" nine of them.
inline QByteArray bytes(QString text)
{
    static const QRegularExpression repeat(QStringLiteral("(.)\\*(\\d+)"));
    for (auto match = repeat.match(text); match.hasMatch(); match = repeat.match(text)) {
        const QString all(match.captured(2).toInt(), match.captured(1).front());
        text.replace(match.capturedStart(), match.capturedLength(), all);
    }
    return QByteArray::fromPercentEncoding(text.toUtf8());
}

/// The text that stands for some bytes.
inline QString textOf(const QByteArray& bytes)
{
    if (bytes.size() > 16 && bytes.count(bytes.front()) == bytes.size())
        return QStringLiteral("%1*%2").arg(QLatin1Char(bytes.front())).arg(bytes.size());
    return QString::fromLatin1(bytes.toPercentEncoding(" !\"#$&'()*+,/:;<=>?@[\\]^`{|}"));
}

/// What a shell says that runs @p command in @p folder.
inline QString shell(const QString& folder, const QStringList& command)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("sh"), {QStringLiteral("-c"), command.join(QLatin1Char(' '))});
    role::finish(process);
    return QString::fromLocal8Bit(process.readAll()).trimmed();
}

/// Adds a row for each scenario in the file @p path: "# name", then the steps. What a step shows stands behind " = ";
/// what it comes to show behind " => ", and what that comes to contain behind " ~ ". Other steps show nothing. Lines
/// "| name | value" make the scenario several rows, in which $1 stands for the name, $2 for the value, and so on to $9.
inline void addRows(const QString& path)
{
    QTest::addColumn<QStringList>("steps");
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no scenarios");
    for (const QString& text : QString::fromUtf8(file.readAll()).split(QStringLiteral("\n# ")).mid(1)) {
        const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        QStringList steps;
        QStringList rows;
        for (const QString& line : lines.mid(1))
            (line.startsWith(QLatin1String("| ")) ? rows : steps) += line;
        if (rows.isEmpty())
            QTest::newRow(qPrintable(lines.first())) << steps;
        for (const QString& row : rows) {
            const QStringList cells = row.mid(2).split(QStringLiteral(" | "));
            QStringList filled = steps;
            for (int cell = 1; cell <= 9; ++cell)
                filled.replaceInStrings(QStringLiteral("$%1").arg(cell), cells.value(cell - 1));
            QTest::newRow(qPrintable(lines.first() + QStringLiteral(": ") + cells.first())) << filled;
        }
    }
}

/// Takes the steps of the row; fails with the first that shows something else.
inline void play(const Verbs& verbs)
{
    static const QRegularExpression form(QStringLiteral("^(.*?)(?: (=>|=|~)(?: (.*))?)?$"));
    QFETCH(QStringList, steps);
    for (const QString& step : steps) {
        const QStringList parts = form.match(step).capturedTexts();
        QStringList words =
            parts.at(1).split(QLatin1Char(' '), Qt::SkipEmptyParts).replaceInStrings(QStringLiteral("''"), QString());
        const auto verb = verbs.find(words.first());
        QVERIFY2(verb != verbs.end(), qPrintable(step));
        const QString relation = parts.value(2);
        const QString expected = parts.value(3);
        QString shown = verb->second(words.mid(1));
        const auto isRight = [&] {
            return relation == QLatin1String("~") ? shown.contains(expected) : shown == expected;
        };
        const bool mayWait = !relation.isEmpty() && relation != QLatin1String("=");
        for (const QDeadlineTimer deadline(role::kTimeout); mayWait && !isRight() && !deadline.hasExpired();) {
            QTest::qWait(10);
            shown = verb->second(words.mid(1));
        }
        QVERIFY2(!QTest::currentTestFailed() && isRight(), qPrintable(step + QStringLiteral("\nshows ") + shown));
    }
}

} // namespace scenario
