// Captures what is written to standard output or to standard error, by whatever means.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QTemporaryFile>

#include <cstdio>

#include <unistd.h>

/// From its construction to take() or its destruction, standard output or another stream goes to a file: printf,
/// streams and C code alike.
class StdoutCapture
{
public:
    explicit StdoutCapture(std::FILE* stream = stdout)
        : m_stream(stream)
    {
        m_file.open();
        std::fflush(m_stream);
        m_real.reset(::dup(::fileno(m_stream)));
        ::dup2(m_file.handle(), ::fileno(m_stream));
    }
    StdoutCapture(const StdoutCapture&) = delete;
    StdoutCapture& operator=(const StdoutCapture&) = delete;
    ~StdoutCapture() { restore(); }

    /// Ends the capture and gives all that was written.
    QByteArray take()
    {
        restore();
        m_file.seek(0);
        return m_file.readAll();
    }

private:
    void restore()
    {
        if (!m_real.isValid())
            return;
        std::fflush(m_stream);
        ::dup2(m_real.get(), ::fileno(m_stream));
        m_real.reset();
    }

    std::FILE* m_stream;
    QTemporaryFile m_file;
    zyn::posix::UniqueFd m_real;
};
