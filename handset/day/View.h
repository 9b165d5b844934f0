// Prints a day as it is played: who says what to whom, and which checks pass.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

namespace zyn::handset {

/// Writes aligned lines to standard output, in colour on a terminal, and counts the checks.
class View
{
public:
    /// @param longestName  the length of the longest name in the columns `from` and `to`
    explicit View(qsizetype longestName);

    void chapter(const QString& title);
    /// Prints a step.
    void act(const QString& from, const QString& to, const QString& what);
    /// Prints an expected line, and whether the check @p holds.
    void check(bool holds, const QString& from, const QString& to, const QString& what);
    /// Prints more about a check that failed.
    void explain(const QString& text);

    /// Prints the number of checks; true if all passed and all could be written.
    bool conclude();

private:
    struct Row
    {
        const char* markColour;
        QString mark;
        const char* textColour;
    };
    void write(const Row& row, const QString& from, const QString& to, const QString& what);
    void write(const char* colour, const QString& line);
    QString painted(const char* colour, const QString& text) const;

    const int m_nameWidth;
    const bool m_isColoured;
    const QString m_arrow;
    int m_held = 0;
    int m_checks = 0;
    QElapsedTimer m_time;
};

} // namespace zyn::handset
