// Tables: aligned columns for people, JSON for programs.
#include "tools/zynphone/Table.h"

#include "tools/zynphone/Console.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {

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
    if (value.isNull())
        return u"-"_s;
    if (value.isBool())
        return value.toBool() ? u"yes"_s : u"no"_s;
    return value.isDouble() ? QString::number(value.toInteger()) : printable(value.toString());
}

void printTable(Console& console, const Table& table, bool json)
{
    if (json)
        console.write(QJsonDocument(table.json()));
    else
        console.write(table.text());
}

void printValue(Console& console, const QString& text, const QJsonObject& object, bool json)
{
    if (json)
        console.write(QJsonDocument(object));
    else
        console.write(text + u'\n');
}

void printSheet(Console& console, const Table& table, bool json)
{
    if (json)
        console.write(QJsonDocument(table.json().first().toObject()));
    else
        console.write(table.sheet());
}

} // namespace zyn::tool
