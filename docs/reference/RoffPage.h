// The text of a manual page, in the markup of man(7).
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::reference {

/// A text of the page in which the fonts are set already.
using Roff = QString;

/// @{ Plain text, and names of C++ in which every sign stays as it is, upright, bold or cursive.
Roff prose(const QString& text);
Roff code(const QString& text);
Roff bold(const QString& text);
Roff italic(const QString& text);
/// @}

/// Collects a page.
class RoffPage
{
public:
    /// @p source is what the page belongs to, with its version; @p date is written as YYYY-MM-DD.
    RoffPage(const QString& name, const QString& date, const QString& source);

    void section(const QString& title);
    void subsection(const Roff& title);
    /// Text, after a blank line unless it is the first of its section or term.
    void paragraph(const Roff& text);
    /// Lines that stay as they are.
    void lines(const QStringList& lines);
    /// Begins what explains these, one below the other: paragraphs further to the right, until endTerm().
    void term(const QStringList& terms);
    void endTerm();

    QByteArray text() const { return m_text.toUtf8(); }

private:
    void request(const QString& line);
    void fill(const Roff& text);
    void blank();

    QString m_text;
    bool m_begun = true; ///< nothing to put a blank line after
};

} // namespace zyn::reference
