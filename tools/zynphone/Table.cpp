// Rows of values, as aligned columns for people and as JSON for programs.
#include "tools/zynphone/Table.h"

#include "tools/zynphone/Console.h"

#include <algorithm>

namespace {

constexpr QLatin1String kGap("  ");

QList<qsizetype> columnWidths(const QList<QStringList>& rows)
{
    QList<qsizetype> widths;
    for (const QStringList& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (qsizetype column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    }
    return widths;
}

} // namespace

namespace zyn::tool {

QString alignedLines(const QList<QStringList>& rows)
{
    const QList<qsizetype> widths = columnWidths(rows);
    QString lines;
    for (const QStringList& row : rows) {
        QStringList cells;
        for (qsizetype column = 0; column < row.size(); ++column)
            cells += row[column].leftJustified(widths[column]);
        QString line = cells.join(kGap);
        while (line.endsWith(QLatin1Char(' ')))
            line.chop(1);
        lines += line + QLatin1Char('\n');
    }
    return lines;
}

QString Table::text() const
{
    return alignedLines(QList<QStringList>{m_titles} + m_rows);
}

QString Table::sheet() const
{
    QList<QStringList> lines;
    for (qsizetype column = 0; column < m_titles.size(); ++column)
        lines += QStringList{m_titles[column], m_rows.first()[column]};
    return alignedLines(lines);
}

QString Table::plainText(const QJsonValue& value)
{
    if (value.isBool())
        return value.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    return value.isDouble() ? QString::number(value.toInteger()) : printable(value.toString());
}

void printTable(Console& console, const Table& table, bool json)
{
    if (json)
        console.write(QJsonDocument(table.json()));
    else
        console.write(table.text());
}

void printSheet(Console& console, const Table& table, bool json)
{
    if (json)
        console.write(QJsonDocument(table.json().first().toObject()));
    else
        console.write(table.sheet());
}

} // namespace zyn::tool
