// What a screen of a terminal shows, cell by cell.
#pragma once

#include <QtCore/QString>

#include <cstdint>
#include <vector>

namespace zyn::tool {

enum class Style : uint8_t { Plain, Title, Label, Alert };

/// One place of the screen.
struct Cell
{
    QString text = QStringLiteral(" "); ///< one character with its marks; empty in the second half of a wide one
    Style style = Style::Plain;

    bool operator==(const Cell&) const = default;
};

/// A screen in memory, blank when it is made.
class Canvas
{
public:
    Canvas(int columns, int rows);

    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    const Cell& at(int row, int column) const { return m_cells[index(row, column)]; }

    /// Writes @p text, of which every character that does not just show is escaped, from @p column on into at
    /// most @p width places of a row; an ellipsis stands for what does not fit. What lies outside is left out.
    void put(int row, int column, int width, const QString& text, Style style = Style::Plain);

private:
    size_t index(int row, int column) const
    {
        return static_cast<size_t>(row) * static_cast<size_t>(m_columns) + static_cast<size_t>(column);
    }

    int m_columns;
    int m_rows;
    std::vector<Cell> m_cells;
};

} // namespace zyn::tool
