// The messages of the library's channels; those of the phone channel have a table of their own.
#include "recentcall/utility/RecentCall_Msg.h"
#include "utility/message/Message_p.h"
#include "utility/message/PhoneMessages_p.h"
#include <algorithm>
#include <charconv>
#include <iterator>

namespace zyn {
namespace {

using enum FieldKind;
using enum Occurrence;

// clang-format off
constexpr ChannelMessage kMessages[] = {
    {kVoiceCallChannel, kMakeCall, nullptr,
     {{Text, "number"}, {Text, "name"}, {Int, "flag"}, {Int, "clir"}, {Int, "dial-mode"}, {Char, "line"}}},
    {kVoiceCallChannel, kDropCall, nullptr, {}},

    {kPttChannel, kMakePttCall, nullptr,
     {{Int, "count"}, {Text, "numbers", kMaxPttParties, AsCounted}, {Text, "texts", kMaxPttParties, AsCounted},
      {Int, "value1"}, {Int, "value2"}}},
    {kPttChannel, kDropPttCall, nullptr, {}},

    {kRecentCallChannel, "RECENTCALL_MSG_0", "RECENTCALL_MSG_POWEROFF_S", {}},
    {kRecentCallChannel, "RECENTCALL_MSG_1", "RECENTCALL_MSG_SIMCARD_DIFFED_S", {}},
    {kRecentCallChannel, "RECENTCALL_MSG_2", "RECENTCALL_MSG_MISSEDCALL_UPDATE_S", {}},
    {kRecentCallChannel, "RECENTCALL_MSG_3", "RECENTCALL_MSG_SHOW_UI_S", {{Int, "category"}}},
    {kRecentCallChannel, "RECENTCALL_MSG_4", "RECENTCALL_MSG_SHOW_PAGE_S", {{Int, "page"}}},
    {kRecentCallChannel, "RECENTCALL_MSG_5", "RECENTCALL_MSG_SHOW_DETAIL_S",
     {{Int, "category"}, {Int, "index"}}},
    {kRecentCallChannel, "RECENTCALL_MSG_6", "RECENTCALL_MSG_EXIT_PICKER_S",
     {{Int, "selected"}, {Text, "number", 0, WhenSet}}},
    {kRecentCallChannel, "RECENTCALL_MSG_7", "RECENTCALL_MSG_HIDE_UI_S", {}},
    {kRecentCallChannel, RECENTCALL_CALLING_MSG, "RECENTCALL_CALLING_MSG", {}},
    {kRecentCallChannel, RECENTCALL_MESSAGE_MSG, "RECENTCALL_MESSAGE_MSG", {}},

    {kActivityLogChannel, kModifyFavourite, nullptr,
     {{Text, "old-number"}, {Text, "number"}, {Text, "name"}, {Text, "image"}, {Int, "contact-id"}}},
};
// clang-format on

/// Whether the table has as many numbered messages of the recent-call channel as there are, in their order.
constexpr bool isNumbered()
{
    unsigned type = 0;
    for (const ChannelMessage& message : kMessages) {
        std::string_view name(message.name);
        if (!name.starts_with(kRecentCallPrefix))
            continue;
        name.remove_prefix(kRecentCallPrefix.size());
        if (name.size() != 1 || name[0] != static_cast<char>('0' + type++))
            return false;
    }
    return type == kRecentCallTypes;
}

static_assert(isNumbered());

std::optional<MessageForm> phoneMessageForm(const QCString& name)
{
    const std::optional<unsigned> type = messageType(kPhonePrefix, name, kPhoneTypes);
    if (!type || !phoneMessages()[*type].enumerator)
        return std::nullopt;
    const PhoneMessage& message = phoneMessages()[*type];
    return MessageForm{message.enumerator, message.fields};
}

} // namespace

std::span<const ChannelMessage> channelMessages()
{
    return kMessages;
}

std::optional<MessageForm> messageForm(const QCString& channel, const QCString& name)
{
    if (channel == kPhoneChannel)
        return phoneMessageForm(name);
    const auto found = std::ranges::find_if(
        kMessages, [&](const ChannelMessage& message) { return channel == message.channel && name == message.name; });
    if (found == std::end(kMessages))
        return std::nullopt;
    return MessageForm{found->enumerator, found->fields};
}

QCString messageName(std::string_view prefix, unsigned type, unsigned types)
{
    if (type >= types)
        return QCString("");
    return QCString(prefix.data(), static_cast<qsizetype>(prefix.size())) + QCString::number(type);
}

std::optional<unsigned> messageType(std::string_view prefix, const QCString& name, unsigned types)
{
    std::string_view digits(name.constData(), static_cast<size_t>(name.size()));
    if (!digits.starts_with(prefix))
        return std::nullopt;
    digits.remove_prefix(prefix.size());
    if (digits.size() > 1 && digits.front() == '0')
        return std::nullopt;
    unsigned type = 0;
    const char* const end = digits.data() + digits.size();
    const auto [parsed, error] = std::from_chars(digits.data(), end, type);
    if (error != std::errc() || parsed != end || type >= types)
        return std::nullopt;
    return type;
}

} // namespace zyn
