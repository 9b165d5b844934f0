// The directory of the record files and of the activity log.
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace zyn {

QString storeDirectoryPath()
{
    const QString dataDirectory = QFile::decodeName(qgetenv("ZYN_LOCAL_APP_WRITE_PATH").trimmed());
    return (dataDirectory.isEmpty() ? QStringLiteral("/tmp") : dataDirectory) + QLatin1String("/phone");
}

QString storeDirectory()
{
    const QString path = storeDirectoryPath();
    if (!QFileInfo::exists(path))
        QDir().mkdir(path);
    return path;
}

} // namespace zyn
