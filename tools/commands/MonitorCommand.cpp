// zynphone monitor: shows the messages of the channels as they arrive.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "platform/QCopChannel.h"
#include "platform/qcop/ChannelOrigin_p.h"
#include "tools/chart/LiveChart.h"
#include "tools/commands/Candidates.h"
#include "tools/commands/Channels.h"
#include "tools/recording/MessageFilter.h"
#include "tools/recording/MessageOrder.h"
#include "tools/recording/MessageText.h"
#include "tools/recording/Recording.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QCoreApplication>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include <sys/ioctl.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

QStringList channelsFrom(const Invocation& invocation)
{
    QStringList channels = invocation.arguments();
    if (channels.isEmpty())
        channels = channelNames();
    channels.removeDuplicates();
    if (channels.contains(QString()))
        throw usageError(u"the channel's name is empty"_s);
    return channels;
}

/// What to do with an existing recording, by the options.
RecordingWriter::Existing existingFrom(const Invocation& invocation)
{
    using enum RecordingWriter::Existing;
    const bool replaces = invocation.isSet(u"force"_s);
    const bool appends = invocation.isSet(u"append"_s);
    if (replaces && appends)
        throw usageError(u"--force and --append exclude each other"_s);
    if ((replaces || appends) && !invocation.isSet(u"record"_s))
        throw usageError(u"--%1 is for --record"_s.arg(replaces ? u"force"_s : u"append"_s));
    return replaces ? Replace : appends ? Append : Refuse;
}

/// The times of the clock at which messages were sent. The pauses stay right when the clock is set meanwhile.
class SendTimes
{
public:
    QDateTime timeOf(uint64_t sentAt) const
    {
        return m_start.addMSecs((static_cast<int64_t>(sentAt) - m_startTicks) / kNanosecondsOfOne);
    }

