// What the processes of the campaign `messages` write down in shared files, which outlive a process that is killed.
#pragma once

#include "platform/QCString.h"

#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <array>
#include <atomic>
#include <memory>
#include <new>

namespace faults::channels {

inline constexpr int kSenders = 8;
inline constexpr int kMostChannels = 200;
inline constexpr int kMostNotes = 1 << 18;
/// How often each sender sends on each channel in turn at its end.
inline constexpr quint32 kLastRounds = 2;

using Number = std::atomic<quint32>;
static_assert(Number::is_always_lock_free && sizeof(Number) == 4);

/// How far the senders are on each channel, whose messages are numbered from 0 for each sender.
struct Board
{
    struct Sent
    {
        Number begun; ///< how many were given to send()
        Number done;  ///< for how many it has returned
    };

    Number allowed;                      ///< how many each sender may send in all
    std::array<Number, kSenders> counts; ///< how many each has sent in all
    std::array<Number, kSenders> isKilled;
    std::array<std::array<Sent, kMostChannels>, kSenders> sent;
};

/// Messages of one sender on one channel, from one number to before another.
struct Range
{
    quint32 sender;
    quint32 channel;
    quint32 from;
    quint32 to;
};

/// The messages that send() said were not sent to all.
struct Refusals
{
    Number count;
    std::array<Range, kMostNotes> ranges;
};

/// What a listener has heard of each sender on each channel.
struct Journal
{
    struct Heard
    {
        quint32 sentBefore;  ///< how many had been sent before it began to listen, none of which it may get
        quint32 begunBefore; ///< and how many at most when it listened: it gets all that follow
        quint32 first;       ///< the number of the first that came
        Number next;         ///< one more than that of the last that came, 0 when none did
        Number wrong;        ///< how many came twice, late, elsewhere or damaged
        Number leftAt;       ///< how many it waited for before it left
    };

    Number gapCount;
    std::array<Range, kMostNotes> gaps;
    std::array<std::array<Heard, kMostChannels>, kSenders> heard;
};

/// A structure in a file that processes share.
template<typename Content>
class Shared
{
public:
    explicit Shared(const QString& path)
        : m_file(path)
    {
        if (!m_file.open(QIODevice::ReadWrite) || !m_file.resize(qint64(sizeof(Content))))
            qFatal("cannot make %s", qPrintable(path));
        uchar* memory = m_file.map(0, qint64(sizeof(Content)));
        if (!memory)
            qFatal("cannot map %s", qPrintable(path));
        m_content = std::launder(reinterpret_cast<Content*>(memory));
    }

    Content* get() const { return m_content; }
    Content* operator->() const { return m_content; }
    QString path() const { return m_file.fileName(); }

private:
    QFile m_file;
    Content* m_content;
};

/// Where the messages of one part of the campaign go, and what they are like.
struct Traffic
{
    QString folder; ///< of the board and the journals; its last part is in the channels' names
    int channels;
    quint32 largest; ///< payload

    explicit Traffic(const QStringList& arguments)
        : Traffic(arguments.value(0), arguments.value(1).toInt(), arguments.value(2).toUInt())
    {}
    Traffic(QString path, int count, quint32 size)
        : folder(std::move(path))
        , channels(count)
        , largest(size)
    {}

    QStringList arguments() const { return {folder, QString::number(channels), QString::number(largest)}; }
    QString board() const { return folder + QStringLiteral("/board"); }
    QString refusals(int sender) const { return folder + QStringLiteral("/refusals-%1").arg(sender); }
    QCString channel(quint32 number) const
    {
        return "/faults/" + folder.section(u'/', -1).toLatin1() + '/' + QByteArray::number(number);
    }
    /// The payload of a message: from it a listener tells which one it is, and whether it is whole.
    QByteArray payload(quint32 sender, quint32 channel, quint32 number) const;
};

/// A sender: sends as many messages as it is told, on random channels, and the last of them on each in turn. Ends
/// when its standard input does.
int sendRole(const QStringList& arguments);

/// A listener on some channels. Ends when its standard input does; when that says "leave", after it has heard what was
/// sent until then.
int listenRole(const QStringList& arguments);

} // namespace faults::channels
