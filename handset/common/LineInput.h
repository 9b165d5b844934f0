// What a user types, line by line.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

namespace zyn::handset {

/// Standard input, of which one line is taken each time that the program asks for one.
class LineInput : public QObject
{
    Q_OBJECT

public:
    /// @param longestLine  in bytes; what is longer is cut, and marked so that it answers nothing
    explicit LineInput(qsizetype longestLine = 80);

    /// Emits entered() for the next line, as soon as it is there. What is typed at a terminal before is no answer: it
    /// is dropped.
    void ask();
    /// Asks no more.
    void cancel();

Q_SIGNALS:
    /// @p line  without its end, as far as lines are kept; null at the end of the input.
    void entered(const QString& line);

private:
    void read();
    void dropTyped();
    void append(char character);
    void deliver();

    const qsizetype m_longestLine;
    QSocketNotifier m_readable;
    QByteArray m_line;
    QList<QByteArray> m_lines; ///< that nobody has asked for yet
    bool m_isAsked = false;
    bool m_isAtEnd = false;
};

} // namespace zyn::handset
