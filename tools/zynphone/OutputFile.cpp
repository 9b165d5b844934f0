// A file that the tool writes.
#include "tools/zynphone/OutputFile.h"

#include "tools/zynphone/ExitCode.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

using namespace Qt::StringLiterals;

namespace {

bool writeWhole(QFileDevice& file, const QByteArray& contents)
{
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() && file.flush();
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
    requireDone(writeWhole(file, contents) && file.commit(), file);
}

} // namespace zyn::tool
