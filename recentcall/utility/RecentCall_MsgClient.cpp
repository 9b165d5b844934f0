// Turns the messages of the recent-call screens into signals.
#include "recentcall/utility/RecentCall_MsgClient.h"

#include "recentcall/utility/RecentCall_Messages_p.h"
#include "utility/PHONE_SignalTypes_p.h"
#include "utility/message/Payload_p.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

using Client = RecentCall_MsgClient;

/// Not ended with the process: by then the channels may be gone.
RecentCall_MsgClient* s_msgClient = nullptr;

// A signal's receiver may destroy the client: each of these ends with its signal.

template<auto Signal>
void emitAlone(Client& client, const zyn::FieldValues&)
{
    Q_EMIT(client.*Signal)();
}

void updateMissedCalls(Client& client, const zyn::FieldValues&)
{
    std::printf("get message: RECENTCALL_MSG_MISSEDCALL_UPDATE_S\n");
    Q_EMIT client.signalMissedCallUpdate();
}

void showCategory(Client& client, const zyn::FieldValues& values)
{
    Q_EMIT client.signalShowRecentCall(RC_CALL_CATEGORY_T{values[0].number}, OTHER_COMPONENT_NONE);
}

void showPage(Client& client, const zyn::FieldValues& values)
{
    const RC_PAGE_ID_T page{values[0].number};
    std::printf("get msg to goto page %d", page);
    Q_EMIT client.signalShowPage(page);
}

void showDetail(Client& client, const zyn::FieldValues& values)
{
    const RC_CALL_CATEGORY_T category{values[0].number};
    const int index = values[1].number;
    std::printf("get msg to goto RC detail detail %d:%d", category, index);
    Q_EMIT client.signalShowDetail(category, index);
}

void exitPicker(Client& client, const zyn::FieldValues& values)
{
    const bool selected = values[0].number != 0;
    std::printf("selected:%d,number:%s", selected ? 1 : 0, values[1].text.toLatin1().constData());
    Q_EMIT client.signalExitPicker(selected, values[1].text);
}

void hide(Client& client, const zyn::FieldValues&)
{
    std::printf("about to hide UI");
    Q_EMIT client.signalHideUI();
}

void showForCalling(Client& client, const zyn::FieldValues&)
{
    std::puts("get message:RECENTCALL_CALLING_MSG");
    Q_EMIT client.signalShowRecentCall(RC_CALL_CATEGORY_ALL, OTHER_COMPONENT_CALLING);
}

void showForMessage(Client& client, const zyn::FieldValues&)
{
    std::puts("get message:RECENTCALL_MESSAGE_MSG");
    Q_EMIT client.signalShowRecentCall(RC_CALL_CATEGORY_ALL, OTHER_COMPONENT_MESSAGE);
}

/// What becomes of each message, in the order of their table.
constexpr void (*kReactions[])(Client& client, const zyn::FieldValues& values) = {
    emitAlone<&Client::signalPowerOff>,
    emitAlone<&Client::signalSimCardDiffed>,
    updateMissedCalls,
    showCategory,
    showPage,
    showDetail,
    exitPicker,
    hide,
    showForCalling,
    showForMessage,
};

} // namespace

RecentCall_MsgClient* RecentCall_MsgClient::instance()
{
    if (!s_msgClient)
        s_msgClient = new RecentCall_MsgClient(nullptr, nullptr);
    return s_msgClient;
}

void RecentCall_MsgClient::destruction()
{
    delete std::exchange(s_msgClient, nullptr);
}

RecentCall_MsgClient::RecentCall_MsgClient(QObject* parent, const char* name)
    : RecentCall_Msg(parent, name)
{
    [[maybe_unused]] static const bool typesAreKnown = zyn::registerSignalTypes(staticMetaObject);
}

RecentCall_MsgClient::~RecentCall_MsgClient() = default;

void RecentCall_MsgClient::receive(const QCString& message, const QByteArray& data)
{
    std::printf("get message: %s", message.constData());
    const auto messages = zyn::recentCallMessages();
    const auto found = std::ranges::find_if(messages, [&](const zyn::Message& known) { return message == known.name; });
    if (found != messages.end())
        kReactions[found - messages.begin()](*this, zyn::decode(*found, data));
}
