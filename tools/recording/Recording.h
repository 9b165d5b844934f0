// Recordings of messages: format, reader and writer.
#pragma once

#include "platform/QCString.h"
#include "tools/recording/MessageText.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>
#include <vector>

namespace zyn::tool {

/// The first line of a recording, without its end.
QByteArray recordingHeader();

/// Throws a failure if @p line is not a header, or that of an unsupported version.
void checkRecordingHeader(const QByteArray& line);

/// Whether @p line, after the first, contains no message. Throws a failure for the header of another version.
bool isRecordingComment(const QByteArray& line);

/// The longest line accepted, with its end: any message of a channel fits.
inline constexpr qsizetype kLongestRecordingLine = qsizetype{64} * 1024 * 1024;

/// @p message as a line with its end; its time has milliseconds.
QByteArray recordingLine(const ReceivedMessage& message);

/// The message in @p line, which has no end; its time is UTC. Throws a failure if the line is invalid.
ReceivedMessage messageFromLine(const QByteArray& line);

/// A recording, fully read and checked.
class Recording
{
public:
    /// Reads the file @p path. Throws a failure that names the file and, if damaged, the line.
    explicit Recording(const QString& path);

    /// Keeps only messages on @p channels, unless that is empty. Throws a failure if one of them has no message.
    void keepOnly(const QStringList& channels);

    /// Removes the messages that ask for something, and returns them.
    std::vector<ReceivedMessage> takeRequests();

    /// The channels in the recording.
    QSet<QCString> channels() const;

    /// Whether it begins as older versions have written it.
    bool isOlder() const { return m_isOlder; }

    /// Ordered by time, in UTC.
    const std::vector<ReceivedMessage>& messages() const { return m_messages; }

private:
    void addLine(const QByteArray& line);

    QString m_path;
    bool m_isOlder = false;
    std::vector<ReceivedMessage> m_messages;
};

/// Writes a recording. Each message is in the file when write() returns; the file always ends with a whole line.
class RecordingWriter
{
public:
    /// What to do with an existing file.
    enum class Existing {
        Refuse,
        Replace,
        Append, ///< continue it; it must be a valid recording
    };

    /// Creates or opens the file @p path. Throws a failure.
    RecordingWriter(const QString& path, Existing existing);

    /// Adds a message; false if it cannot be written. Where its time is before that of the last one, that of the last
    /// one is written; what is added to a recording that ends later begins at its end.
    bool write(ReceivedMessage message);

    /// The error as one line.
    QString errorText() const { return m_error; }

private:
    bool writeLine(const QByteArray& line);
    bool fail();

    QFile m_file;
    QString m_error;
    QDateTime m_last;              ///< the time of the last message
    std::optional<qint64> m_shift; ///< added to the times of messages, in milliseconds
};

} // namespace zyn::tool
