// Comma-separated values (RFC 4180).
#include "tools/interchange/CsvText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kQuote = '"';
constexpr char kSeparator = ',';
constexpr char kByteOrderMark[] = "\xEF\xBB\xBF";

const QString kStrayQuote = u"a quotation mark stands where no quoted cell begins or ends"_s;

bool needsQuotes(const QString& cell)
{
    return std::ranges::any_of(cell, [](QChar character) { return QStringView(u",\"\r\n").contains(character); });
}

} // namespace

QString csvLine(const QStringList& cells)
{
    QStringList texts;
    for (QString cell : cells)
        texts += needsQuotes(cell) ? u'"' + cell.replace(u'"', u"\"\""_s) + u'"' : cell;
    return texts.join(u',') + u'\n';
}

CsvReader::CsvReader(const QByteArray& text)
    : m_text(text)
{
    if (m_text.startsWith(kByteOrderMark))
        m_at = qsizetype{sizeof kByteOrderMark} - 1;
    passEmptyLines();
}

CsvRow CsvReader::next()
{
    CsvRow row{.line = m_line, .cells = {}, .problem = {}};
    const qsizetype begin = m_at;
    do {
        if (!row.cells.isEmpty())
            ++m_at;
        row.cells += QString::fromUtf8(isAt(kQuote) ? quotedCell(row.problem) : plainCell(row.problem));
    } while (isAt(kSeparator));
    if (!QByteArrayView(m_text).sliced(begin, m_at - begin).isValidUtf8())
        row.problem = u"the line is not UTF-8"_s;
    passLineEnd();
    passEmptyLines();
    return row;
}

bool CsvReader::isAtLineEnd() const
{
    return isAt('\n') || (isAt('\r') && m_at + 1 < m_text.size() && m_text[m_at + 1] == '\n');
}

void CsvReader::passLineEnd()
{
    if (atEnd())
        return;
    m_at += isAt('\r') ? 2 : 1;
    ++m_line;
}

void CsvReader::passEmptyLines()
{
    while (isAtLineEnd())
        passLineEnd();
}

QByteArray CsvReader::plainCell(QString& problem)
{
    const qsizetype begin = m_at;
    while (!atEnd() && !isAt(kSeparator) && !isAtLineEnd()) {
        if (isAt(kQuote))
            problem = kStrayQuote;
        ++m_at;
    }
    return m_text.sliced(begin, m_at - begin);
}

QByteArray CsvReader::quotedCell(QString& problem)
{
    QByteArray cell;
    const qsizetype begin = m_at;
    const int line = m_line;
    // Quotation marks in a cell are doubled.
    for (++m_at; !atEnd(); ++m_at) {
        if (isAt(kQuote)) {
            ++m_at;
            if (!isAt(kQuote)) {
                if (!plainCell(problem).isEmpty())
                    problem = kStrayQuote;
                return cell;
            }
        }
        if (isAt('\n'))
            ++m_line;
        cell += m_text[m_at];
    }
    problem = u"a quotation mark is not closed"_s;
    // A stray quotation mark must not swallow the rows after it.
    m_at = begin;
    m_line = line;
    while (!atEnd() && !isAtLineEnd())
        ++m_at;
    return {};
}

} // namespace zyn::tool
