// Log lines on standard error.
#include "handset/common/Log.h"

#include "handset/common/Text.h"
#include "platform/posix/UnixSocket_p.h"

#include <QtCore/QCoreApplication>

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::handset {

void log(const QString& text)
{
    if (!posix::waitUntilWritable(STDERR_FILENO, posix::Clock::now()))
        return;
    const QByteArray line = (QCoreApplication::applicationName() + ": "_L1 + printable(text)).toLocal8Bit() + '\n';
    std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), stderr);
}

} // namespace zyn::handset
