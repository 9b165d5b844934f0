// Writes a manual page line by line: no line is longer than the formatters recommend, and a sentence begins a new one.
#include "docs/reference/RoffPage.h"

using namespace Qt::StringLiterals;

namespace zyn::reference {

namespace {

constexpr qsizetype kLongestLine = 78;

QString escaped(const QString& text, bool isCode)
{
    QString roff;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const bool isInWord = i > 0 && text[i - 1].isLetter() && i + 1 < text.size() && text[i + 1].isLetter();
        switch (c.unicode()) {
        case '\\':
            roff += "\\e"_L1;
            break;
        case '-':
            roff += isCode || !isInWord ? "\\-"_L1 : "-"_L1;
            break;
        case '^':
            roff += "\\(ha"_L1;
            break;
        case '~':
            roff += "\\(ti"_L1;
            break;
        case '`':
            roff += "\\(ga"_L1;
            break;
        case '"':
            roff += "\\(dq"_L1;
            break;
        case '\'':
            roff += "\\(aq"_L1;
            break;
        default:
            c.unicode() < 128 ? roff += c : roff += u"\\[u%1]"_s.arg(c.unicode(), 4, 16, '0'_L1).toUpper();
            break;
        }
    }
    return roff;
}

// At the begin of a line, a dot would be a request.
QString asLine(const Roff& line)
{
    return line.startsWith('.'_L1) ? "\\&"_L1 + line : line;
}

} // namespace

Roff prose(const QString& text)
{
    return escaped(text, false);
}

Roff code(const QString& text)
{
    return escaped(text, true);
}

Roff bold(const QString& text)
{
    return "\\fB"_L1 + code(text) + "\\fR"_L1;
}

Roff italic(const QString& text)
{
    return "\\fI"_L1 + code(text) + "\\fR"_L1;
}

RoffPage::RoffPage(const QString& name, const QString& date, const QString& source)
{
    request(u".TH %1 3 %2 \"%3\" \"%3\""_s.arg(code(name), date, source));
    request(u".nh"_s); // a name that is broken cannot be searched for
    request(u".ad l"_s);
}

void RoffPage::request(const QString& line)
{
    m_text += line + u'\n';
}

void RoffPage::section(const QString& title)
{
    request(".SH "_L1 + title);
    m_begun = true;
}

void RoffPage::subsection(const Roff& title)
{
    request(".SS "_L1 + title);
    m_begun = true;
}

void RoffPage::blank()
{
    if (!m_begun)
        request(u".PP"_s);
    m_begun = false;
}

void RoffPage::paragraph(const Roff& text)
{
    if (text.isEmpty())
        return;
    blank();
    fill(text);
}

void RoffPage::lines(const QStringList& lines)
{
    blank();
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (i > 0)
            request(u".br"_s);
        request(asLine(lines[i]));
    }
}

void RoffPage::term(const QStringList& terms)
{
    lines(terms);
    request(u".RS 4"_s);
    m_begun = true;
}

void RoffPage::endTerm()
{
    request(u".RE"_s);
    m_begun = false;
}

void RoffPage::fill(const Roff& text)
{
    QString current;
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words) {
        if (!current.isEmpty() && current.size() + 1 + word.size() > kLongestLine) {
            request(asLine(current));
            current.clear();
        }
        current += (current.isEmpty() ? ""_L1 : " "_L1) + word;
        if (word.endsWith('.'_L1) || word.endsWith(".)"_L1)) {
            request(asLine(current));
            current.clear();
        }
    }
    if (!current.isEmpty())
        request(asLine(current));
}

} // namespace zyn::reference
