// The idle screen's counters of what the favourites have left unread.
#pragma once

#include "handset/common/Retry.h"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>

namespace zyn::handset {

class Output;

/**
 * Shows a line for each favourite whose unread missed calls or messages have become others.
 *
 * The owner of the favourites tells nobody when it has logged a call: it is the files that are watched. After a change
 * of any they are read once, as soon as no other follows at once. What cannot be read is shown as unknown, and read
 * again and again: the reason may be none of the files'.
 */
class FavouriteCounters : public QObject
{
    Q_OBJECT

public:
    /// Shows the counters, and again whenever they change.
    explicit FavouriteCounters(Output& output);

private:
    void show();
    bool showCounters(const QStringList& keys);
    void watch(const QStringList& keys);

    Output& m_output;
    QFileSystemWatcher m_files;
    QTimer m_soon;
    Retry m_retry;
    bool m_isKnown = true;          ///< whether who the favourites are could be read the last time
    QMap<QString, QString> m_shown; ///< the line of each favourite, under its key
};

} // namespace zyn::handset
