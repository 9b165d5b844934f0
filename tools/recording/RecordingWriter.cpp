// Records messages in a file as they come.
#include "tools/recording/RecordingWriter.h"

#include "tools/zynphone/ExitCode.h"
#include "tools/recording/Recording.h"
#include "tools/recording/RecordingLine.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {

RecordingWriter::RecordingWriter(const QString& path, Existing existing)
    : m_file(path)
{
    const bool wasThere = m_file.exists();
    const bool isNew = existing != Existing::Append || !wasThere;
    if (!isNew) {
        const Recording before(path);
        if (!before.messages().empty())
            m_start = std::max(m_start, before.messages().back().time);
    } else if (existing == Existing::Refuse && wasThere) {
        throw failure(u"%1 exists; --force replaces it, --append adds to it"_s.arg(path));
    }
    const QIODevice::OpenMode mode = !isNew                          ? QIODevice::Append
                                     : existing == Existing::Replace ? QIODevice::Truncate
                                                                     : QIODevice::NewOnly;
    const bool isOpen = m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered | mode) || fail();
    if (!isOpen)
        throw failure(m_error);
    if (isNew && !writeLine(recordingHeader() + '\n')) {
        if (!wasThere)
            m_file.remove();
        throw failure(m_error);
    }
    m_sinceStart.start();
}

bool RecordingWriter::write(const QCString& channel, const QCString& name, const QByteArray& payload)
{
    return writeLine(recordingLine({now(), channel, name, payload}));
}

bool RecordingWriter::writeLine(const QByteArray& line)
{
    const qint64 size = m_file.size();
    const qint64 written = m_file.write(line);
    // Only when nothing more can be written the system says why.
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
