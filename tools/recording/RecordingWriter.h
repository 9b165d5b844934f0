// Records messages in a file as they come.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QString>

namespace zyn::tool {

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
