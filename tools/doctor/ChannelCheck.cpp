// The directories of the channels, and their listeners.
#include "platform/qcop/ChannelDirectory_p.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "tools/zynphone/SocketProbe.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The expected listener of a channel.
struct Audience
{
    const char* channel;
    const char* listener;
    bool isNeeded; ///< nothing works without it
};

constexpr Audience kAudiences[] = {
    {kPhoneChannel, "an application with a PHONE_MsgClient", true},
    {kVoiceCallChannel, "the phone application, zyn-phoned", false},
    {kPttChannel, "the phone application, zyn-phoned", false},
    {kRecentCallChannel, "the recent-call screens, zyn-recents", false},
    {kActivityLogChannel, "the owner of the activity log, zyn-favourites", false},
};
static_assert(std::size(kAudiences) == std::size(kChannels));

const Audience* audienceOf(const QCString& channel)
{
    const auto found = std::ranges::find_if(kAudiences, [&](const Audience& row) { return channel == row.channel; });
    return found == std::end(kAudiences) ? nullptr : &*found;
}

Finding nobody(const QCString& channel)
{
    const QString name = QString::fromUtf8(channel);
    const Audience* audience = audienceOf(channel);
    if (!audience)
        return note(name, u"nobody listens"_s);
    if (!audience->isNeeded)
        return note(name, u"nobody listens; %1 would"_s.arg(QLatin1String(audience->listener)));
    return wrong(name, u"nobody listens, so whatever is sent here is lost"_s,
                 u"start %1, with the ZYN_QCOP_PATH and XDG_RUNTIME_DIR that are set here"_s.arg(
                     QLatin1String(audience->listener)));
}

QString directoryOf(const QByteArray& root, const QCString& channel)
{
    return QFile::decodeName(ChannelDirectory::path(root, channel));
}

/// The fault of one listener, if any.
std::optional<Finding> listenerFault(const SocketProbe& probe, const QString& path, pid_t owner)
{
    if (probe.state == SocketProbe::Stopped || (probe.state == SocketProbe::Busy && isStopped(owner)))
        return wrong(path, u"%1 listens, but it is stopped"_s.arg(processText(owner)), u"kill -CONT %1"_s.arg(owner));
    switch (probe.state) {
    case SocketProbe::Foreign:
        return wrong(path, u"the listener belongs to user %1, and gets nothing from you"_s.arg(probe.user),
                     u"run the listener and the sender as one user"_s);
    case SocketProbe::Busy:
        return wrong(path, u"%1 takes none of its messages"_s.arg(processText(owner)),
                     u"see what it does: its event loop does not run"_s);
    case SocketProbe::Unreachable:
        return wrong(path, u"no connection to %1: %2"_s.arg(processText(owner), probe.error),
                     u"start that program again"_s);
    default:
        return std::nullopt;
    }
}

/// The next message on the channel removes it, so it matters only without other listeners.
Finding deadSocket(const QString& path, pid_t owner, bool isHeard)
{
    const QString text = u"a dead socket: %1 ended without closing it"_s.arg(processText(owner));
    return isHeard ? note(path, text + u"; the next message here removes it"_s)
                   : wrong(path, text,
                           u"start that program again if it is missed; the next message here removes the socket"_s);
}

/// Whether @p listener, a processText, is the handset's or this tool, and not an application.
bool isListenerOfHandset(const QString& listener)
{
    return listener.contains(u" (zyn-"_s) || listener.endsWith(u" (zynphone)"_s);
}

Findings checkListeners(const QByteArray& root, const QCString& channel, const ChannelDirectory& directory)
{
    Findings findings;
    QStringList listening;
    std::vector<std::pair<QString, pid_t>> dead;
    bool isKept = false; // by a listener that is busy now
    for (const QByteArray& name : directory.listeners().value_or(QList<QByteArray>())) {
        const pid_t owner = ChannelDirectory::owner(name);
        const SocketProbe probe = SocketProbe::of(directory.connectTo(name));
        const QString path = directoryOf(root, channel) + u'/' + QFile::decodeName(name);
        isKept = isKept || probe.state == SocketProbe::Stopped || probe.state == SocketProbe::Busy;
        if (probe.state == SocketProbe::Dead)
            dead.emplace_back(path, owner);
        else if (const auto fault = listenerFault(probe, path, owner))
            findings.push_back(*fault);
        else if (probe.state == SocketProbe::Served)
            listening += processText(owner);
    }
    for (const auto& [path, owner] : dead)
        findings.push_back(deadSocket(path, owner, !listening.isEmpty()));
    listening.sort();
    if (!listening.isEmpty())
        findings.push_back(ok(QString::fromUtf8(channel), u"heard by %1"_s.arg(listening.join(u", "_s))));
    else if (!isKept)
        findings.push_back(nobody(channel));
    if (channel == kPhoneChannel && !listening.isEmpty() && std::ranges::all_of(listening, isListenerOfHandset))
        findings.push_back(note(QString::fromUtf8(channel), u"no application hears it, only the handset's programs"_s));
    return findings;
}

Findings checkChannel(const QByteArray& root, const QCString& channel)
{
    const QByteArray path = ChannelDirectory::path(root, channel);
    if (!exists(path))
        return {nobody(channel)};
    if (const auto fault = privateDirectoryFault(path))
        return {*fault};
    if (const auto directory = ChannelDirectory::open(root, channel))
        return checkListeners(root, channel, *directory);
    return {wrong(QFile::decodeName(path), u"it cannot be used"_s, u"remove it"_s)};
}

} // namespace

Findings checkChannels()
{
    const QByteArray root = ChannelEnvironment::current().root();
    if (root.isEmpty()) // reported by the check of the environment
        return {};
    const QString name = QFile::decodeName(root);
    if (!exists(root))
        return {note(name, u"it does not exist yet; whoever sends or listens first makes it"_s), nobody(kPhoneChannel)};
    if (const auto fault = privateDirectoryFault(root))
        return {*fault};
    Findings findings{ok(name, u"this user's alone"_s)};
    QList<QCString> channels(std::begin(kChannels), std::end(kChannels));
    for (const QCString& channel : ChannelDirectory::channels(root)) {
        if (!channels.contains(channel))
            channels += channel;
    }
    for (const QCString& channel : std::as_const(channels)) {
        const Findings ofChannel = checkChannel(root, channel);
        findings.insert(findings.end(), ofChannel.begin(), ofChannel.end());
    }
    return findings;
}

} // namespace zyn::tool
