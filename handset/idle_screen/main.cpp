// zyn-idle: plays the idle screen's counters in a terminal.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/common/Output.h"
#include "handset/common/Retry.h"
#include "handset/common/Text.h"
#include "handset/favourites/Favourites.h"
#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QMap>
#include <QtCore/QTimer>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace zyn::handset {
namespace {

/// Time between attempts while something cannot be read: a service that hung announces nothing when it resumes, and a
/// file may become readable without a change that the watch sees.
constexpr auto kFirstRetry = 1s;
constexpr auto kSlowestRetry = 15s;

/// The owner of the favourites writes several files for one call.
constexpr auto kSoon = 20ms;

QString missedCallsText(const MissedCallEngine& engine, const RC_MissedCallList& unread)
{
    if (!engine.isAnswered())
        return u"missed unknown: the recent-call service does not answer\n"_s;
    if (unread.isEmpty())
        return u"missed 0 unread\n"_s;
    const RC_MissedCallItem& last = unread.first();
    const QString number = last.first.isEmpty() ? u"an unknown number"_s : printable(last.first);
    return u"missed %1 unread, last %2 at %3\n"_s.arg(QString::number(unread.size()), number,
                                                      timeText(engine.start(last)));
}

/// The line of the favourite @p key; nothing when its file cannot be read.
std::optional<QString> favouriteText(const QString& key)
{
    TopPals_Missed_Details unread{key};
    if (RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        return std::nullopt;
    return u"favourite %1: %2 missed, %3 unread\n"_s.arg(printable(key), QString::number(unread.missedCallCount),
                                                         counted(unread.unreadMsgCount, "message"));
}

/// Shows the number of unread missed calls, at the start and whenever it changes.
class MissedCallCounter
{
public:
    explicit MissedCallCounter(Output& output)
        : m_output(output)
    {
        QObject::connect(RC_MissedCallInterface::instance(), &RC_MissedCallInterface::dataUpdate, &m_update,
                         &Debouncer::trigger);
        show();
    }

private:
    void show()
    {
        const QString text = missedCallsText(m_engine, RC_MissedCallInterface::instance()->getUnreadMissedCalls());
        if (std::exchange(m_shown, text) != text)
            m_output.write(text);
        m_retry.note(m_engine.isAnswered());
    }

    Output& m_output;
    MissedCallEngine m_engine;
    QString m_shown;
    Debouncer m_update{[this] { show(); }};
    Retry m_retry{kFirstRetry, kSlowestRetry, [this] { show(); }};
};

/**
 * Shows a line for each favourite, at the start and whenever the numbers of its unread missed calls and messages
 * change.
 *
 * The owner of the favourites does not announce that it has logged a call, so the files are watched. Changes in quick
 * succession cause one reading. A file that cannot be read is shown as unknown, and tried again.
 */
class FavouriteCounters
{
public:
    explicit FavouriteCounters(Output& output)
        : m_output(output)
    {
        m_soon.setSingleShot(true);
        m_soon.setInterval(kSoon);
        m_soon.callOnTimeout([this] { show(); });
        for (const auto change : {&QFileSystemWatcher::directoryChanged, &QFileSystemWatcher::fileChanged})
            QObject::connect(&m_files, change, &m_soon, qOverload<>(&QTimer::start));
        show();
    }

private:
    void show();
    bool showCounters(const QStringList& keys);
    void watch(const QStringList& keys);

    Output& m_output;
    QFileSystemWatcher m_files;
    QTimer m_soon;
    Retry m_retry{kFirstRetry, kSlowestRetry, [this] { show(); }};
    bool m_isKnown = true;          ///< whether the favourites could be read the last time
    QMap<QString, QString> m_shown; ///< the line of each favourite, under its key
};

void FavouriteCounters::show()
{
    // Otherwise the library would use what it has read before.
    ActivityLog_ENG_RecordStore::destroy();
    const auto keys = readFavouriteKeys();
    watch(keys.value_or(QStringList()));
    if (!keys && m_isKnown) {
        m_output.write(
            u"favourites unknown: %1 is damaged or cannot be read\n"_s.arg(QLatin1String(kTopPalsDetailsName)));
        m_shown.clear(); // so that all are shown once they are known again
    }
    m_retry.note(keys && showCounters(*keys));
    m_isKnown = keys.has_value();
}

/// Shows the lines that have changed; returns whether all files could be read.
bool FavouriteCounters::showCounters(const QStringList& keys)
{
    bool isRead = true;
    QMap<QString, QString> lines;
    for (const QString& key : keys) {
        if (key.isEmpty())
            continue;
        const auto text = favouriteText(key);
        lines[key] = text.value_or(u"favourite %1 unknown: its file cannot be read\n"_s.arg(printable(key)));
        isRead = isRead && text;
    }
    if (!m_isKnown && lines.isEmpty())
        m_output.write(u"no favourites\n"_s);
    for (auto line = m_shown.cbegin(); line != m_shown.cend(); ++line) {
        if (!lines.contains(line.key()))
            m_output.write(u"favourite %1 removed\n"_s.arg(printable(line.key())));
    }
    for (auto line = lines.cbegin(); line != lines.cend(); ++line) {
        if (m_shown.value(line.key()) != *line)
            m_output.write(*line);
    }
    m_shown = lines;
    return isRead;
}

/// Called before the files are read, so that no later change is missed, and each time, as a watch ends with its file.
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

} // namespace
} // namespace zyn::handset

namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    handset::TerminalApplication application(argc, argv, u"zyn-idle"_s);
    handset::Output& output = application.output;

    handset::CommandLine commandLine(
        u"Plays the idle screen's counters: tells how many missed calls are unread, and what of each "
        "favourite's\ncalls and messages, at the start and whenever that changes.\nEnds on "
        "SIGTERM and SIGINT, and when the handset is switched off."_s,
        &output);
    if (!commandLine.parse())
        return handset::kUsageError;

    const RecentCall_MsgClient& client = *RecentCall_MsgClient::instance();
    if (!client.isListening())
        return EXIT_FAILURE;
    handset::MissedCallCounter missedCallCounter(output);
    QObject::connect(&client, &RecentCall_MsgClient::signalPowerOff, &application, &handset::Application::quit);
    handset::FavouriteCounters favouriteCounters(output);
    commandLine.announce(QString::fromUtf8(client.channel()));
    handset::Application::exec();
    RC_MissedCallInterface::destruction();
    RecentCall_MsgClient::destruction();
    return output.exitCode();
}
