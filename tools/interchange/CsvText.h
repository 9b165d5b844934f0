// Comma-separated values (RFC 4180).
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

/// One row, ended by a line feed. Cells are quoted where necessary.
QString csvLine(const QStringList& cells);

struct CsvRow
{
    int line; ///< where the row begins, from 1; a quoted cell may span several lines
    QStringList cells;
    QString problem; ///< why the cells are invalid; empty if they are valid
};

/// Parses a text, with or without a byte order mark. Lines end in LF or CR LF; empty ones are skipped.
class CsvReader
{
public:
    explicit CsvReader(const QByteArray& text);

    bool atEnd() const { return m_at == m_text.size(); }
    /// The next row, if not at the end. A row with a problem ends where the next one seems to begin: after an unclosed
    /// quotation mark, at the next line.
    CsvRow next();

private:
    bool isAt(char character) const { return !atEnd() && m_text[m_at] == character; }
    bool isAtLineEnd() const;
    void passLineEnd();
    void passEmptyLines();
    QByteArray plainCell(QString& problem);
    QByteArray quotedCell(QString& problem);

    const QByteArray m_text;
    qsizetype m_at = 0;
    int m_line = 1;
};

} // namespace zyn::tool
