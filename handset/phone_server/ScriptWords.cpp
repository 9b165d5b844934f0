// The words of a line of a script.
#include "handset/phone_server/ScriptWords.h"

#include "handset/common/Text.h"
#include "handset/phone_server/ScriptError.h"

namespace zyn::handset {

QStringList scriptWords(const QString& line)
{
    QStringList words;
    QString word; // null between words
    bool isQuoted = false;
    for (const QChar character : line) {
        if (character.isSpace() && !isQuoted) {
            if (!word.isNull())
                words += word;
            word.clear();
        } else if (character == QLatin1Char('"')) {
            isQuoted = !isQuoted;
            word += QLatin1String("");
        } else {
            word += character;
        }
    }
    if (isQuoted)
        throw ScriptError{QStringLiteral("a quote is not closed")};
    if (!word.isNull())
        words += word;
    return words;
}

int scriptNumber(const QString& word, int lowest, int highest)
{
    const std::optional<int> number = wholeNumber(word);
    if (!number || *number < lowest || *number > highest)
        throw ScriptError{QStringLiteral("'%1' is no whole number from %2 to %3")
                              .arg(word, QString::number(lowest), QString::number(highest))};
    return *number;
}

} // namespace zyn::handset
