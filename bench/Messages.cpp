// A status message that has arrived: read, logged and told to its receivers, beside the same by hand.
#include "bench/Bench.h"
#include "bench/Lines.h"
#include "platform/QCopChannel.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDataStream>
#include <QtCore/QtEndian>

namespace bench {
namespace {

constexpr char kChannel[] = "/ZYN/bench";
constexpr char kName[] = "message";
constexpr auto kType = PHONE_Msg::PHONE_MSG_SESSION_DATA_BYTES_S;

/// The five fields as they are sent.
QByteArray payload()
{
    return zyn::encode(zyn::phoneMessage(kType), {1, uint8_t{3}, 123'456, 23'456, 100'000});
}

/// Connects @p receivers slots to the signal of @p client that a message becomes, and counts the calls.
std::shared_ptr<int> connectReceivers(PHONE_MsgClient& client, int receivers)
{
    auto calls = std::make_shared<int>(0);
    for (int i = 0; i < receivers; ++i)
        QObject::connect(&client, &PHONE_MsgClient::signalSessionDataBytes, &client, [calls] { ++*calls; });
    return calls;
}

Prepare receive(int receivers)
{
    return [receivers](const QByteArray& directory) -> Job {
        useStores(directory);
        const auto client = std::make_shared<PHONE_MsgClient>();
        const auto calls = connectReceivers(*client, receivers);
        return {.run = [client, calls, receivers, name = QCString(zyn::phoneMessage(kType).name), data = payload()] {
            *calls = 0;
            client->receive(name, data);
            require(*calls == receivers, "a message's receivers");
        }};
    };
}

/// The lines that the library writes of such a message.
void writeLines(bool isConnected, uint8_t id, quint32 bytes, quint32 sent, quint32 received)
{
    Lines() << "utility/PHONE_MsgClient,receive," << 49 << " \nphone client gprs connected =  " << int{isConnected}
            << "phone client gprs current sentbytes = " << sent
            << "phone client gprs current recvedbytes = " << received << "phone client gprs session id =  " << id
            << "phone client gprs session bytes = " << bytes << "phone client gprs sesion sentbytes = " << sent
            << "phone client gprs session recvedbytes = " << received << "utility/PHONE_MsgClient,receive," << 50
            << " \n";
}

/// A number of 32 bits, most significant byte first.
quint32 numberAt(const QByteArray& data, qsizetype at)
{
    return qFromBigEndian<quint32>(data.constData() + at);
}

Prepare receiveByHand(int receivers)
{
    return [receivers](const QByteArray& directory) -> Job {
        useStores(directory);
        const auto client = std::make_shared<PHONE_MsgClient>();
        const auto calls = connectReceivers(*client, receivers);
        return {.run = [client, calls, receivers, data = payload()] {
            *calls = 0;
            require(data.size() == 17, "the payload's size");
            const bool isConnected = numberAt(data, 0) == 1;
            const auto id = static_cast<uint8_t>(data.at(4));
            writeLines(isConnected, id, numberAt(data, 5), numberAt(data, 9), numberAt(data, 13));
            Q_EMIT client->signalSessionDataBytes(id, isConnected, numberAt(data, 5), numberAt(data, 9),
                                                  numberAt(data, 13));
            require(*calls == receivers, "a message's receivers");
        }};
    };
}

/// What an application would write that knows QDataStream: no lines.
Prepare receiveWithQt(int receivers)
{
    return [receivers](const QByteArray& directory) -> Job {
        useStores(directory);
        const auto client = std::make_shared<PHONE_MsgClient>();
        const auto calls = connectReceivers(*client, receivers);
        return {.run = [client, calls, receivers, data = payload()] {
            *calls = 0;
            QDataStream stream(data);
            qint32 isConnected = 0;
            quint8 id = 0;
            quint32 bytes = 0;
            quint32 sent = 0;
            quint32 received = 0;
            stream >> isConnected >> id >> bytes >> sent >> received;
            Q_EMIT client->signalSessionDataBytes(id, isConnected == 1, bytes, sent, received);
            require(*calls == receivers && stream.status() == QDataStream::Ok, "a message's receivers");
        }};
    };
}

/// Sends to listeners of this process that do not read.
Prepare sendTo(int listeners)
{
    return [listeners](const QByteArray& directory) -> Job {
        qputenv("ZYN_QCOP_PATH", directory);
        const auto channels = std::make_shared<std::vector<std::unique_ptr<QCopChannel>>>();
        for (int i = 0; i < listeners; ++i)
            channels->push_back(std::make_unique<QCopChannel>(kChannel));
        return {.run = [channels, data = payload()] { require(QCopChannel::send(kChannel, kName, data), "send()"); }};
    };
}

using Listeners = std::vector<std::unique_ptr<QCopChannel>>;

/// Listeners on as many channels of this process, which count in @p heard.
std::shared_ptr<Listeners> makeListeners(int channels, const std::shared_ptr<int>& heard)
{
    auto listeners = std::make_shared<Listeners>();
    for (int i = 0; i < channels; ++i) {
        listeners->push_back(std::make_unique<QCopChannel>(QCString(kChannel) + QByteArray::number(i)));
        QObject::connect(listeners->back().get(), &QCopChannel::received, [heard] { ++*heard; });
    }
    return listeners;
}

/// Handles events until @p heard has come to @p messages.
void hear(const int& heard, int messages)
{
    while (heard < messages)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

Prepare sendAndHear(const QByteArray& data)
{
    return [data](const QByteArray& directory) -> Job {
        qputenv("ZYN_QCOP_PATH", directory);
        const auto heard = std::make_shared<int>(0);
        const auto listeners = makeListeners(1, heard);
        return {.run = [=] {
            *heard = 0;
            require(QCopChannel::send(listeners->front()->channel(), kName, data), "send()");
            hear(*heard, 1);
        }};
    };
}

Row statusMessage(const char* name, int receivers)
{
    return {.name = name,
            .goal = 1.3,
            .base = kByHand,
            .columns = {{kOurs, receive(receivers)},
                        {kByHand, receiveByHand(receivers)},
                        {"QDataStream", receiveWithQt(receivers)}}};
}

} // namespace

Prepare sendBytes(int size)
{
    return sendAndHear(QByteArray(size, 'x'));
}

/// Only sending is measured: listeners read when room is made.
Prepare sendOnChannels(int channels)
{
    return [channels](const QByteArray& directory) -> Job {
        constexpr int kOften = 100;
        qputenv("ZYN_QCOP_PATH", directory);
        const auto heard = std::make_shared<int>(0);
        const auto listeners = makeListeners(channels, heard);
        const std::function<void()> run = [=, next = size_t{0}]() mutable {
            require(QCopChannel::send(listeners->at(next)->channel(), kName, payload()), "send()");
            next = (next + 1) % listeners->size();
        };
        const auto renew = [=] {
            hear(*heard, kOften);
            *heard = 0;
        };
        for (int i = 0; i < channels; ++i)
            run();
        hear(*heard, channels);
        *heard = 0;
        return {.run = run, .renew = renew, .often = kOften};
    };
}

std::vector<Row> messageRows()
{
    return {statusMessage("status message, 1 receiver", 1), statusMessage("status message, 36 receivers", 36)};
}

std::vector<Row> sendingRows()
{
    return {
        {"send a message, 1 listener", 0, kLimit, {{kOurs, sendTo(1)}}},
        {"send a message, 4 listeners", 0, kLimit, {{kOurs, sendTo(4)}}},
        {"send and hear a message", 0, kLimit, {{kOurs, sendAndHear(payload())}}},
    };
}

} // namespace bench
