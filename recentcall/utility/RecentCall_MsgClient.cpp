// Turns the messages of the recent-call screens into signals.
#include "recentcall/utility/RecentCall_MsgClient.h"

#include "utility/PHONE_SignalTypes_p.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

namespace {

using Client = RecentCall_MsgClient;
using zyn::PayloadReader;

/// Not ended with the process: by then the channels may be gone.
RecentCall_MsgClient* s_instance = nullptr;

RC_CALL_CATEGORY_T readCategory(PayloadReader& payload)
{
    return static_cast<RC_CALL_CATEGORY_T>(payload.readInt());
}

// A signal's receiver may destroy the client: each of these ends with its signal.

template<auto Signal>
void emitAlone(Client& client, PayloadReader&)
{
    Q_EMIT(client.*Signal)();
}

void updateMissedCalls(Client& client, PayloadReader&)
{
    std::printf("get message: RECENTCALL_MSG_MISSEDCALL_UPDATE_S\n");
    Q_EMIT client.signalMissedCallUpdate();
}

void showCategory(Client& client, PayloadReader& payload)
{
    Q_EMIT client.signalShowRecentCall(readCategory(payload), OTHER_COMPONENT_NONE);
}

void showPage(Client& client, PayloadReader& payload)
{
    const auto page = static_cast<RC_PAGE_ID_T>(payload.readInt());
    std::printf("get msg to goto page %d", page);
    Q_EMIT client.signalShowPage(page);
}

void showDetail(Client& client, PayloadReader& payload)
{
    const RC_CALL_CATEGORY_T category = readCategory(payload);
    const int index = payload.readInt();
    std::printf("get msg to goto RC detail detail %d:%d", category, index);
    Q_EMIT client.signalShowDetail(category, index);
}

void exitPicker(Client& client, PayloadReader& payload)
{
    const bool selected = payload.readInt() != 0;
    const QString number = selected ? payload.readText() : QString();
    std::printf("selected:%d,number:%s", selected ? 1 : 0, number.toLatin1().constData());
    Q_EMIT client.signalExitPicker(selected, number);
}

void hide(Client& client, PayloadReader&)
{
    std::printf("about to hide UI");
    Q_EMIT client.signalHideUI();
}

/// What becomes of each numbered message; the index is the type.
constexpr void (*kNumbered[])(Client& client, PayloadReader& payload) = {
    &emitAlone<&Client::signalPowerOff>,
    &emitAlone<&Client::signalSimCardDiffed>,
    &updateMissedCalls,
    &showCategory,
    &showPage,
    &showDetail,
    &exitPicker,
    &hide,
};

static_assert(std::size(kNumbered) == zyn::kRecentCallTypes);

/// The messages of other components, which have all calls shown.
constexpr struct
{
    const char* name;
    const char* log;
    OTHER_COMPONENT_SHOW_UI component;
} kOfOthers[] = {
    {RECENTCALL_MESSAGE_MSG, "get message:RECENTCALL_MESSAGE_MSG", OTHER_COMPONENT_MESSAGE},
    {RECENTCALL_CALLING_MSG, "get message:RECENTCALL_CALLING_MSG", OTHER_COMPONENT_CALLING},
};

} // namespace

RecentCall_MsgClient* RecentCall_MsgClient::instance()
{
    if (!s_instance)
        s_instance = new RecentCall_MsgClient(nullptr, nullptr);
    return s_instance;
}

void RecentCall_MsgClient::destruction()
{
    delete std::exchange(s_instance, nullptr);
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
    if (const auto type = zyn::messageType(zyn::kRecentCallPrefix, message, zyn::kRecentCallTypes)) {
        PayloadReader payload(data);
        kNumbered[*type](*this, payload);
        return;
    }
    const auto other = std::ranges::find_if(kOfOthers, [&](const auto& row) { return message == row.name; });
    if (other != std::end(kOfOthers)) {
        std::puts(other->log);
        Q_EMIT signalShowRecentCall(RC_CALL_CATEGORY_ALL, other->component);
    }
}
