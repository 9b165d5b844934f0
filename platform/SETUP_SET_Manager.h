// The settings store.
#pragma once

#include "platform/AM_Global.h"
#include "platform/ZynExport.h"

#include <QtCore/QString>

#include <memory>

/**
 * One settings file: `[group]` lines, each followed by `key=value` lines, UTF-8.
 *
 * A value is every character after the first `=` of its line, blanks included, and a group every character between the
 * outer brackets. A value that begins with U+FEFF is a text that a line cannot hold otherwise: behind that `\n` and
 * `\r` stand for line breaks, `\uNNNN` for half a surrogate pair or U+FEFF, and `\\` for a backslash. Lines that begin
 * with `#` or `;`, and lines that are neither of the two forms or not UTF-8, are passed over when reading and kept when
 * writing. A group ends where the next begins, even one whose name is not UTF-8. When a key stands twice in a group,
 * the last one counts.
 *
 * Every get returns what the file contains at that moment. Each thread keeps the contents that it has read, and checks
 * with one system call whether the file is still the same. A set is on disk when it returns. A lock file beside the
 * settings file keeps processes from losing each other's sets; a set that does not get the lock within 5 seconds fails.
 * A file of more than 1 MiB is neither read nor written. An object is used from one thread at a time.
 *
 * Any text can be a value. A set refuses names that a line cannot hold: a group or key with a line break, or with
 * characters that UTF-8 would not restore (half a surrogate pair, a leading byte order mark); an empty key; a key with
 * `=` or outer blanks, or one that begins with `[`, `#` or `;`.
 */
class ZYN_EXPORT SETUP_SET_Manager
{
public:
    /// The settings of application @p app: the file zyn_app<number>.cfg in the settings directory ("setup" under
    /// ZYN_APP_WRITE_PATH, or the user's configuration directory). The second argument has no effect.
    SETUP_SET_Manager(AM_Global::Apps app, bool);
    /// The settings in the file @p path, which need not exist. The second argument has no effect.
    SETUP_SET_Manager(QString path, bool);
    ~SETUP_SET_Manager();
    SETUP_SET_Manager(const SETUP_SET_Manager&) = delete;
    SETUP_SET_Manager& operator=(const SETUP_SET_Manager&) = delete;

    /// @{
    /// Sets @p value to the stored value of @p key in @p group, or to @p defaultValue when the file, the group or the
    /// key is missing or the stored text is not a value of that type: a number is a whole decimal number within the
    /// type's range, a bool is 0, 1, true or false, both with any blanks around.
    /// @return whether the stored value was used. The bool behind a text's default has no effect.
    bool getSettingInfo(QString group, QString key, int& value, int defaultValue);
    bool getSettingInfo(QString group, QString key, unsigned int& value, unsigned int defaultValue);
    bool getSettingInfo(QString group, QString key, bool& value, bool defaultValue);
    bool getSettingInfo(QString group, QString key, QString& value, QString defaultValue, bool = false);
    /// @}

    /// @{
    /// Stores @p value under @p key in @p group, creating the file, its directory and the group as needed.
    /// @return whether it is on disk. The bool behind a text has no effect.
    bool setSettingInfo(QString group, QString key, int value);
    bool setSettingInfo(QString group, QString key, bool value);
    bool setSettingInfo(QString group, QString key, QString value, bool = false);
    /// A literal would quietly become a bool.
    bool setSettingInfo(QString group, QString key, const char* value) = delete;
    /// @}

    /// Every set is on disk already; false when one of this object's sets failed.
    bool flush();

private:
    class Private;
    std::unique_ptr<Private> d;
};
