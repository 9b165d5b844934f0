// Texts as a terminal shows them.
#include "handset/common/Text.h"

#include <algorithm>
#include <cstdlib>

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

constexpr qint64 kSecondsPerMinute = 60;
constexpr qint64 kSecondsPerHour = 3600;

} // namespace

namespace zyn::handset {

QString printable(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        if (character.category() == QChar::Other_Control)
            result += QStringLiteral("\\x%1").arg(int{character.unicode()}, 2, 16, QLatin1Char('0'));
        else
            result += character;
    }
    return result;
}

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

QString durationText(int seconds)
{
    const qint64 magnitude = std::abs(qint64{seconds});
    return QStringLiteral("%1%2:%3:%4")
        .arg(QLatin1String(seconds < 0 ? "-" : ""))
        .arg(magnitude / kSecondsPerHour)
        .arg(magnitude % kSecondsPerHour / kSecondsPerMinute, 2, 10, QLatin1Char('0'))
        .arg(magnitude % kSecondsPerMinute, 2, 10, QLatin1Char('0'));
}

} // namespace zyn::handset
