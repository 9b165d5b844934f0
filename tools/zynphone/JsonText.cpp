// JSON of printable characters only.
#include "tools/zynphone/JsonText.h"

namespace {

/// Whether @p character does nothing but show; half of a pair does.
bool isPrintable(QChar character)
{
    const QChar::Category category = character.category();
    return character.isSurrogate()
           || (character.isPrint() && category != QChar::Separator_Line && category != QChar::Separator_Paragraph);
}

} // namespace

namespace zyn::tool {

QString jsonEscaped(const QString& text)
{
    QString result;
    for (const QChar character : text) {
        if (isPrintable(character))
            result += character;
        else
            result += QStringLiteral("\\u%1").arg(int{character.unicode()}, 4, 16, QLatin1Char('0'));
    }
    return result;
}

} // namespace zyn::tool
