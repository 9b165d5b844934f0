// The lines of a recording.
#include "tools/recording/RecordingLine.h"

#include "platform/qcop/ChannelFrame_p.h"
#include "tools/recording/MessageFields.h"
#include "tools/zynphone/Elided.h"
#include "tools/zynphone/ExitCode.h"

#include <array>
#include <cctype>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kHeader[] = "# zynphone recording, version ";
constexpr int kVersion = 1;
constexpr char kCommentMark = '#';
constexpr char kEscape = '%';
constexpr char kEmptyPayload[] = "-";

/// Graphic ASCII that percent-encoding would escape.
constexpr char kPlain[] = "!\"$&'()*+,/:;<=>?@[\\]^`{|}";

constexpr qsizetype kChannelWidth = 20;
constexpr qsizetype kNameWidth = 16;
constexpr qsizetype kLongestComment = 200;
constexpr qsizetype kShownWord = 40;

enum Column : qsizetype { TimeColumn, ChannelColumn, NameColumn, PayloadColumn, ColumnCount };
constexpr std::array<const char*, ColumnCount> kColumns{"time", "channel", "message", "payload"};

QString shown(const QByteArray& word)
{
    return elided(QString::fromUtf8(word), kShownWord);
}

QByteArray timeText(const QDateTime& time)
{
    return time.toUTC().toString(Qt::ISODateWithMs).toLatin1();
}

QByteArray escaped(const QCString& name)
{
    return name.toPercentEncoding(kPlain);
}

/// What the line says to people.
QByteArray comment(const ReceivedMessage& message)
{
    const MessageFields fields = messageFields(message.channel, message.name, message.payload);
    if (!fields.isKnown)
        return {};
    QStringList parts = fieldTexts(fields);
    if (!fields.enumerator.isEmpty())
        parts.prepend(fields.enumerator);
    return parts.isEmpty() ? QByteArray() : "  # " + elided(parts.join(u' '), kLongestComment).toUtf8();
}

QDateTime timeFrom(const QByteArray& word)
{
    QDateTime time = QDateTime::fromString(QString::fromLatin1(word), Qt::ISODateWithMs);
    if (!time.isValid() || timeText(time) != word)
        throw failure(u"'%1' is no time such as 2026-03-01T08:15:00.000Z"_s.arg(shown(word)));
    return time;
}

bool isHexDigit(char byte)
{
    return std::isxdigit(static_cast<unsigned char>(byte)) != 0;
}

/// Whether @p word is graphic ASCII in which each escape is whole.
bool isEscapedName(const QByteArray& word)
{
    for (qsizetype i = 0; i < word.size(); ++i) {
        if (word[i] <= ' ' || word[i] > '~')
            return false;
        if (word[i] == kEscape && (word.size() - i < 3 || !isHexDigit(word[i + 1]) || !isHexDigit(word[i + 2])))
            return false;
    }
    return true;
}

/// The name that @p word stands for; what it names is @p what.
QCString nameFrom(const QByteArray& word, const char* what)
{
    QCString name = QCString::fromPercentEncoding(word, kEscape);
    if (!isEscapedName(word) || name.contains('\0'))
        throw failure(u"'%1' is no name of a %2"_s.arg(shown(word), QLatin1String(what)));
    return name;
}

QByteArray payloadFrom(const QByteArray& word)
{
    if (word == kEmptyPayload)
        return {};
    QByteArray payload = QByteArray::fromHex(word);
    if (payload.toHex() != word.toLower())
        throw failure(u"the payload '%1' is no even number of hexadecimal digits"_s.arg(shown(word)));
    return payload;
}

QList<QByteArray> wordsOf(const QByteArray& line)
{
    const qsizetype end = line.indexOf(kCommentMark);
    QList<QByteArray> words = line.first(end < 0 ? line.size() : end).split(' ');
    words.removeAll(QByteArray());
    return words;
}

} // namespace

QByteArray recordingHeader()
{
    return kHeader + QByteArray::number(kVersion);
}

void checkRecordingHeader(const QByteArray& line)
{
    if (line == recordingHeader())
        return;
    if (!line.startsWith(kHeader))
        throw failure(u"no recording: it does not begin with '%1'"_s.arg(QLatin1String(recordingHeader())));
    throw failure(u"a recording of version %1; this program reads version %2"_s.arg(
        shown(line.mid(qsizetype(sizeof kHeader) - 1)), QString::number(kVersion)));
}

bool isRecordingComment(const QByteArray& line)
{
    if (line.startsWith(kHeader))
        checkRecordingHeader(line);
    return line.isEmpty() || line.startsWith(kCommentMark);
}

QByteArray recordingLine(const ReceivedMessage& message)
{
    const QByteArray payload = message.payload.isEmpty() ? kEmptyPayload : message.payload.toHex();
    return timeText(message.time) + ' ' + escaped(message.channel).leftJustified(kChannelWidth) + ' '
           + escaped(message.name).leftJustified(kNameWidth) + ' ' + payload + comment(message) + '\n';
}

ReceivedMessage messageFromLine(const QByteArray& line)
{
    const QList<QByteArray> words = wordsOf(line);
    if (words.size() < ColumnCount)
        throw failure(u"missing %1"_s.arg(QLatin1String(kColumns[size_t(words.size())])));
    if (words.size() > ColumnCount)
        throw failure(u"superfluous '%1'"_s.arg(shown(words[ColumnCount])));
    ReceivedMessage message{timeFrom(words[TimeColumn]), nameFrom(words[ChannelColumn], kColumns[ChannelColumn]),
                            nameFrom(words[NameColumn], kColumns[NameColumn]), payloadFrom(words[PayloadColumn])};
    if (message.name.size() + message.payload.size() > zyn::kMessageLimit)
        throw failure(u"the message's name and payload have more than %1 bytes"_s.arg(zyn::kMessageLimit));
    return message;
}

} // namespace zyn::tool
