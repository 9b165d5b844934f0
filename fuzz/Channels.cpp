// The channels: frames as they come from other processes, and messages from several senders to several listeners.
#include "fuzz/Fuzz.h"

#include "platform/qcop/ChannelFrame_p.h"

#include <QtCore/QtEndian>

#include <array>
#include <utility>
#include <vector>

namespace zyn::fuzz {
namespace {

/// What a reader makes of a connection's bytes.
struct Heard
{
    std::vector<std::pair<QByteArray, QByteArray>> messages;
    QByteArray program;
    bool isBroken = false;

    bool operator==(const Heard&) const = default;
};

/// Hears @p bytes, which come in pieces of @p piece bytes at most.
Heard hear(QByteArrayView bytes, size_t piece)
{
    Heard heard;
    ChannelFrameReader reader(0);
    while (!bytes.isEmpty() && !reader.isBroken()) {
        const std::span<std::byte> room = reader.room();
        require(!room.empty(), "a reader has room for more");
        const size_t size = std::min({piece, room.size(), static_cast<size_t>(bytes.size())});
        std::memcpy(room.data(), bytes.data(), size);
        reader.add(static_cast<qsizetype>(size));
        bytes = bytes.sliced(static_cast<qsizetype>(size));
        QByteArray name;
        QByteArray data;
        while (reader.next(name, data)) {
            require(!name.isEmpty() && !name.contains('\0'), "a message has a name");
            heard.messages.emplace_back(name, data);
        }
    }
    heard.program = reader.origin().program;
    heard.isBroken = reader.isBroken();
    return heard;
}

/// The frames of a connection are the same in whatever pieces they come.
void readFrames(Input& input)
{
    const size_t piece = size_t{1} + input.byte();
    const QByteArray bytes = input.rest();
    const Heard whole = hear(bytes, static_cast<size_t>(bytes.size()) + 1);
    require(hear(bytes, piece) == whole, "frames do not depend on how their bytes come");
}

QByteArray frame(QByteArrayView name, QByteArrayView data)
{
    QByteArray bytes;
    ChannelFrame(name, data).appendTo(bytes);
    return bytes;
}

QList<QByteArray> frameSeeds()
{
    const QByteArray introduction = introductionFrame();
    const QByteArray message = frame("PHONE_MSG_13", QByteArray(4, '\2'));
    return {
        '\x05' + introduction + message + message + frame("MakeCall", "number"),
        '\xff' + message,
        '\x10' + introduction + introduction,
        '\x01' + introduction + message.chopped(1),
    };
}

constexpr std::array kChannelTargets{
    Target{"channel_frames", "the frames and the introduction on a channel's connection", readFrames, frameSeeds},
};

} // namespace

std::span<const Target> channelTargets()
{
    return kChannelTargets;
}

} // namespace zyn::fuzz
