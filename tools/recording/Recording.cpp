// Recordings of messages: format, reader and writer.
#include "tools/recording/Recording.h"

#include "platform/qcop/ChannelFrame_p.h"
#include "tools/recording/MessageFields.h"
#include "tools/recording/Requests.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/Text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr char kHeader[] = "# zynphone recording, version ";
constexpr int kVersion = 2;
constexpr int kOldestVersion = 1;
constexpr char kCommentMark = '#';
constexpr char kEscape = '%';
constexpr char kNothing[] = "-"; ///< an empty payload; nobody
constexpr char kUnknown[] = "?";
constexpr char kBetweenHearers = ',';
constexpr char kProcessMark = '@';

/// Graphic ASCII that percent-encoding would escape.
constexpr char kPlain[] = "!\"$&'()*+,/:;<=>?@[\\]^`{|}";

constexpr qsizetype kChannelColumn = 20;
constexpr qsizetype kNameColumn = 16;
constexpr qsizetype kMostHearers = 4096;
constexpr qsizetype kLongestComment = 200;
constexpr qsizetype kShownWord = 40;

enum Column : qsizetype {
    TimeColumn,
    ChannelColumn,
    NameColumn,
    PayloadColumn,
    SenderColumn,
    HearersColumn,
    ColumnCount,
    OldColumnCount = SenderColumn, ///< of a line without sender and hearers
};
constexpr std::array<const char*, ColumnCount> kRecordingColumns{"time",    "channel", "message",
                                                                 "payload", "sender",  "hearers"};

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

/// The line as text for people.
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

/// "program@process", or "?".
QByteArray participantText(const Participant& participant)
{
    if (!participant.isKnown())
        return kUnknown;
    const QByteArray program = participant.program.toUtf8().toPercentEncoding();
    return program + kProcessMark + QByteArray::number(qint64{participant.process});
}

QByteArray hearersText(const std::optional<QList<Participant>>& hearers)
{
    if (!hearers)
        return kUnknown;
    QByteArrayList texts;
    for (const Participant& hearer : *hearers)
        texts += participantText(hearer);
    return texts.isEmpty() ? QByteArray(kNothing) : texts.join(kBetweenHearers);
}

QDateTime timeFrom(const QByteArray& word)
{
    QDateTime time = QDateTime::fromString(QString::fromLatin1(word), Qt::ISODateWithMs);
    if (!time.isValid() || timeText(time) != word)
        throw failure(u"'%1' is not a time such as 2026-03-01T08:15:00.000Z"_s.arg(shown(word)));
    return time;
}

bool isHexDigit(char byte)
{
    return std::isxdigit(static_cast<unsigned char>(byte)) != 0;
}

/// Whether @p word is graphic ASCII with valid escapes.
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

/// The name encoded in @p word; @p what describes it in errors.
QCString nameFrom(const QByteArray& word, const char* what)
{
    QCString name = QCString::fromPercentEncoding(word, kEscape);
    if (!isEscapedName(word) || name.contains('\0'))
        throw failure(u"'%1' is not the name of a %2"_s.arg(shown(word), QLatin1String(what)));
    return name;
}

QByteArray payloadFrom(const QByteArray& word)
{
    if (word == kNothing)
        return {};
    QByteArray payload = QByteArray::fromHex(word);
    if (payload.toHex() != word.toLower())
        throw failure(u"the payload '%1' is not an even number of hexadecimal digits"_s.arg(shown(word)));
    return payload;
}

Participant participantFrom(const QByteArray& word)
{
    if (word == kUnknown)
        return {};
    const qsizetype mark = word.lastIndexOf(kProcessMark);
    bool isNumber = false;
    const qint64 process = word.mid(mark + 1).toLongLong(&isNumber);
    if (mark < 0 || !isNumber || process <= 0 || !isEscapedName(word))
        throw failure(u"'%1' is not a process such as zynphone@123"_s.arg(shown(word)));
    return {QString::fromUtf8(QByteArray::fromPercentEncoding(word.first(mark))), process};
}

