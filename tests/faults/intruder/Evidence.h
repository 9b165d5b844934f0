// What is in /tmp, what the intruder tries there, and what comes of it.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonObject>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <sys/types.h>

namespace intruder {

struct Place;

struct Report
{
    int attempts = 0;
    int checks = 0;
    int open = 0;    ///< attempts that succeeded, as they may
    int keptOut = 0; ///< services that said who has their place, as they must where a name is free for all to take
    QStringList breaches;
    QJsonObject memory;

    void breach(const QString& what);
    void check(bool holds, const QString& what);
};

/// What is counted.
extern Report report;

/// Notes the attempts that an intruder has told, lines "OPERATION<tab>PATH<tab>1", or 0 when it has failed.
void noteLines(const QList<QByteArray>& lines);

void makeFile(const QByteArray& path, const QByteArray& contents, uid_t owner, mode_t mode);
void makeFolder(const QByteArray& path, uid_t owner, mode_t mode);

/// Whether this process can open a file.
bool isOpened(const QByteArray& path, int flags);

/// What a path is: d directory, f regular file, s socket, l link, p another, - nothing.
char kindOf(const QByteArray& path);

/// Everything in /tmp that is not the intruder's, by path.
QList<QByteArray> allPaths();

/// An empty /tmp, but for the homes of both.
void clearTmp(const Place& place);

/// What is the first user's, by path: owner, mode and contents. Sockets and locks come and go, and the favourites'
/// owner notes each call that it has seen.
using Snapshot = QMap<QByteArray, QByteArray>;
Snapshot snapshot();

/// Checks that all of @p before is in @p after.
void compare(const Snapshot& before, const Snapshot& after, const QString& when);

} // namespace intruder
