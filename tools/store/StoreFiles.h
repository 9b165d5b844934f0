// Reads the files of a store, and backs them up.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <map>
#include <optional>

namespace zyn::tool {

/// The role of a file, by its name.
enum class StoreRole { Calls, Favourites, Contact, SeenCalls, Lock, Leftover, Former, Stranger };

class StoreFiles
{
public:
    /// The contents of each file, by name; unset if it is not a regular file, too large or unreadable.
    using Images = std::map<QString, std::optional<QByteArray>>;

    /// Reads all files of @p directory. Throws if it is not a store, which has a record file or the file of favourites.
    explicit StoreFiles(const QString& directory);

    /// Its absolute path.
    const QString& directory() const { return m_directory; }
    QString path(const QString& name) const;
    const Images& images() const { return m_images; }
    /// The contents of the file @p name; empty if it cannot be read.
    QByteArray image(const QString& name) const;

private:
    QString m_directory;
    Images m_images;
};

/// The numbers in the places 0 to 4 of the file of favourites @p image; none under an invalid header.
std::map<int, QString> favouritesIn(const QByteArray& image);

/// The role of the file @p name, given the @p favourites.
StoreRole roleOf(const QString& name, const std::map<int, QString>& favourites);

/// Whether @p number is one of @p favourites.
bool isAmong(const std::map<int, QString>& favourites, const QString& number);

/// Copies the regular files of @p files, except the lock, to a new directory beside theirs, named with the local time.
/// Returns its path. Throws, and leaves no copy, if a file cannot be copied.
QString copyStore(const StoreFiles& files);

} // namespace zyn::tool
