// A disk that is soon full.
#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>

#include <sys/mount.h>

/// A file system of a few pages over a directory, for as long as the object lives. It needs a private mount namespace.
class SmallDisk
{
public:
    SmallDisk(const QString& directory, const char* size)
        : m_directory(directory)
        , m_isMounted(::mount("tmpfs", path().constData(), "tmpfs", 0, QByteArray("size=") + size) == 0)
    {}
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk()
    {
        if (m_isMounted)
            ::umount2(path().constData(), MNT_DETACH);
    }

    bool isMounted() const { return m_isMounted; }

    /// Takes all the space that is left, but for @p pages of it.
    void fill(int pages = 0) const
    {
        constexpr qint64 kPage = 4096;
        QFile file(filler());
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return;
        while (file.write(QByteArray(kPage, 'x')) > 0) {
        }
        file.resize(file.size() - pages * kPage);
    }
    /// Gives the space back.
    void clear() const { QFile::remove(filler()); }

private:
    QByteArray path() const { return QFile::encodeName(m_directory); }
    QString filler() const { return m_directory + QLatin1String("/note"); }

    const QString m_directory;
    const bool m_isMounted;
};
