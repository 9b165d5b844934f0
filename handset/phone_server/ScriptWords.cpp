// The words of a line of a script.
#include "handset/phone_server/ScriptWords.h"

#include "handset/phone_server/ScriptError.h"

QStringList scriptWords(const QString& line)
{
    QStringList words;
    QString word;
    bool isQuoted = false;
    bool hasWord = false;
    for (const QChar character : line) {
        if (character == QLatin1Char('"')) {
            isQuoted = !isQuoted;
            hasWord = true;
        } else if (character.isSpace() && !isQuoted) {
            if (hasWord)
                words += word;
            word.clear();
            hasWord = false;
        } else {
            word += character;
            hasWord = true;
        }
    }
    if (isQuoted)
        throw ScriptError{QStringLiteral("a quote is not closed")};
    if (hasWord)
        words += word;
    return words;
}

int scriptNumber(const QString& word, int lowest, int highest)
{
    bool isNumber = false;
    const int number = word.toInt(&isNumber);
    if (!isNumber || number < lowest || number > highest)
        throw ScriptError{
            QStringLiteral("'%1' is no whole number from %2 to %3").arg(word).arg(lowest).arg(highest)};
    return number;
}
