// A file that the tool writes.
#include "tools/zynphone/OutputFile.h"

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr mode_t kPermissions = 07777;

bool writeWhole(QFileDevice& file, const QByteArray& contents)
{
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush();
}

/// Gives @p file the owner and the permissions of the one that it replaces, as far as this process may.
void takeAfterOld(const QSaveFile& file)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(file.fileName()).constData(), &status) != 0)
        return;
    [[maybe_unused]] const int result = ::fchown(file.handle(), status.st_uid, status.st_gid);
    ::fchmod(file.handle(), status.st_mode & kPermissions);
}

void requireDone(bool isDone, const QFileDevice& file)
{
    if (!isDone)
        throw zyn::tool::failure(u"cannot write %1: %2"_s.arg(file.fileName(), file.errorString()));
}

} // namespace

namespace zyn::tool {

void writeFile(const QString& path, const QByteArray& contents)
{
    // A new file must not take the place of a device or a pipe.
    const QFileInfo place(path);
    if (place.exists() && !place.isFile()) {
        QFile file(path);
        requireDone(writeWhole(file, contents), file);
        return;
    }
    QSaveFile file(path);
    requireDone(writeWhole(file, contents), file);
    takeAfterOld(file);
    requireDone(file.commit(), file);
}

} // namespace zyn::tool
