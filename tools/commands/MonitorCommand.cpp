// zynphone monitor: shows the messages of the channels as they arrive.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "platform/QCopChannel.h"
#include "tools/commands/Channels.h"
#include "tools/recording/MessageText.h"
#include "tools/recording/Recording.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"

#include <QtCore/QCoreApplication>

#include <memory>
#include <optional>
#include <vector>

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

/// Writes messages until the requested number has arrived.
class Monitor
{
public:
    Monitor(const Invocation& invocation, Console& console)
        : m_console(console)
        , m_raw(invocation.isSet(u"raw"_s))
        , m_json(invocation.isSet(u"json"_s))
        , m_left(limitFrom(invocation, u"count"_s))
    {}

    void listenOn(const QString& name)
    {
        auto channel = std::make_unique<QCopChannel>(name.toUtf8());
        if (!channel->isListening())
            throw failure(u"cannot listen on %1"_s.arg(name));
        QObject::connect(channel.get(), &QCopChannel::received, channel.get(),
                         [this, channel = channel->channel()](const QCString& message, const QByteArray& data) {
                             show({QDateTime::currentDateTime(), channel, message, data});
                         });
        m_channels.push_back(std::move(channel));
    }

    void recordIn(const QString& path, RecordingWriter::Existing existing) { m_recording.emplace(path, existing); }

    /// Fails if the recording could not be written.
    void run()
    {
        QCoreApplication::exec();
        if (m_isBroken)
            throw failure(m_recording->errorText());
    }

private:
    void show(const ReceivedMessage& message)
    {
        // More may arrive in the turn of the event loop that ends it.
        if (m_left == 0 || m_isBroken)
            return;
        // First, so that a recording contains all that was shown.
        m_isBroken = m_recording && !m_recording->write(message.channel, message.name, message.payload);
        if (m_isBroken) {
            QCoreApplication::quit();
            return;
        }
        if (m_json)
            m_console.write(QJsonDocument(messageJson(message, m_raw)));
        else
            m_console.write(messageText(message, m_raw) + u'\n');
        if (m_left)
            --*m_left;
        if (m_left == 0 || !m_console.isValid())
            QCoreApplication::quit();
    }

    Console& m_console;
    const bool m_raw;
    const bool m_json;
    std::optional<int> m_left; ///< messages; unset without a limit
    std::vector<std::unique_ptr<QCopChannel>> m_channels;
    std::optional<RecordingWriter> m_recording;
    bool m_isBroken = false; ///< the recording could not be written
};

ExitCode monitorChannels(const Invocation& invocation, Console& console)
{
    const QStringList channels = channelsFrom(invocation);
    const RecordingWriter::Existing existing = existingFrom(invocation);
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
            .details = u"\nA line is time, channel, message, its enumerator and its fields. A field that the "
                       u"payload does\n"
                       "not hold is shown as missing, what no field holds as rest, in hexadecimal digits.\n"
                       "The objects of --json, one a line, have the fields time (UTC), channel, name, known, "
                       "enumerator\n"
                       "(null when there is none), fields (an object), missing (names of fields), rest and, "
                       "with --raw,\n"
                       "payload.\n"
                       "With --record each message is in FILE before it is shown; 'replay' sends them again, "
                       "'chart' draws\nthem.\n"_s,
            .arguments = {{u"CHANNEL"_s, u"all channels of the library by default"_s, Argument::Any}},
            .options = {flagOption(u"raw"_s, u"show the whole payload too, in hexadecimal digits"_s), jsonOption(),
                        valueOption(u"count"_s, u"N"_s, u"end after N messages"_s), TimeLimit::option(),
                        valueOption(u"record"_s, u"FILE"_s, u"record the messages in FILE too, a new file"_s),
                        flagOption(u"append"_s, u"add to the recording FILE, if there is one"_s),
                        flagOption(u"force"_s, u"replace FILE, if there is one"_s)},
            .words = {{u"CHANNEL"_s, channelNames()}},
            .run = monitorChannels};
}

} // namespace zyn::tool