std::optional<QList<Participant>> hearersFrom(const QByteArray& word)
{
    if (word == kUnknown)
        return std::nullopt;
    QList<Participant> hearers;
    const QByteArrayList texts = word == kNothing ? QByteArrayList() : word.split(kBetweenHearers);
    if (texts.size() > kMostHearers)
        throw failure(u"more than %1 hearers"_s.arg(kMostHearers));
    for (const QByteArray& text : texts)
        hearers += participantFrom(text);
    return hearers;
}

QList<QByteArray> wordsOf(const QByteArray& line)
{
    const qsizetype end = line.indexOf(kCommentMark);
    QList<QByteArray> words = line.first(end < 0 ? line.size() : end).split(' ');
    words.removeAll(QByteArray());
    return words;
}

/// The next line of @p file without its end, if any. Sharing @p buffer saves an allocation of its size per line, which
/// would dominate the cost.
std::optional<QByteArray> nextLine(QFile& file, QByteArray& buffer)
{
    const qint64 length = file.readLine(buffer.data(), buffer.size());
    if (file.error() != QFileDevice::NoError)
        throw failure(file.errorString());
    if (length <= 0)
        return std::nullopt;
    QByteArray line = buffer.first(static_cast<qsizetype>(length));
    if (line.size() > kLongestRecordingLine)
        throw failure(u"the line is longer than %1 bytes"_s.arg(kLongestRecordingLine));
    // A truncated line may look valid: half of a payload is a payload.
    if (!line.endsWith('\n'))
        throw failure(u"the line is cut short"_s);
    line.chop(line.endsWith("\r\n") ? 2 : 1);
    if (!QByteArrayView(line).isValidUtf8())
        throw failure(u"the line is not UTF-8"_s);
    return line;
}

} // namespace

QByteArray recordingHeader()
{
    return kHeader + QByteArray::number(kVersion);
}

void checkRecordingHeader(const QByteArray& line)
{
    if (!line.startsWith(kHeader))
        throw failure(u"no recording: it does not begin with '%1'"_s.arg(QLatin1String(recordingHeader())));
    const QByteArray version = line.mid(qsizetype(sizeof kHeader) - 1);
    for (int known = kOldestVersion; known <= kVersion; ++known) {
        if (version == QByteArray::number(known))
            return;
    }
    throw failure(u"a recording of version %1; this program reads versions %2 to %3"_s.arg(
        shown(version), QString::number(kOldestVersion), QString::number(kVersion)));
}

bool isRecordingComment(const QByteArray& line)
{
    if (line.startsWith(kHeader))
        checkRecordingHeader(line);
    return line.isEmpty() || line.startsWith(kCommentMark);
}

QByteArray recordingLine(const ReceivedMessage& message)
{
    const QByteArray payload = message.payload.isEmpty() ? kNothing : message.payload.toHex();
    return timeText(message.time) + ' ' + escaped(message.channel).leftJustified(kChannelColumn) + ' '
           + escaped(message.name).leftJustified(kNameColumn) + ' ' + payload + ' ' + participantText(message.sender)
           + ' ' + hearersText(message.hearers) + comment(message) + '\n';
}

ReceivedMessage messageFromLine(const QByteArray& line)
{
    const QList<QByteArray> words = wordsOf(line);
    if (words.size() < ColumnCount && words.size() != OldColumnCount)
        throw failure(u"missing %1"_s.arg(QLatin1String(kRecordingColumns[size_t(words.size())])));
    if (words.size() > ColumnCount)
        throw failure(u"superfluous '%1'"_s.arg(shown(words[ColumnCount])));
    ReceivedMessage message{
        timeFrom(words[TimeColumn]), nameFrom(words[ChannelColumn], kRecordingColumns[ChannelColumn]),
        nameFrom(words[NameColumn], kRecordingColumns[NameColumn]), payloadFrom(words[PayloadColumn])};
    if (words.size() == ColumnCount) {
        message.sender = participantFrom(words[SenderColumn]);
        message.hearers = hearersFrom(words[HearersColumn]);
    }
    if (message.name.size() + message.payload.size() > kMessageLimit)
        throw failure(u"the message's name and payload have more than %1 bytes"_s.arg(kMessageLimit));
    return message;
}

