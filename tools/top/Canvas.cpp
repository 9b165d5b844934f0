// What a screen of a terminal shows, cell by cell.
#include "tools/top/Canvas.h"

#include "handset/common/Text.h"

#include <QtCore/QList>

#include <algorithm>

#include <wchar.h>

namespace zyn::tool {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
/// More marks than any script puts on one letter.
constexpr qsizetype kMaxGlyphLength = 8;

/// A character with the marks on it, and how many places it takes.
struct Glyph
{
    QString text;
    int width;
};

std::vector<Glyph> glyphsOf(const QString& text)
{
    std::vector<Glyph> glyphs;
    for (char32_t code : zyn::handset::jsonEscaped(text).toUcs4()) {
        const int width = ::wcwidth(static_cast<wchar_t>(code));
        if (width > 0)
            glyphs.push_back({QString::fromUcs4(&code, 1), width});
        else if (width < 0 || glyphs.empty())
            glyphs.push_back({QString::fromUcs4(&kReplacement, 1), 1});
        else if (glyphs.back().text.size() < kMaxGlyphLength)
            glyphs.back().text += QString::fromUcs4(&code, 1);
    }
    return glyphs;
}

int widthOf(const std::vector<Glyph>& glyphs)
{
    int width = 0;
    for (const Glyph& glyph : glyphs)
        width += glyph.width;
    return width;
}

void elide(std::vector<Glyph>& glyphs, int limit)
{
    int width = widthOf(glyphs);
    if (width <= limit)
        return;
    while (!glyphs.empty() && width >= limit) {
        width -= glyphs.back().width;
        glyphs.pop_back();
    }
    glyphs.push_back({QStringLiteral("\u2026"), 1});
}

} // namespace

Canvas::Canvas(int columns, int rows)
    : m_columns(std::max(columns, 0))
    , m_rows(std::max(rows, 0))
    , m_cells(static_cast<size_t>(m_columns) * static_cast<size_t>(m_rows))
{}

void Canvas::put(int row, int column, int width, const QString& text, Style style)
{
    const int limit = std::min(width, m_columns - column);
    if (row < 0 || row >= m_rows || column < 0 || limit <= 0)
        return;
    std::vector<Glyph> glyphs = glyphsOf(text);
    elide(glyphs, limit);
    for (const Glyph& glyph : glyphs) {
        m_cells[index(row, column++)] = {glyph.text, style};
        for (int half = 1; half < glyph.width; ++half)
            m_cells[index(row, column++)] = {QString(), style};
    }
}

} // namespace zyn::tool
