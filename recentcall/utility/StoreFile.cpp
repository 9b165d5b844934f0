// What every store file has in common: its header, and how it comes into being.
#include "recentcall/utility/StoreFile_p.h"

#include "platform/posix/File_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <span>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// A complete file under a name of its own, from which it is renamed into place; it goes with the object otherwise.
class StagedFile
{
public:
    explicit StagedFile(const QString& target)
        : m_path(target + QStringLiteral(".new.%1").arg(::getpid()))
    {
    }
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile()
    {
        if (m_exists)
            QFile::remove(m_path);
    }

    bool write(const QByteArray& contents)
    {
        // A file of this name can only be what a process of the same number left when it was killed.
        QFile::remove(m_path);
        const zyn::posix::UniqueFd fd = zyn::posix::createNew(m_path);
        m_exists = fd.isValid();
        return m_exists
               && zyn::posix::writeAt(fd.get(), std::as_bytes(std::span(contents.data(), size_t(contents.size()))), 0);
    }

    bool moveTo(const QString& target) { return done(zyn::posix::renameWithoutReplacing(m_path, target)); }
    bool moveOver(const QString& target)
    {
        return done(std::rename(QFile::encodeName(m_path).constData(), QFile::encodeName(target).constData()) == 0);
    }

private:
    bool done(bool moved)
    {
        m_exists = m_exists && !moved;
        return moved;
    }

    QString m_path;
    bool m_exists = false;
};

} // namespace

namespace zyn {

bool isStoreFile(const QString& path, qint64 size)
{
    const posix::UniqueFd fd = posix::openForReading(path);
    struct stat status = {};
    if (!fd.isValid() || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size != size)
        return false;
    StoreFileHeader header{0, 0};
    return posix::readAt(fd.get(), std::as_writable_bytes(std::span(&header, 1)), 0) == ssize_t{sizeof header}
           && header.isValid();
}

bool createStoreFile(const QString& path, const QByteArray& contents)
{
    StagedFile staged(path);
    if (!staged.write(contents))
        return false;
    if (staged.moveTo(path))
        return true;
    if (isStoreFile(path, contents.size()))
        return true;
    return QFileInfo(path).isWritable() && staged.moveOver(path);
}

} // namespace zyn
