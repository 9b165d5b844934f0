// Files that other processes change.
#include "qml/module/FileWatch.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QHash>
#include <QtCore/QPointer>

#include <algorithm>
#include <chrono>
#include <utility>

#include <sys/stat.h>

using namespace std::chrono_literals;

namespace zyn::qml {
namespace {

/// A writer needs several steps, each of which is noticed.
constexpr auto kBurst = 50ms;

/// How often the places are looked at again while they change under the look.
constexpr int kLooks = 4;

/// The folder of @p file, or the nearest one above it that is there.
QString nearestFolder(const QString& file)
{
    QString folder = QFileInfo(file).path();
    while (!QFileInfo(folder).isDir()) {
        const QString above = QFileInfo(folder).path();
        if (above == folder)
            break;
        folder = above;
    }
    return folder;
}

/// What is at @p path now: it is another after the path was replaced, and nothing without one.
std::pair<dev_t, ino_t> identityOf(const QString& path)
{
    struct stat place = {};
    if (::stat(QFile::encodeName(path).constData(), &place) != 0)
        return {};
    return {place.st_dev, place.st_ino};
}

/// Watches for all FileWatch objects of the process: the system limits how many may watch, not how much. It is a child
/// of the application object.
class Watcher : public QObject
{
public:
    /// Null when the application has ended.
    static Watcher* instance()
    {
        static QPointer<Watcher> watcher;
        if (!watcher && QCoreApplication::instance())
            watcher = new Watcher(QCoreApplication::instance());
        return watcher.data();
    }

    void add(FileWatch* watch) { m_watches += watch; }

    void remove(FileWatch* watch)
    {
        m_watches.removeOne(watch);
        arm();
    }

    /// Watches what there is of the files now, the folders in which the others would appear, and those above, in which
    /// a folder is replaced.
    void arm()
    {
        for (int look = 0; look < kLooks; ++look) {
            const Places wanted = places();
            const QStringList watched = m_watcher.files() + m_watcher.directories();
            QStringList gone;
            for (const QString& path : watched) {
                // The system watches what a path led to, wherever that is now.
                if (!wanted.contains(path) || wanted.value(path) != m_watched.value(path))
                    gone += path;
            }
            QStringList fresh = wanted.keys();
            fresh.removeIf([&](const QString& path) { return watched.contains(path) && !gone.contains(path); });
            if (gone.isEmpty() && fresh.isEmpty())
                return;
            m_watched = wanted;
            if (!gone.isEmpty())
                m_watcher.removePaths(gone);
            if (!fresh.isEmpty())
                m_watcher.addPaths(fresh);
        }
    }

private:
    /// Paths, and what is there.
    using Places = QHash<QString, std::pair<dev_t, ino_t>>;

    explicit Watcher(QObject* application)
        : QObject(application)
    {
        connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this](const QString& path) {
            // What is watched may be the file that was there before.
            m_watcher.removePath(path);
            arm();
            for (FileWatch* const watch : std::as_const(m_watches))
                watch->noteFile(path);
        });
        connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
            arm();
            for (FileWatch* const watch : std::as_const(m_watches))
                watch->noteFolder();
        });
    }

    Places places() const
    {
        Places places;
        for (const FileWatch* const watch : m_watches) {
            for (const QString& file : watch->files()) {
                const QString folder = nearestFolder(file);
                if (QFileInfo::exists(file))
                    places.insert(file, identityOf(file));
                for (const QString& path : {folder, QFileInfo(folder).path()})
                    places.insert(path, identityOf(path));
            }
        }
        return places;
    }

    QFileSystemWatcher m_watcher;
    Places m_watched;
    QList<FileWatch*> m_watches;
};

} // namespace

FileWatch::FileWatch(QObject* parent)
    : QObject(parent)
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kBurst);
    connect(&m_soon, &QTimer::timeout, this, &FileWatch::changed);
    if (Watcher* const watcher = Watcher::instance())
        watcher->add(this);
}

FileWatch::~FileWatch()
{
    if (Watcher* const watcher = Watcher::instance())
        watcher->remove(this);
}

bool FileWatch::setFiles(const QStringList& files)
{
    if (files == m_files)
        return false;
    const QStringList before = std::exchange(m_files, files);
    if (Watcher* const watcher = Watcher::instance())
        watcher->arm();
    m_stamps = stamps();
    return std::ranges::any_of(files, [&before](const QString& file) { return !before.contains(file); });
}

void FileWatch::noteFile(const QString& path)
{
    if (!m_files.contains(path))
        return;
    m_stamps = stamps();
    if (!m_soon.isActive())
        m_soon.start();
}

void FileWatch::noteFolder()
{
    std::vector<Stamp> now = stamps();
    if (std::exchange(m_stamps, now) != now && !m_soon.isActive())
        m_soon.start();
}

std::vector<FileWatch::Stamp> FileWatch::stamps() const
{
    std::vector<Stamp> stamps;
    for (const QString& path : m_files) {
        struct stat file = {};
        if (::stat(QFile::encodeName(path).constData(), &file) == 0)
            stamps.push_back({static_cast<int64_t>(file.st_ino), file.st_mtim.tv_sec, file.st_mtim.tv_nsec,
                              static_cast<int64_t>(file.st_size), static_cast<int64_t>(file.st_mode)});
        else
            stamps.push_back({-1});
    }
    return stamps;
}

} // namespace zyn::qml
