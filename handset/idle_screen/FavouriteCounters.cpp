// The idle screen's counters of what the favourites have left unread.
#include "handset/idle_screen/FavouriteCounters.h"

#include "handset/common/Output.h"
#include "handset/common/Text.h"
#include "handset/favourites/Favourites.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QFile>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The owner writes several files for one call.
constexpr auto kSoon = 20ms;

QString storeDirectory()
{
    return QFile::decodeName(zyn::storeDirectoryPath());
}

QString counterText(const QString& key)
{
    TopPals_Missed_Details unread{key};
    RC_TopPals_AL_Interface::instance()->getUnreadCount(unread);
    return u"favourite %1: %2 missed, %3 messages unread\n"_s.arg(zyn::handset::printable(key))
        .arg(unread.missedCallCount)
        .arg(unread.unreadMsgCount);
}

} // namespace

namespace zyn::handset {

FavouriteCounters::FavouriteCounters(Output& output)
    : m_output(output)
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kSoon);
    connect(&m_soon, &QTimer::timeout, this, &FavouriteCounters::show);
    const auto readSoon = [this] { m_soon.start(); };
    connect(&m_files, &QFileSystemWatcher::directoryChanged, this, readSoon);
    connect(&m_files, &QFileSystemWatcher::fileChanged, this, readSoon);
    makeStoreDirectory();
    m_files.addPath(storeDirectory());
    show();
}

void FavouriteCounters::show()
{
    // Who the favourites are, the library would go on to take from what it has read before.
    ActivityLog_ENG_RecordStore::destroy();
    const QStringList keys = favourites::keys();
    watch(keys);
    QMap<QString, QString> lines;
    for (const QString& key : keys) {
        if (!key.isEmpty())
            lines[key] = counterText(key);
    }
    for (auto line = m_shown.cbegin(); line != m_shown.cend(); ++line) {
        if (!lines.contains(line.key()))
            m_output.write(u"favourite %1 is none any more\n"_s.arg(printable(line.key())));
    }
    for (auto line = lines.cbegin(); line != lines.cend(); ++line) {
        if (m_shown.value(line.key()) != *line)
            m_output.write(*line);
    }
    m_shown = lines;
}

/// Before the files are read: what changes later is told then. The watch on a file ends with it.
void FavouriteCounters::watch(const QStringList& keys)
{
    QStringList paths{storeDirectory() + u'/' + QLatin1String(kTopPalsDetailsName)};
    for (const QString& key : keys) {
        const QString path = storeDirectory() + u'/' + key;
        if (!key.isEmpty() && QFile::exists(path))
            paths += path;
    }
    m_files.addPaths(paths);
}

} // namespace zyn::handset
