// The messages of the recent-call and the activity-log channel, and every message of the library by its name.
#include "recentcall/utility/RecentCall_Messages_p.h"

#include "utility/message/PhoneMessages_p.h"

#include <algorithm>
#include <iterator>

namespace zyn {
namespace {

using enum FieldKind;

// What a type's message is: its channel, its name by the number, and the enumerator, which must have that number.
#define ZYN_TYPE(number, type)                                                                                         \
    kRecentCallChannel, "RECENTCALL_MSG_" #number,                                                                     \
        RecentCall_Msg::type == (number) ? #type : throw "not the type's number"

// Braces alone: what a list of fields refers to lives as long as the table only when no temporary is in between.
constexpr Message kScreenMessages[] = {
    kMakeCall,
    kDropCall,
    kMakePttCall,
    kDropPttCall,

    {ZYN_TYPE(0, RECENTCALL_MSG_POWEROFF_S)},
    {ZYN_TYPE(1, RECENTCALL_MSG_SIMCARD_DIFFED_S)},
    {ZYN_TYPE(2, RECENTCALL_MSG_MISSEDCALL_UPDATE_S)},
    {ZYN_TYPE(3, RECENTCALL_MSG_SHOW_UI_S), {{Int, "category"}}},
    {ZYN_TYPE(4, RECENTCALL_MSG_SHOW_PAGE_S), {{Int, "page"}}},
    {ZYN_TYPE(5, RECENTCALL_MSG_SHOW_DETAIL_S), {{Int, "category"}, {Int, "index"}}},
    {ZYN_TYPE(6, RECENTCALL_MSG_EXIT_PICKER_S), {{Int, "selected"}, {Text, "number", 0, Occurrence::WhenSet}}},
    {ZYN_TYPE(7, RECENTCALL_MSG_HIDE_UI_S)},
    {kRecentCallChannel, RECENTCALL_CALLING_MSG, "RECENTCALL_CALLING_MSG"},
    {kRecentCallChannel, RECENTCALL_MESSAGE_MSG, "RECENTCALL_MESSAGE_MSG"},

    kModifyFavourite,
};

#undef ZYN_TYPE

constexpr size_t kFirstRecentCall = 4;
constexpr size_t kRecentCalls = 10;

/// Whether each type is as far from the first as it says.
constexpr bool isOrderedByType()
{
    for (size_t type = 0; type + 2 < kRecentCalls; ++type) {
        if (!std::string_view(kScreenMessages[kFirstRecentCall + type].name).ends_with(static_cast<char>('0' + type)))
            return false;
    }
    return true;
}

static_assert(std::size(kScreenMessages) == kFirstRecentCall + kRecentCalls + 1);
static_assert(isOrderedByType());

} // namespace

std::span<const Message> recentCallMessages()
{
    return std::span(kScreenMessages).subspan(kFirstRecentCall, kRecentCalls);
}

std::span<const Message> channelMessages()
{
    return kScreenMessages;
}

const Message* findMessage(const QCString& channel, const QCString& name)
{
    if (channel == kPhoneChannel) {
        const PhoneMessage* const message = phoneMessage(name);
        return message && message->enumerator ? message : nullptr;
    }
    const auto found = std::ranges::find_if(
        kScreenMessages, [&](const Message& message) { return channel == message.channel && name == message.name; });
    return found == std::end(kScreenMessages) ? nullptr : &*found;
}

} // namespace zyn
