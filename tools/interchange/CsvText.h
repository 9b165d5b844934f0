// Comma-separated values, as RFC 4180 has them.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

/// One row with its line end, a line feed. Cells are put in quotes where they need them.
QString csvLine(const QStringList& cells);

struct CsvRow
{
    int line; ///< on which the row begins, from 1; a quoted cell may span several
    QStringList cells;
    QString problem; ///< why the cells are not to be trusted; empty when they are
};

/// Takes a text apart. It may begin with a byte order mark; its lines end in LF or CR LF; empty ones are passed over.
class CsvReader
{
public:
    explicit CsvReader(const QByteArray& text);

    bool atEnd() const { return m_at == m_text.size(); }
    /// The next row; only before the end. A row with a problem is read up to where the next one seems to begin; behind
    /// a quotation mark that is not closed that is the next line.
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
