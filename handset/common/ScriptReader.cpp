// Scripts: text files with one event per line.
#include "handset/common/ScriptReader.h"

#include "handset/common/Log.h"
#include "handset/common/Text.h"
#include "platform/posix/File_p.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

QString trimmedAtEnd(QString line)
{
    while (!line.isEmpty() && line.back().isSpace())
        line.chop(1);
    return line;
}

/// Whether @p line is blank or a comment.
bool isComment(const QString& line)
{
    const QString trimmed = line.trimmed();
    return trimmed.isEmpty() || trimmed.startsWith(u'#');
}

/// Passes @p line to @p reader, unless it is a comment. An error tells its number.
void passLine(const QString& line, int lineNumber, const ScriptLineReader& reader)
{
    if (isComment(line))
        return;
    try {
        reader(trimmedAtEnd(line), lineNumber);
    } catch (const ScriptError& error) {
        throw ScriptError{u"%1: %2"_s.arg(QString::number(lineNumber), error.text)};
    }
}

} // namespace

bool readScriptLine(const QString& source, int lineNumber, const QString& line, const ScriptLineReader& reader)
{
    try {
        passLine(line, lineNumber, reader);
        return true;
    } catch (const ScriptError& error) {
        log(u"%1:%2"_s.arg(source, error.text));
        return false;
    }
}

void readScriptText(const QByteArray& text, const ScriptLineReader& reader)
{
    const QStringList lines = QString::fromUtf8(text).split(u'\n');
    for (int lineNumber = 1; lineNumber <= lines.size(); ++lineNumber)
        passLine(lines[lineNumber - 1], lineNumber, reader);
}

bool readScriptFile(const QString& path, const ScriptLineReader& reader)
{
    const auto text = posix::readWhole(QFile::encodeName(path), kLargestScript);
    if (!text) {
        log(u"%1 is not a readable file of at most 1 MiB"_s.arg(path));
        return false;
    }
    try {
        readScriptText(*text, reader);
        return true;
    } catch (const ScriptError& error) {
        log(u"%1:%2"_s.arg(path, error.text));
        return false;
    }
}

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
        } else if (character == u'"') {
            isQuoted = !isQuoted;
            word += ""_L1;
        } else {
            word += character;
        }
    }
    if (isQuoted)
        throw ScriptError{u"unclosed quote"_s};
    if (!word.isNull())
        words += word;
    return words;
}

std::chrono::milliseconds takeScriptDelay(QStringList& words)
{
    if (!words.constFirst().startsWith(u'+'))
        return std::chrono::milliseconds(0);
    const QString delay = words.takeFirst().mid(1);
    if (words.isEmpty())
        throw ScriptError{u"a delay without an event"_s};
    return std::chrono::milliseconds(scriptNumber(delay, 0, std::numeric_limits<int>::max()));
}

QStringList scriptColumns(const QString& line, qsizetype count)
{
    static const QRegularExpression gap(u"  +"_s);
    QStringList columns = line.trimmed().split(gap);
    const QString rest = columns.mid(count - 1).join("  "_L1);
    columns = columns.mid(0, count - 1);
    return rest.isEmpty() ? columns : columns + QStringList{rest};
}

int scriptNumber(const QString& word, int lowest, int highest)
{
    const std::optional<int> number = wholeNumber(word);
    if (!number || *number < lowest || *number > highest)
        throw ScriptError{
            u"'%1' is not a whole number from %2 to %3"_s.arg(word, QString::number(lowest), QString::number(highest))};
    return *number;
}

} // namespace zyn::handset
