// What is shown of a day: who says what to whom.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>

namespace zyn::handset {

/// Writes aligned lines to standard output, in colour on a terminal, and counts what has held.
class View
{
public:
    /// @param longestName  of those that take part
    explicit View(qsizetype longestName);

    void chapter(const QString& title);
    /// Something that happens.
    void act(const QString& from, const QString& to, const QString& what);
    /// Something that was to be, and whether it is.
    void check(bool holds, const QString& from, const QString& to, const QString& what);
    /// What a check that does not hold is explained by.
    void explain(const QString& text);

    /// The last line; true when everything has held.
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
