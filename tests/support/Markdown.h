// The tables of a document, and what its text names.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>

struct MarkdownTable
{
    QString heading; ///< the nearest one above
    QString caption; ///< the last line of text above
    QStringList columns;
    QList<QStringList> rows;

    bool has(const char* column) const { return columns.contains(QLatin1String(column)); }
    QString cell(const QStringList& row, const char* column) const
    {
        return row.value(columns.indexOf(QLatin1String(column)));
    }
    /// The cells of @p row under @p which, without backticks, with bars between.
    QString text(const QStringList& row, std::initializer_list<const char*> which) const
    {
        QStringList cells;
        for (const char* column : which)
            cells += cell(row, column).remove(u'`');
        return cells.join(QLatin1String(" | "));
    }
};

inline QString readText(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// What the group of @p pattern captures, as often as it matches.
inline QStringList capturesOf(const QString& text, const QString& pattern)
{
    QStringList captures;
    for (const auto& match : QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text))
        captures += match.captured(1);
    return captures;
}

inline QList<MarkdownTable> tablesOf(const QString& document)
{
    QList<MarkdownTable> tables;
    MarkdownTable next;
    bool isInTable = false;
    for (const QString& line : document.split(u'\n')) {
        const QStringList cells = capturesOf(line, QStringLiteral("\\| ?(.*?) ?(?=\\|)"));
        if (line.startsWith(u'#'))
            next.heading = line.section(u' ', 1);
        else if (cells.isEmpty() && !line.isEmpty())
            next.caption = line;
        else if (!cells.isEmpty() && !isInTable)
            tables += {next.heading, next.caption, cells, {}};
        else if (!cells.isEmpty() && !line.startsWith(QLatin1String("|---")))
            tables.last().rows += cells;
        isInTable = !cells.isEmpty();
    }
    return tables;
}

/// What links to the headings of @p document are called.
inline QStringList anchorsOf(const QString& document)
{
    QStringList anchors = capturesOf(document, QStringLiteral("^#+ (.*)$"));
    for (QString& anchor : anchors) {
        anchor = anchor.toLower().replace(u' ', u'-');
        anchor.remove(QRegularExpression(QStringLiteral("[^\\w-]")));
    }
    return anchors;
}
