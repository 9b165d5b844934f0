// Standard input, line by line.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>

namespace zyn::handset {

/// Reads standard input and delivers one line per request.
class LineInput : public QObject
{
    Q_OBJECT

public:
    /// @param longestLine  in bytes; a longer line is cut and marked, so that it matches no answer
    explicit LineInput(qsizetype longestLine = 80);

    /// Emits entered() as soon as the next line is available. Discards what was typed at a terminal before the request.
    void ask();
    /// Withdraws the request.
    void cancel();

Q_SIGNALS:
    /// @param line  without its line end, cut to the longest line; null at the end of the input
    void entered(const QString& line);

private:
    void read();
    void dropTyped();
    void append(char character);
    void deliver();

    const qsizetype m_longestLine;
    QSocketNotifier m_readable;
    QByteArray m_line;
    QList<QByteArray> m_lines; ///< not requested yet
    bool m_isAsked = false;
    bool m_isAtEnd = false;
};

} // namespace zyn::handset
