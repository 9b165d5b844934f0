// Text for terminals.
#include "handset/common/Text.h"

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace zyn::handset {
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

constexpr char16_t kFirstOfTwoBytes = 0x100;

QString hex(const char* before, char16_t unit, int digits)
{
    return QLatin1String(before) + u"%1"_s.arg(uint{unit}, digits, 16, '0'_L1);
}

/// Whether @p character only shows; a lone surrogate does not.
bool isPrintable(char32_t character)
{
    const QChar::Category category = QChar::category(character);
    return QChar::isPrint(character) && category != QChar::Separator_Line && category != QChar::Separator_Paragraph;
}

QString escaped(QStringView text, QString (*escape)(char16_t unit))
{
    QString result;
    while (!text.isEmpty()) {
        const bool isPair = text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate();
        const QStringView character = text.first(isPair ? 2 : 1);
        text = text.sliced(character.size());
        if (isPrintable(isPair ? QChar::surrogateToUcs4(character[0], character[1]) : character[0].unicode())) {
            result += character;
            continue;
        }
        for (const QChar unit : character)
            result += escape(unit.unicode());
    }
    return result;
}

constexpr qint64 kSecondsPerMinute = 60;
constexpr qint64 kSecondsPerHour = 3600;

} // namespace

QString printable(const QString& text)
{
    return escaped(text,
                   [](char16_t unit) { return unit < kFirstOfTwoBytes ? hex("\\x", unit, 2) : hex("\\u", unit, 4); });
}

QString jsonEscaped(const QString& text)
{
    return escaped(text, [](char16_t unit) { return hex("\\u", unit, 4); });
}

std::optional<int> wholeNumber(const QString& text)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && !text.contains(QChar::Null) ? std::optional(number) : std::nullopt;
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
        while (line.endsWith(u' '))
            line.chop(1);
        lines += line + u'\n';
    }
    return lines;
}

QString timeText(const QDateTime& time)
{
    return time.toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

QString counted(qsizetype number, const char* thing)
{
    return u"%1 %2"_s.arg(QString::number(number), QLatin1String(thing)) + (number == 1 ? QLatin1String() : "s"_L1);
}

QString durationText(int seconds)
{
    const qint64 magnitude = std::abs(qint64{seconds});
    return u"%1%2:%3:%4"_s.arg(QLatin1String(seconds < 0 ? "-" : ""))
        .arg(magnitude / kSecondsPerHour)
        .arg(magnitude % kSecondsPerHour / kSecondsPerMinute, 2, 10, '0'_L1)
        .arg(magnitude % kSecondsPerMinute, 2, 10, '0'_L1);
}

} // namespace zyn::handset
