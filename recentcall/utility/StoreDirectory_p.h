// The directory of the record files and of the activity log.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn {

/// The path of the store directory: "/phone" under the directory that the environment variable
/// ZYN_LOCAL_APP_WRITE_PATH names, blanks around it removed, or under "/tmp" when that is unset or empty.
QByteArray storeDirectoryPath();

/// The path of the file @p name in the store directory.
QString storePath(const QString& name);

/// Creates the store directory (one level) unless it exists.
void makeStoreDirectory();

} // namespace zyn