    static uint64_t now()
    {
        return static_cast<uint64_t>(
            std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
    }

private:
    static constexpr int64_t kNanosecondsOfOne = 1'000'000;

    QDateTime m_start = QDateTime::currentDateTimeUtc();
    int64_t m_startTicks = static_cast<int64_t>(now());
};

/// The width of the terminal; 0 when there is none.
int terminalWidth(const Console& console)
{
    winsize size = {};
    return console.isTerminal() && ::ioctl(console.descriptor(), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

/// Writes messages in the order in which they were sent, until the requested number has arrived.
class Monitor
{
public:
    Monitor(const Invocation& invocation, Console& console)
        : m_console(console)
        , m_filter(invocation)
        , m_json(invocation.isSet(u"json"_s))
        , m_look{invocation.isSet(u"raw"_s), console.isColourful(), terminalWidth(console)}
        , m_chart(invocation.isSet(u"chart"_s) ? std::optional(LiveChart::forTerminal(m_look.width)) : std::nullopt)
        , m_left(limitFrom(invocation, u"count"_s))
        , m_order([this](const ReceivedMessage& message) { show(message); })
    {}

    void listenOn(const QString& name)
    {
        auto channel = std::make_unique<QCopChannel>(name.toUtf8());
        if (!channel->isListening())
            throw failure(u"cannot listen on %1"_s.arg(name));
        QObject::connect(channel.get(), &QCopChannel::received, channel.get(),
                         [this, channel = channel.get()](const QCString& message, const QByteArray& data) {
                             take(*channel, message, data);
                         });
        m_channels.push_back(std::move(channel));
    }

    void recordIn(const QString& path, RecordingWriter::Existing existing) { m_recording.emplace(path, existing); }

    /// Fails if the recording could not be written.
    void run()
    {
        QCoreApplication::exec();
        m_order.flush();
        if (m_isBroken)
            throw failure(m_recording->errorText());
    }

private:
    void take(const QCopChannel& channel, const QCString& name, const QByteArray& payload)
    {
        ChannelOrigin origin = ChannelOrigin::of(channel);
        if (origin.sentAt == 0)
            origin.sentAt = SendTimes::now();
        ReceivedMessage message{m_times.timeOf(origin.sentAt),
                                channel.channel(),
                                name,
                                payload,
                                {QString::fromLatin1(origin.program), origin.process}};
        if (!m_filter.lets(message))
            return;
        message.hearers = m_audience.of(message.channel);
        m_order.add(std::move(message), origin.sentAt);
    }

    void show(const ReceivedMessage& message)
    {
        // More may arrive in the turn of the event loop that ends it.
        if (m_left == 0 || m_isBroken)
            return;
        // First, so that a recording contains all that was shown.
        m_isBroken = m_recording && !m_recording->write(message);
        if (m_isBroken) {
            QCoreApplication::quit();
            return;
        }
        if (m_json)
            m_console.write(QJsonDocument(messageJson(message, m_look.isRaw)));
        else if (m_chart)
            m_console.write(m_chart->linesFor(message).join(u'\n') + u'\n');
        else
            m_console.write(messageText(message, m_look, m_names) + u'\n');
        if (m_left)
            --*m_left;
        if (m_left == 0 || !m_console.isValid())
            QCoreApplication::quit();
    }

    Console& m_console;
    const MessageFilter m_filter;
    const bool m_json;
    const MessageLook m_look;
    std::optional<LiveChart> m_chart;
    std::optional<int> m_left; ///< messages; unset without a limit
    const SendTimes m_times;
    Audience m_audience;
    ParticipantNames m_names;
    std::optional<RecordingWriter> m_recording;
    bool m_isBroken = false; ///< the recording could not be written
    MessageOrder m_order;
    std::vector<std::unique_ptr<QCopChannel>> m_channels;
};

ExitCode monitorChannels(const Invocation& invocation, Console& console)
{
    const QStringList channels = channelsFrom(invocation);
    const RecordingWriter::Existing existing = existingFrom(invocation);
    if (invocation.isSet(u"chart"_s) && (invocation.isSet(u"json"_s) || invocation.isSet(u"raw"_s)))
        throw usageError(u"--chart excludes --json and --raw"_s);
    const TimeLimit timeLimit(invocation);
    const handset::TerminationSignals signalsThatEnd;
    Monitor monitor(invocation, console);
    for (const QString& channel : channels)
        monitor.listenOn(channel);
    if (invocation.isSet(u"record"_s))
        monitor.recordIn(invocation.value(u"record"_s), existing);
    timeLimit.start();
    console.writeError(u"listening on "_s + channels.join(u", "_s));
    monitor.run();
    return Done;
}

} // namespace

Command monitorCommand()
{
    return {.name = u"monitor"_s,
            .summary = u"Show the messages of channels as they come, until SIGINT or SIGTERM"_s,
            .details = u"\nA line is the time at which the message was sent, the program that has sent it, with "
                       "its\nnumber where there are two, the channel, the message and its values, in words where "
                       "they\nare known. A value that the payload does not hold is shown as missing, what is behind "
                       "the\nvalues as rest. On a terminal a line is cut to its width.\n"
                       "Messages are shown in the order in which they were sent, %1 ms later; one that comes later\n"
                       "than that is marked as late.\n"
                       "The objects of --json, one a line, have the fields time (UTC), channel, name, known,\n"
                       "enumerator (null when there is none), fields (an object), words (those of fields that have\n"
                       "one), missing (names of fields), rest, from and hearers (program and process of who has\n"
                       "sent it and who listened), late and, with --raw, payload.\n"
                       "With --record each message that is wanted is in FILE before it is shown; 'replay' sends\n"
                       "them again, 'chart' draws them.\n"_s.arg(MessageOrder::kWindow.count()),
            .arguments = {{u"CHANNEL"_s, u"all channels of the library by default"_s, Argument::Any}},
            .options =
                MessageFilter::options()
                + QList<QCommandLineOption>{flagOption(u"raw"_s,
                                                       u"show the message's own name and the whole payload too"_s),
                                            jsonOption(),
                                            flagOption(u"chart"_s, u"draw a sequence chart: a lane for each program"_s),
                                            valueOption(u"count"_s, u"N"_s, u"end after N messages"_s),
                                            TimeLimit::option(),
                                            valueOption(u"record"_s, u"FILE"_s,
                                                        u"record the messages in FILE too, a new file"_s),
                                            flagOption(u"append"_s, u"add to the recording FILE, if there is one"_s),
                                            flagOption(u"force"_s, u"replace FILE, if there is one"_s)},
            .words = {{u"CHANNEL"_s, channelNames()}},
            .sources = {{u"NAME"_s, messageWords}},
            .run = monitorChannels};
}

} // namespace zyn::tool
