// The files of a store directory: read, and copied to be kept.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <map>
#include <optional>

namespace zyn::tool {

/// What a file is in the store, as its name tells.
enum class StoreRole { Calls, Favourites, Contact, SeenCalls, Lock, Leftover, Former, Stranger };

class StoreFiles
{
public:
    /// What each file holds, by its name; nothing for what is no regular file, is too long or cannot be read.
    using Images = std::map<QString, std::optional<QByteArray>>;

    /// Reads all files of @p directory. Throws when it is no store directory: that has the file of a list of calls or
    /// that of the favourites.
    explicit StoreFiles(const QString& directory);

    /// Its absolute path.
    const QString& directory() const { return m_directory; }
    QString path(const QString& name) const;
    const Images& images() const { return m_images; }
    /// What the file @p name holds; empty when there is none that can be read.
    QByteArray image(const QString& name) const;

private:
    QString m_directory;
    Images m_images;
};

/// The numbers in the taken places, 0 to 4, of the favourites' file @p image. None when its header is wrong.
std::map<int, QString> favouritesIn(const QByteArray& image);

/// The role of the file @p name among the files of @p favourites.
StoreRole roleOf(const QString& name, const std::map<int, QString>& favourites);

/// Whether @p number is one of @p favourites.
bool isAmong(const std::map<int, QString>& favourites, const QString& number);

/// Copies the regular files of @p files, but for the lock, into a new directory beside theirs, whose path is the
/// result: the name with the local time behind it. Throws, and leaves no copy, when one of them cannot be copied.
QString copyStore(const StoreFiles& files);

} // namespace zyn::tool