Recording::Recording(const QString& path)
    : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw failure(u"cannot read %1: %2"_s.arg(path, file.errorString()));
    QByteArray buffer(kLongestRecordingLine + 2, Qt::Uninitialized); // with room for a NUL
    qint64 number = 1;
    try {
        std::optional<QByteArray> line = nextLine(file, buffer);
        checkRecordingHeader(line.value_or(QByteArray()));
        m_isOlder = line != recordingHeader();
        while (line) {
            ++number;
            line = nextLine(file, buffer);
            if (line)
                addLine(*line);
        }
    } catch (const CommandError& error) {
        throw failure(u"%1:%2: %3"_s.arg(path, QString::number(number), error.message()));
    }
}

void Recording::addLine(const QByteArray& line)
{
    if (isRecordingComment(line))
        return;
    ReceivedMessage message = messageFromLine(line);
    if (!m_messages.empty() && message.time < m_messages.back().time)
        throw failure(u"the time is before that of the message before it"_s);
    m_messages.push_back(std::move(message));
}

void Recording::keepOnly(const QStringList& channels)
{
    if (channels.isEmpty())
        return;
    const QSet<QCString> known = this->channels();
    QSet<QCString> wanted;
    for (const QString& channel : channels) {
        wanted += channel.toUtf8();
        if (!known.contains(channel.toUtf8()))
            throw failure(u"%1 holds no message of the channel '%2'"_s.arg(m_path, channel));
    }
    std::erase_if(m_messages, [&wanted](const ReceivedMessage& message) { return !wanted.contains(message.channel); });
}

std::vector<ReceivedMessage> Recording::takeRequests()
{
    const auto tells = [](const ReceivedMessage& message) {
        return requestedAction(message.channel, message.name).isEmpty();
    };
    const auto requests = std::stable_partition(m_messages.begin(), m_messages.end(), tells);
    std::vector<ReceivedMessage> taken(std::make_move_iterator(requests), std::make_move_iterator(m_messages.end()));
    m_messages.erase(requests, m_messages.end());
    return taken;
}

QSet<QCString> Recording::channels() const
{
    QSet<QCString> channels;
    for (const ReceivedMessage& message : m_messages)
        channels += message.channel;
    return channels;
}

RecordingWriter::RecordingWriter(const QString& path, Existing existing)
    : m_file(path)
{
    const bool wasThere = m_file.exists();
    bool isOlder = false; // what an older version has written
    const bool isNew = existing != Existing::Append || !wasThere;
    if (!isNew) {
        const Recording before(path);
        isOlder = before.isOlder();
        if (!before.messages().empty())
            m_last = before.messages().back().time;
    } else if (existing == Existing::Refuse && wasThere) {
        throw failure(u"%1 exists; --force replaces it, --append adds to it"_s.arg(path));
    }
    const QIODevice::OpenMode mode = !isNew                          ? QIODevice::Append
                                     : existing == Existing::Replace ? QIODevice::Truncate
                                                                     : QIODevice::NewOnly;
    // It has numbers and names of calls: a new one is the user's alone.
    const bool isOpen = m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode,
                                    QFileDevice::ReadOwner | QFileDevice::WriteOwner)
                        || fail();
    if (!isOpen)
        throw failure(m_error);
    if ((isNew || isOlder) && !writeLine(recordingHeader() + '\n')) {
        if (!wasThere)
            m_file.remove();
        throw failure(m_error);
    }
}

bool RecordingWriter::write(ReceivedMessage message)
{
    if (!m_shift)
        m_shift = m_last.isValid() ? std::max<qint64>(message.time.msecsTo(m_last), 0) : 0;
    message.time = message.time.addMSecs(*m_shift);
    if (m_last.isValid() && message.time < m_last)
        message.time = m_last;
    m_last = message.time;
    return writeLine(recordingLine(message));
}

bool RecordingWriter::writeLine(const QByteArray& line)
{
    const qint64 size = m_file.size();
    const qint64 written = m_file.write(line);
    // The system gives a reason only when nothing more can be written.
    if (written == line.size())
        return true;
    const QByteArray rest = line.mid(static_cast<qsizetype>(written));
    if (written > 0 && m_file.write(rest) == rest.size())
        return true;
    fail();
    m_file.resize(size);
    return false;
}

bool RecordingWriter::fail()
{
    m_error = u"cannot write %1: %2"_s.arg(m_file.fileName(), m_file.errorString());
    return false;
}

} // namespace zyn::tool
