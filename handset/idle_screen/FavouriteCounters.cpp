// The idle screen's counters of what the favourites have left unread.
#include "handset/idle_screen/FavouriteCounters.h"

#include "handset/common/Output.h"
#include "handset/common/Text.h"
#include "handset/favourites/Favourites.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <chrono>
#include <optional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

/// The owner writes several files for one call.
constexpr auto kSoon = 20ms;

/// Between the readings while something cannot be read, where no change of a file leads to one before.
constexpr auto kFirstRetry = 1s;
constexpr auto kSlowestRetry = 15s;

/// The line of a favourite; nothing when its file cannot be read.
std::optional<QString> counterText(const QString& key)
{
    TopPals_Missed_Details unread{key};
    if (RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        return std::nullopt;
    return u"favourite %1: %2 missed, %3 messages unread\n"_s.arg(
        zyn::handset::printable(key), QString::number(unread.missedCallCount), QString::number(unread.unreadMsgCount));
}

} // namespace

FavouriteCounters::FavouriteCounters(Output& output)
    : m_output(output)
    , m_retry(kFirstRetry, kSlowestRetry, [this] { show(); })
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(kSoon);
    connect(&m_soon, &QTimer::timeout, this, &FavouriteCounters::show);
    const auto readSoon = [this] { m_soon.start(); };
    connect(&m_files, &QFileSystemWatcher::directoryChanged, this, readSoon);
    connect(&m_files, &QFileSystemWatcher::fileChanged, this, readSoon);
    show();
}

void FavouriteCounters::show()
{
    // Who the favourites are, the library would go on to take from what it has read before.
    ActivityLog_ENG_RecordStore::destroy();
    const auto keys = handset::readFavouriteKeys();
    watch(keys.value_or(QStringList()));
    if (!keys && m_isKnown) {
        m_output.write(
            u"favourites unknown: %1 is damaged or cannot be read\n"_s.arg(QLatin1String(kTopPalsDetailsName)));
        m_shown.clear(); // all are shown as soon as they are known again
    }
    m_retry.note(keys && showCounters(*keys));
    m_isKnown = keys.has_value();
}

/// Shows what has changed; whether all could be read.
bool FavouriteCounters::showCounters(const QStringList& keys)
{
    bool isRead = true;
    QMap<QString, QString> lines;
    for (const QString& key : keys) {
        if (key.isEmpty())
            continue;
        const auto text = counterText(key);
        lines[key] = text.value_or(u"favourite %1 unknown: its file cannot be read\n"_s.arg(printable(key)));
        isRead = isRead && text;
    }
    if (!m_isKnown && lines.isEmpty())
        m_output.write(u"no favourites\n"_s);
    for (auto line = m_shown.cbegin(); line != m_shown.cend(); ++line) {
        if (!lines.contains(line.key()))
            m_output.write(u"favourite %1 is none any more\n"_s.arg(printable(line.key())));
    }
    for (auto line = lines.cbegin(); line != lines.cend(); ++line) {
        if (m_shown.value(line.key()) != *line)
            m_output.write(*line);
    }
    m_shown = lines;
    return isRead;
}

/// Before the files are read: what changes later is told then. The watch on a file, and on the directory, ends with it.
void FavouriteCounters::watch(const QStringList& keys)
{
    makeStoreDirectory();
    QStringList paths{QFile::decodeName(storeDirectoryPath()), storePath(QLatin1String(kTopPalsDetailsName))};
    for (const QString& key : keys) {
        if (!key.isEmpty())
            paths += storePath(key);
    }
    for (const QString& path : paths) {
        if (QFileInfo(path).isReadable())
            m_files.addPath(path);
    }
}

} // namespace zyn::handset
