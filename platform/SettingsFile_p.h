// Settings files: where they are, and how one is read and changed.
#pragma once

#include "platform/AM_Global.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

namespace zyn {

/// The environment variable that names the directory of "setup".
inline constexpr char kSettingsPlace[] = "ZYN_APP_WRITE_PATH";

/// The directory of the settings files, which need not exist: "setup" under the directory that the environment variable
/// names, or under the user's configuration directory when that is unset or empty.
QString settingsDirectory();

/// The settings file of application @p app.
QString settingsFile(AM_Global::Apps app);

/// The text that the stored bytes @p value stand for.
QString settingText(const QByteArray& value);

/// The stored bytes @p value without the blanks around them; nothing when they hold a NUL, at which a conversion would
/// end too early.
QByteArray settingWord(const QByteArray& value);

/// The number that the stored bytes @p value stand for, if they do.
std::optional<int> settingInt(const QByteArray& value);

/// A settings file in the format that SETUP_SET_Manager describes.
class SettingsFile
{
public:
    explicit SettingsFile(QString path)
        : m_path(std::move(path))
    {}

    /// The bytes stored under @p key in @p group, read now.
    std::optional<QByteArray> value(const QString& group, const QString& key) const;

    /// The numbers, from 1, of the lines that are passed over though they are neither blank nor comments; nothing when
    /// the file cannot be read.
    std::optional<QList<int>> strayLines() const;

    /// Stores @p value; false when a line cannot hold the names or it could not be brought to disk. Waits up to 5
    /// seconds for another writer; where that was in vain, later calls fail without waiting.
    bool setValue(const QString& group, const QString& key, const QString& value);

private:
    QString m_path;
    bool m_isLockedOut = false; ///< another writer kept its lock for too long
};

} // namespace zyn
