// Captures what is written to standard output, by whatever means.
#pragma once

#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QTemporaryFile>

#include <cstdio>

#include <unistd.h>

/// From its construction to take() or its destruction, standard output goes to a file: printf, streams and C code
/// alike.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        m_file.open();
        std::fflush(stdout);
        m_real.reset(::dup(STDOUT_FILENO));
        ::dup2(m_file.handle(), STDOUT_FILENO);
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
        std::fflush(stdout);
        ::dup2(m_real.get(), STDOUT_FILENO);
        m_real.reset();
    }

    QTemporaryFile m_file;
    zyn::posix::UniqueFd m_real;
};
