// A handset that runs is attacked: at its doors, and by what is said on its sockets when they are open to all.
#include "platform/posix/UnixSocket_p.h"
#include "platform/qcop/ChannelFrame_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/faults/Service.h"
#include "tests/faults/intruder/Attacks.h"
#include "tests/faults/intruder/Evidence.h"
#include "tests/support/SocketClient.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QFile>

#include <span>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using zyn::posix::UniqueFd;

namespace intruder {
namespace {

/// A message as a sender of the channel writes it.
QByteArray message(const QByteArray& name, const QByteArray& data)
{
    QByteArray frame;
    zyn::ChannelFrame(name, data).appendTo(frame);
    return zyn::introductionFrame() + frame;
}

/// What a client of each socket says to change something, or to learn something.
QList<QByteArray> validFrames()
{
    PHONE_ENG_RecentCall call;
    call.setPhoneNumber(QString::fromLatin1(kForged));
    call.category = RC_CALL_CATEGORY_MISSED;
    const QByteArray record(reinterpret_cast<const char*>(&call), sizeof call);
    const QByteArray greeting = frame(zyn::kGreetingCommand, words({0}));
    const QByteArray java = frame(0, words({zyn::voicecall::Java}));
    namespace rc = zyn::recentcall;
    QList<QByteArray> frames;
    for (const int32_t category : {1, 2, 3, 4}) {
        frames.append(greeting + frame(rc::ListRecords, words({category, 1})));
        frames.append(greeting + frame(rc::DeleteAll, words({category, 1})));
    }
    for (const int32_t code : {int32_t(rc::AddRecord), int32_t(rc::DeleteRecord), int32_t(rc::MarkRead)})
        frames.append(greeting + frame(code, record));
    frames.append(java + frame(2, words({0}) + kForged.leftJustified(44, '\0')));
    frames.append(frame(0, words({zyn::voicecall::SimToolkit})) + frame(2, kForged.leftJustified(108, '\0')));
    frames.append(java + frame(3));
    frames.append(frame(1, QByteArray("incoming\0", 9) + kForged + '\0'));
    frames.append(frame(2));
    frames.append(frame(3));
    frames.append(message(kForgedMessage, kForged));
    frames.append(message("RECENTCALL_MSG_2", {}) + message(kForgedMessage, {}));
    return frames;
}

/// One of the valid frames, damaged, or bytes that never were one.
QByteArray hostileFrame(QRandomGenerator& random, const QList<QByteArray>& valid)
{
    QByteArray frame = valid.at(random.bounded(valid.size()));
    switch (random.bounded(4)) {
    case 0:
        frame.truncate(random.bounded(frame.size()));
        break;
    case 1:
        frame[random.bounded(frame.size())] = char(random.bounded(256));
        break;
    case 2:
        frame = frame.repeated(random.bounded(1, 64));
        break;
    default:
        frame = QByteArray(random.bounded(1, 4096), '\xff');
    }
    return frame;
}

/// Everything that is said is said on @p path, by a user who may open it; lines tell what came back.
void sendFrames(int out, const QByteArray& path, const QList<QByteArray>& frames)
{
    for (const QByteArray& frame : frames) {
        const UniqueFd socket = zyn::posix::connectUnix(path, std::chrono::milliseconds(kTimeout));
        const auto deadline = zyn::posix::Clock::now() + std::chrono::milliseconds(kTimeout);
        if (socket.isValid())
            zyn::posix::sendAll(socket.get(), std::as_bytes(std::span(frame.constData(), size_t(frame.size()))), {},
                                deadline);
        std::byte answer{};
        const bool isAnswered =
            socket.isValid() && zyn::posix::receiveAll(socket.get(), std::span(&answer, 1), deadline);
        const bool isServed = socket.isValid() && !isAnswered && zyn::posix::Clock::now() >= deadline;
        say(out, QByteArray(isServed ? "be listened to" : "get an answer") + '\t' + path + '\t'
                     + (isAnswered || isServed ? '1' : '0'));
    }
}

/// Connections that are kept, as many as one user may have.
void flood(const QByteArray& path)
{
    std::vector<UniqueFd> connections;
    const QByteArray junk(65536, 'x');
    for (int i = 0; i < 500; ++i) {
        connections.push_back(zyn::posix::connectUnixAtOnce(path));
        if (connections.back().isValid())
            zyn::posix::sendSome(connections.back().get(),
                                 std::as_bytes(std::span(junk.constData(), size_t(junk.size()))));
    }
}

void attackSockets(QRandomGenerator& random, int frames)
{
    QList<QByteArray> sockets;
    std::vector<UniqueFd> held; // he gets to them past the directories, and finds them open
    for (const QByteArray& path : allPaths()) {
        if (kindOf(path) != 's')
            continue;
        held.emplace_back(::open(path.constData(), O_PATH | O_CLOEXEC));
        sockets.append("/proc/self/fd/" + QByteArray::number(held.back().get()));
        if (::chmod(path.constData(), 0666) != 0)
            qFatal("%s cannot be opened", path.constData());
    }
    report.check(sockets.size() >= 3, u"too few sockets to attack: %1"_s.arg(sockets.size()));
    QList<QByteArray> all = validFrames();
    for (int i = 0; i < frames; ++i)
        all.append(hostileFrame(random, validFrames()));
    Intruder intruder([&](int out, int) {
        for (const QByteArray& path : sockets) {
            sendFrames(out, path, all);
            flood(path);
        }
    });
    noteLines(intruder.lines());
    for (const UniqueFd& fd : held)
        ::chmod(("/proc/self/fd/" + QByteArray::number(fd.get())).constData(), 0600);
}

} // namespace

void attackRunning(const Place& place, QRandomGenerator& random, const Extent& extent)
{
    const QString who = place.owner == 0 ? u"root"_s : u"the first user"_s;
    clearTmp(place);
    Handset handset(place);
    report.check(handset.missing().isEmpty(), QString::fromLocal8Bit(handset.missing()));
    const QString recording = QFile::decodeName(kHome + "/day.recording");
    Program monitor(place, programs + u"/zynphone"_s, {u"monitor"_s, u"--record"_s, recording});
    report.check(faults::comesTrue([&] { return QFile::exists(recording); }), u"nobody records"_s);
    fill(place);
    const QByteArray calls = ask(place, u"calls export"_s).text;
    ask(place, u"favourites announce"_s); // whatever it says
    const auto before = snapshot();

    attackDoors(place, handset);
    auto recorded = before; // grows by what the first user's own programs say
    recorded.remove(QFile::encodeName(recording));
    compare(recorded, snapshot(), u"%1's, after what can be done to files"_s.arg(who));
    report.check(answers(place, u"phone calls"_s), u"%1's phone does not answer again"_s.arg(who));
    report.check(answers(place, u"calls export"_s, calls), u"%1's calls cannot be listed again"_s.arg(who));

    attackSockets(random, extent.frames);
    compare(recorded, snapshot(), u"%1's, after frames"_s.arg(who));
    report.check(ask(place, u"calls export"_s).text == calls, u"%1's calls were changed"_s.arg(who));
    report.check(!ask(place, u"phone calls"_s).text.contains(kForged), u"a forged call is on the line"_s);
    const auto heard = [&] {
        QFile file(recording);
        return file.open(QIODevice::ReadOnly) && file.readAll().contains(kForgedMessage);
    };
    report.check(!heard(), u"a forged message was heard"_s);
    report.check(handset.missing().isEmpty(), QString::fromLocal8Bit(handset.missing()));
    const int growth = handset.growth();
    report.memory[who] = growth;
    report.check(extent.memoryBound == 0 || growth <= extent.memoryBound,
                 u"a service has grown by %1 KiB"_s.arg(growth));

    // What he has sent would have been heard and done, had it come from the first user.
    ask(place, u"send /ZYN/phone %1"_s.arg(QLatin1String(kForgedMessage)));
    report.check(faults::comesTrue(heard), u"the campaign does not see what is heard"_s);
}

} // namespace intruder
