// The messages of the channels: what the library, the programs and the tool make of any payload.
#include "fuzz/Fuzz.h"

#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/recording/MessageFields.h"
#include "tools/recording/MessageText.h"
#include "tools/recording/Recording.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/PHONE_VoiceCallReceiver.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QJsonDocument>

#include <array>
#include <vector>

namespace zyn::fuzz {
namespace {

std::vector<const Message*> allMessages()
{
    std::vector<const Message*> messages;
    for (const PhoneMessage& message : phoneMessages())
        messages.push_back(&message);
    for (const Message& message : channelMessages())
        messages.push_back(&message);
    return messages;
}

const std::vector<const Message*>& messages()
{
    static const std::vector<const Message*> all = allMessages();
    return all;
}

/// One of the library's messages; null for one that it does not know.
const Message* messageFrom(Input& input)
{
    const size_t index = input.byte();
    return index < messages().size() ? messages()[index] : nullptr;
}

/// Every message with a payload of plausible values, behind the byte that names it.
QList<QByteArray> messageSeeds()
{
    QList<QByteArray> seeds;
    for (size_t index = 0; index < messages().size(); ++index) {
        const Message& message = *messages()[index];
        std::vector<FieldValue> values;
        for (const Field& field : message.fields) {
            switch (field.kind) {
            case FieldKind::Int:
            case FieldKind::Byte:
            case FieldKind::Char:
                values.emplace_back(1);
                break;
            case FieldKind::Raw:
                values.emplace_back(QByteArray(field.size, '7'));
                break;
            default:
                values.emplace_back(QStringLiteral("0301112222"));
                values.back().texts = QStringList{QStringLiteral("26201"), QStringLiteral("Name")};
            }
        }
        seeds += char(index) + encode(message, values);
    }
    return seeds;
}

bool areEqual(const FieldValue& one, const FieldValue& other)
{
    return one.number == other.number && one.text == other.text && one.bytes == other.bytes && one.texts == other.texts;
}

/// Reads all that the signals hand out by a pointer.
void readWhatIsPointedTo(PHONE_MsgClient& client)
{
    static QByteArray copy;
    QObject::connect(&client, &PHONE_MsgClient::signalnetworkListGotten,
                     [](auto, const auto* list) { copy = bytesOf(*list).toByteArray(); });
    QObject::connect(&client, &PHONE_MsgClient::signalImsiId, [](const UINT8* imsi) {
        copy = QByteArray(reinterpret_cast<const char*>(imsi), TAPI_IMSI_LENGTH + 1);
    });
}

/// The clients of the channels, which live as long as the process.
struct Clients
{
    Clients(const Clients&) = delete;
    Clients& operator=(const Clients&) = delete;
    Clients()
        : phone(new PHONE_MsgClient)
        , calls(new PHONE_VoiceCallReceiver)
        , recents(RecentCall_MsgClient::instance())
    {
        readWhatIsPointedTo(*phone);
    }

    Folder folder;
    std::array<QCopChannel*, 3> all() const { return {phone, calls, recents}; }

    PHONE_MsgClient* phone;
    PHONE_VoiceCallReceiver* calls;
    RecentCall_MsgClient* recents;
};

/// What the classes of the library do when a message of any name comes.
void receive(Input& input)
{
    static const Clients& clients = *new Clients;
    const Message* message = messageFrom(input);
    const QCString name = message ? QCString(message->name) : QCString(input.text());
    const QByteArray payload = input.rest();
    for (QCopChannel* client : clients.all())
        client->receive(name, payload);
}

/// The decoder: no value that is not in the payload, and what it reads can be written and read again.
void decodePayload(Input& input)
{
    const Message* message = messageFrom(input);
    if (!message)
        return;
    const QByteArray payload = input.rest();
    const FieldValues values = decode(*message, payload);
    require(values.list.size() == std::ssize(message->fields), "each field has a value");
    require(values.whole >= 0 && values.whole <= values.list.size(), "no more fields are whole than there are");
    require(values.end >= 0 && values.end <= payload.size(), "fields end in the payload");
    if (!values.isComplete())
        return;
    const QByteArray again = encode(*message, values.list);
    const FieldValues same = decode(*message, again);
    require(same.isComplete() && same.end == again.size(), "what is encoded is whole");
    require(encode(*message, same.list) == again, "what is encoded comes back");
    // A text may fill its field of a record, but is not written so.
    for (qsizetype field = 0; !message->isRecord() && field < values.list.size(); ++field)
        require(areEqual(values.list[field], same.list[field]), "values come back");
}

/// The monitor and the recordings: they show any message on any channel, and a recorded one comes back.
void showMessage(Input& input)
{
    const Message* message = messageFrom(input);
    tool::ReceivedMessage received;
    received.channel = message ? QCString(message->channel) : QCString(input.text());
    received.name = message ? QCString(message->name) : QCString(input.text());
    received.time = QDateTime::fromMSecsSinceEpoch(input.number<uint32_t>(), Qt::UTC);
    received.payload = input.rest();
    // No frame brings such names.
    if (received.channel.isEmpty() || received.name.isEmpty() || (received.channel + received.name).contains('\0'))
        return;
    tool::ParticipantNames names;
    const QString text = tool::messageText(received, {}, names);
    require(!text.contains(u'\n'), "a message is shown on one line");
    tool::messageText(received, {.isRaw = true, .isColourful = true, .width = 40}, names);
    QJsonDocument(tool::messageJson(received, false)).toJson();
    const QByteArray line = tool::recordingLine(received);
    require(line.endsWith('\n') && line.indexOf('\n') == line.size() - 1, "a message is recorded on one line");
    const tool::ReceivedMessage again = tool::messageFromLine(line.chopped(1));
    require(again.channel == received.channel && again.name == received.name && again.payload == received.payload
                && again.time == received.time,
            "a recorded message comes back");
}

QList<QByteArray> shownSeeds()
{
    QList<QByteArray> seeds;
    for (const QByteArray& seed : messageSeeds())
        seeds += seed.first(1) + QByteArray(4, '\1') + seed.sliced(1);
    return seeds;
}

constexpr std::array kMessageTargets{
    Target{"message_receive", "the clients of all channels, any message name and payload", receive, messageSeeds},
    Target{"message_decode", "decode() and encode(), each message of the library", decodePayload, messageSeeds},
    Target{"message_show", "monitor's lines and JSON, lines of recordings", showMessage, shownSeeds},
};

} // namespace

std::span<const Target> messageTargets()
{
    return kMessageTargets;
}

} // namespace zyn::fuzz
