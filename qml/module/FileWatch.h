// Files that other processes change.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <array>
#include <cstdint>
#include <vector>

namespace zyn::qml {

/**
 * Tells that files have changed: were written, replaced, made or removed, with their folders or without.
 *
 * The folders above need not exist. A link is followed. All objects are used from one thread, and share what the system
 * gives a process to watch files with.
 */
class FileWatch : public QObject
{
    Q_OBJECT

public:
    explicit FileWatch(QObject* parent = nullptr);
    Q_DISABLE_COPY_MOVE(FileWatch)
    ~FileWatch() override;

    /// Watches @p files from now on, and no others. @return whether one of them was not watched before: what has been
    /// read of it may be old
    bool setFiles(const QStringList& files);
    const QStringList& files() const { return m_files; }

    /// The file @p path was written, or is another.
    void noteFile(const QString& path);
    /// Something has happened in a folder: looks whether that concerns the files.
    void noteFolder();

Q_SIGNALS:
    /// Files have changed. Changes that follow each other closely are told once.
    void changed();

private:
    /// What is another when a file is.
    using Stamp = std::array<int64_t, 5>;
    std::vector<Stamp> stamps() const;

    QStringList m_files;
    std::vector<Stamp> m_stamps;
    QTimer m_soon;
};

} // namespace zyn::qml
