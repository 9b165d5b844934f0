// What a thread has read of settings files, kept for as long as the files are what they were.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace zyn {

/**
 * The bytes stored under @p key in @p group of the settings file @p path; nothing when it cannot be read or has none.
 *
 * Costs one look at the file's version while that is the one that this thread has read, and settled when it was: nobody
 * can have written the file since. Otherwise the file is read.
 */
std::optional<QByteArray> storedSetting(const QString& path, const QString& group, const QString& key);

/// The path of the file @p name in the directory of the settings files. Each thread keeps the last one for as long as
/// the environment variable names the same directory.
QString settingsPath(const char* name);

} // namespace zyn
