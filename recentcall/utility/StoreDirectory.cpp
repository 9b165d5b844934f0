// The directory of the record files and of the activity log.
#include "recentcall/utility/StoreDirectory_p.h"

#include "platform/posix/Place_p.h"

#include <QtCore/QFile>

namespace zyn {

QByteArray storeDirectoryPath()
{
    const QByteArray dataDirectory = qgetenv("ZYN_LOCAL_APP_WRITE_PATH").trimmed();
    return (dataDirectory.isEmpty() ? QByteArrayLiteral("/tmp") : dataDirectory) + "/phone";
}

QString storePath(const QString& name)
{
    return QFile::decodeName(storeDirectoryPath()) + u'/' + name;
}

void makeStoreDirectory()
{
    constexpr mode_t kDirectoryMode = 0777; // less the process's umask
    posix::makeDirectory(storeDirectoryPath(), kDirectoryMode);
}

} // namespace zyn
