// The messages that a file holds as they were recorded.
#include "tools/recording/Recording.h"

#include "tools/recording/RecordingLine.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QFile>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The next line of @p file without its end; nothing when there is none. Every line goes through @p buffer: one of that
/// size for each would cost more than all that is done with it.
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
    // A line that is cut short may look whole: half of a payload is one too.
    if (!line.endsWith('\n'))
        throw failure(u"the line is cut short"_s);
    line.chop(line.endsWith("\r\n") ? 2 : 1);
    if (!QByteArrayView(line).isValidUtf8())
        throw failure(u"the line is not UTF-8"_s);
    return line;
}

} // namespace

Recording::Recording(const QString& path)
    : m_path(path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw failure(u"cannot read %1: %2"_s.arg(path, file.errorString()));
    QByteArray buffer(kLongestRecordingLine + 2, Qt::Uninitialized); // which leaves room for a NUL
    qint64 number = 1;
    try {
        std::optional<QByteArray> line = nextLine(file, buffer);
        checkRecordingHeader(line.value_or(QByteArray()));
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

QSet<QCString> Recording::channels() const
{
    QSet<QCString> channels;
    for (const ReceivedMessage& message : m_messages)
        channels += message.channel;
    return channels;
}

} // namespace zyn::tool
