// A file that the tool writes.
#include "tools/zynphone/OutputFile.h"

#include "platform/posix/StagedFile_p.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

void requireDone(bool isDone, const QString& path, const QString& why)
{
    if (!isDone)
        throw zyn::tool::failure(u"cannot write %1: %2"_s.arg(path, why));
}

} // namespace

void writeFile(const QString& path, const QByteArray& contents)
{
    // A new file must not take the place of a device or a pipe.
    const QFileInfo place(path);
    if (place.exists() && !place.isFile()) {
        QFile file(path);
        const bool isDone = file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush();
        requireDone(isDone, path, file.errorString());
    } else {
        replaceFile(path, contents);
    }
}

void replaceFile(const QString& path, const QByteArray& contents)
{
    const bool isDone = posix::replaceFile(QFile::encodeName(path), contents);
    requireDone(isDone, path, qt_error_string(errno));
}

} // namespace zyn::tool
