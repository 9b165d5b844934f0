// One client of the phone server's control socket.
#include "handset/phone_server/ControlConnection.h"

#include "handset/common/ScriptReader.h"
#include "handset/phone_server/PhoneControl.h"
#include "handset/phone_server/Script.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QPointer>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace zyn::phonecontrol;

namespace zyn::handset {
namespace {

QJsonObject callJson(int id, const Call& call)
{
    return {{u"id"_s, id},
            {u"number"_s, call.party().number},
            {u"name"_s, call.party().name},
            {u"type"_s, QLatin1String(call.isPtt() ? kPttCall : kVoiceCall)},
            {u"direction"_s, QLatin1String(call.machine().isPlaced() ? kPlacedCall : kIncomingCall)},
            {u"state"_s, QLatin1String(nameOf(call.machine().state()))},
            {u"since"_s, call.since().toString(Qt::ISODateWithMs)}};
}

/// The words in @p data; none unless a NUL is behind each.
QStringList wordsIn(std::span<const std::byte> data)
{
    const QByteArrayView text(data.data(), std::ssize(data));
    if (!text.endsWith('\0'))
        return {};
    return QString::fromUtf8(text.chopped(1)).split(QChar(u'\0'));
}

bool isSecretCode(const QString& code)
{
    return code.size() >= kShortestCode && code.size() <= kLongestCode
           && std::ranges::all_of(code, [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
}

/// Why something that can happen does not happen now.
QString obstacle(const PhoneLine& line, const QString& word)
{
    const bool isOfNetwork = std::ranges::any_of(
        kLineEvents, [&](const LineEvent& event) { return event.isOfNetwork && word == QLatin1String(event.name); });
    if (isOfNetwork && !line.modem().isPlayed())
        return u"the network is not played here"_s;
    if (!line.hasRadio())
        return u"the radio is off"_s;
    if (const Call* call = line.current())
        return u"the call is %1"_s.arg(QLatin1String(nameOf(call->machine().state())));
    return u"there is no call"_s;
}

/// Makes happen what @p words say. Throws a ScriptError if it cannot.
void makeHappen(const QStringList& words, PhoneLine& line)
{
    if (words.isEmpty() || words.first().isEmpty())
        throw ScriptError{u"nothing is said"_s};
    const ScriptStep step = scriptStep(words, 0);
    if (step.delay.count() > 0)
        throw ScriptError{u"a delay is for scripts"_s};
    if (step.run(line))
        return;
    if (words.first() == QLatin1String(kSnapshot.name))
        throw ScriptError{u"no state has been told yet"_s};
    throw ScriptError{u"'%1' does not apply: %2"_s.arg(words.first(), obstacle(line, words.first()))};
}

} // namespace

ControlConnection::ControlConnection(posix::UniqueFd socket, PhoneLine& line, std::chrono::milliseconds timeout)
    : CommandConnection(std::move(socket), kLongestSaying, timeout)
    , m_line(line)
{
    connect(&line, &PhoneLine::callChanged, this, &ControlConnection::tellChange);
}

bool ControlConnection::admits(const CommandFrameHeader& header)
{
    const bool isSaying =
        (header.code == Say || header.code == Unlock) && header.dataLength <= static_cast<int32_t>(kLongestSaying);
    const bool isAsking = header.code == ListCalls || header.code == FollowCalls || header.code == AskModem;
    if (isSaying || (isAsking && header.dataLength == 0))
        return true;
    refuse(u"sent an invalid command"_s);
    return false;
}

void ControlConnection::execute(const CommandFrameHeader& header, std::span<const std::byte> data)
{
    switch (header.code) {
    case Say:
        return say(data);
    case FollowCalls:
        return followCalls();
    case AskModem:
        return send(ModemIs, QJsonDocument(m_line.modem().describe()).toJson(QJsonDocument::Compact));
    case Unlock:
        return unlock(data);
    default:
        return listCalls();
    }
}

void ControlConnection::say(std::span<const std::byte> data)
{
    try {
        makeHappen(wordsIn(data), m_line);
        send(Done);
    } catch (const ScriptError& error) {
        send(Refused, error.text.toUtf8());
    }
}

void ControlConnection::unlock(std::span<const std::byte> data)
{
    const QStringList codes = wordsIn(data);
    if (codes.isEmpty() || codes.size() > 2 || !std::ranges::all_of(codes, isSecretCode))
        return send(Refused, "a PIN has 4 to 8 digits, and a PUK 8");
    // The modem takes its time.
    allowIdle();
    m_line.modem().unlock({codes.last(), codes.size() == 2 ? codes.first() : QString()},
                          [self = QPointer(this)](const QString& failure) {
                              if (self)
                                  self->send(failure.isEmpty() ? Done : Refused, failure.toUtf8());
                          });
}

void ControlConnection::listCalls()
{
    QJsonArray calls;
    for (const auto& [id, call] : m_line.calls()) {
        if (!call.machine().isOver())
            calls += callJson(id, call);
    }
    send(Calls, QJsonDocument(calls).toJson(QJsonDocument::Compact));
}

void ControlConnection::followCalls()
{
    m_follows = true;
    allowIdle();
    listCalls();
}

void ControlConnection::tellChange(int id)
{
    if (m_follows)
        send(CallChanged, QJsonDocument(callJson(id, *m_line.call(id))).toJson(QJsonDocument::Compact));
}

} // namespace zyn::handset
