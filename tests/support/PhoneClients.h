// The clients of a phone server, and the log of its calls, as scenarios have them.
#pragma once

#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RC_RecordInterface.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "tests/support/Process.h"
#include "tests/support/Scenario.h"
#include "tests/support/SocketClient.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <map>

/// The next @p count replies, by name.
inline QString replies(const zyn::posix::UniqueFd& fd, int count)
{
    using namespace zyn::voicecall;
    static const QMap<int, QString> names = {{CallDialing, QStringLiteral("dialing")},
                                             {CallAlerting, QStringLiteral("alerting")},
                                             {CallConnected, QStringLiteral("connected")},
                                             {CallEnded, QStringLiteral("ended")},
                                             {CallFailed, QStringLiteral("failed")}};
    QStringList texts;
    while (texts.size() < count) {
        zyn::CommandFrameHeader::Bytes bytes = {};
        const auto deadline = zyn::posix::Clock::now() + std::chrono::milliseconds(role::kTimeout);
        const bool came = zyn::posix::receiveAll(fd.get(), bytes, deadline);
        texts += came ? names.value(zyn::CommandFrameHeader::decode(bytes).value().code) : QStringLiteral("none");
    }
    return texts.join(u' ');
}

/// The calls that the recent-call service has, oldest first, voice calls last.
inline QByteArrayList calls()
{
    QByteArrayList texts;
    for (const auto type : {RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1}) {
        QPtrList<RC_RecordInterface> list;
        if (RC_Interface().getRecordList(list, RC_CALL_CATEGORY_ALL, type) != 0)
            return {"no answer"};
        for (const RC_RecordInterface* call : list) {
            const auto* data = static_cast<const RC_RecordInterfaceImpl*>(call)->getData();
            texts.prepend(QByteArray::number(data->category) + ' ' + data->getPhoneNumber().toLatin1() + ' '
                          + data->getDisplayName().toLatin1() + (call->getDuration() > 0 ? " talked" : " none"));
        }
    }
    return texts;
}

/// What a SIM toolkit sends to have @p number called.
inline QByteArray simCall(const QByteArray& number)
{
    return number.leftJustified(108, '\0');
}

/// The clients of a scenario, by the names that it gives them.
using PhoneClients = std::map<QString, zyn::posix::UniqueFd>;

/// The words for clients of the phone server's socket, and for the calls that are stored.
inline scenario::Verbs clientVerbs(PhoneClients& clients)
{
    using namespace zyn::voicecall;
    using Words = const QStringList&;
    const auto put = [&clients](Words w, int32_t code, const QByteArray& data = {}) {
        send(clients.at(w[0]), frame(code, data));
    };
    return {
        {QStringLiteral("calls"), [] { return QString::fromLatin1(calls().join(", ")); }},
        {QStringLiteral("connect"), [&](Words w) { clients[w[0]] = connectAndSend(socketPath(), {}); }},
        {QStringLiteral("sim"), [=](Words w) { put(w, PHONE_VOICECALL_CMD_REGISTER, words({SimToolkit})); }},
        {QStringLiteral("java"), [=](Words w) { put(w, PHONE_VOICECALL_CMD_REGISTER, words({Java})); }},
        {QStringLiteral("sim-call"), [=](Words w) { put(w, PHONE_VOICECALL_CMD_MAKE_CALL, simCall(w[1].toLatin1())); }},
        {QStringLiteral("java-call"),
         [=](Words w) { put(w, PHONE_VOICECALL_CMD_MAKE_CALL, words({7}) + w[1].toLatin1().leftJustified(44, '\0')); }},
        {QStringLiteral("put"), [=](Words w) { put(w, w[1].toInt(), scenario::bytes(w.value(2))); }},
        {QStringLiteral("replies"), [&](Words w) { return replies(clients.at(w[0]), w[1].toInt()); }},
        {QStringLiteral("closed"), [&](Words w) { return isClosed(clients.at(w[0])); }},
    };
}
