// Recordings of messages: the line that stands for one, reading them, and writing them as they come.
#pragma once

#include "platform/QCString.h"
#include "tools/recording/MessageText.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace zyn::tool {

/// The first line of a recording, without its end.
QByteArray recordingHeader();

/// A failure when @p line is no header, or that of a version that cannot be read.
void checkRecordingHeader(const QByteArray& line);

/// Whether @p line, which is not the first, holds no message. A failure when it is a header of another version.
bool isRecordingComment(const QByteArray& line);

/// The longest line that a reader takes, its end included: any message that a channel takes fits.
inline constexpr qsizetype kLongestRecordingLine = qsizetype{64} * 1024 * 1024;

/// @p message as a line, with its end; its time is kept to the millisecond.
QByteArray recordingLine(const ReceivedMessage& message);

/// The message of @p line, which has no end; the time is UTC. A failure that tells what is wrong.
ReceivedMessage messageFromLine(const QByteArray& line);

/// A recording, read and checked whole.
class Recording
{
public:
    /// Reads the file @p path. A failure that names the file, and the line that is damaged, if any is.
    explicit Recording(const QString& path);

    /// Leaves out what is not on one of @p channels, unless that is empty. A failure when one of them has no message.
    void keepOnly(const QStringList& channels);

    /// The channels that have messages.
    QSet<QCString> channels() const;

    /// In the order of their times, which are UTC.
    const std::vector<ReceivedMessage>& messages() const { return m_messages; }

private:
    void addLine(const QByteArray& line);

    QString m_path;
    std::vector<ReceivedMessage> m_messages;
};

/// A recording that grows. Each message is in the file when write() returns; the file always ends in a whole line.
class RecordingWriter
{
public:
    /// What is to become of a file that exists.
    enum class Existing {
        Refuse,
        Replace,
        Append, ///< it must be a sound recording
    };

    /// Makes the file @p path, or opens it. A failure when it cannot.
    RecordingWriter(const QString& path, Existing existing);

    /// Adds a message that has come now; false when it cannot be written.
    bool write(const QCString& channel, const QCString& name, const QByteArray& payload);

    /// What went wrong, as one line.
    QString errorText() const { return m_error; }

private:
    bool writeLine(const QByteArray& line);
    bool fail();
    QDateTime now() const { return m_start.addMSecs(m_sinceStart.elapsed()); }

    QFile m_file;
    QString m_error;
    /// Someone may set the clock meanwhile; the pauses stay what they are.
    QDateTime m_start = QDateTime::currentDateTimeUtc();
    QElapsedTimer m_sinceStart;
};

} // namespace zyn::tool
