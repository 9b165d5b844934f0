// A thread's cache of settings files: used for as long as the files are unchanged.
#pragma once

#include <QtCore/QAnyStringView>
#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace zyn {

/**
 * The bytes stored under @p key in @p group of the settings file @p path; nothing if it cannot be read or has none.
 *
 * Costs one look at the file's version if that is the version that this thread has read, and it was settled then: the
 * file cannot have changed since. Otherwise the file is read.
 */
std::optional<QByteArray> storedSetting(const QString& path, QAnyStringView group, QAnyStringView key);

/// The path of the file @p name in the directory of the settings files. Each thread keeps the last one for as long as
/// the environment variable names the same directory.
QString settingsPath(const char* name);

} // namespace zyn
