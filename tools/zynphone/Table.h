// Tables: aligned columns for people, JSON for programs.
#pragma once

#include "handset/common/Text.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace zyn::tool {

using namespace Qt::StringLiterals;

class Console;

/// One column of rows of type Row.
template<typename Row>
struct Column
{
    const char* key;   ///< the field's name in JSON, in lower camel case; never changed once published
    const char* title; ///< for people; null in JSON only
    QJsonValue (*value)(const Row&);
    QString (*text)(const Row&) = nullptr; ///< for people; the value itself if null
};

using handset::alignedLines;

class Table
{
public:
    /// Both @p columns and @p rows are ranges.
    template<typename Columns, typename Rows>
    Table(const Columns& columns, const Rows& rows)
    {
        for (const auto& column : columns) {
            if (column.title)
                m_titles += QLatin1String(column.title);
        }
        for (const auto& row : rows) {
            QStringList cells;
            QJsonObject object;
            for (const auto& column : columns) {
                const QJsonValue value = column.value(row);
                object.insert(QLatin1String(column.key), value);
                if (column.title)
                    cells += column.text ? column.text(row) : plainText(value);
            }
            m_rows += cells;
            m_objects += object;
        }
    }

    bool isEmpty() const { return m_objects.isEmpty(); }
    qsizetype count() const { return m_objects.size(); }

    /// A line of titles, then a line for each row.
    QString text() const;
    /// The first row, one line per column: title and value.
    QString sheet() const;
    /// One object per row.
    const QJsonArray& json() const { return m_objects; }

private:
    static QString plainText(const QJsonValue& value);

    QStringList m_titles;
    QList<QStringList> m_rows;
    QJsonArray m_objects;
};

/// Writes @p table, as JSON if @p json is set.
void printTable(Console& console, const Table& table, bool json);
/// Writes the first row of @p table as a sheet, or as JSON if @p json is set.
void printSheet(Console& console, const Table& table, bool json);

/// Writes @p text as a line, or @p object if @p json is set.
void printValue(Console& console, const QString& text, const QJsonObject& object, bool json);

/// The JSON field names of @p columns, for help texts.
template<typename Columns>
QString fieldNames(const Columns& columns)
{
    QStringList names;
    for (const auto& column : columns)
        names += QLatin1String(column.key);
    return names.join(", "_L1);
}

} // namespace zyn::tool
