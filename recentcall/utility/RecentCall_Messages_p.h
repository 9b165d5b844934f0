// The messages of the recent-call and the activity-log channel, and every message of the library by its name.
#pragma once

#include "platform/QCString.h"
#include "recentcall/utility/RecentCall_Msg.h"
#include "utility/message/Message_p.h"

#include <span>

namespace zyn {

/// The channel of the recent-call screens.
inline constexpr char kRecentCallChannel[] = "/ZYN/recentcall";

/// The messages of the recent-call screens: by their types, then those of other components.
std::span<const Message> recentCallMessages();

/// The message of @p type, which is one of the enumerators.
inline const Message& recentCallMessage(RecentCall_Msg::RECENTCALL_MSG_TYPE_T type)
{
    return recentCallMessages()[static_cast<size_t>(type)];
}

/// @{ The message to the owner of the activity log: a favourite's details have changed.
inline constexpr char kActivityLogChannel[] = "ACTIVITY_LOG_CHANNEL";
inline constexpr Message kModifyFavourite{.channel = kActivityLogChannel,
                                          .name = "MODIFY_TOPPAL_DETAILS",
                                          .fields = {{FieldKind::Text, "old-number"},
                                                     {FieldKind::Text, "number"},
                                                     {FieldKind::Text, "name"},
                                                     {FieldKind::Text, "image"},
                                                     {FieldKind::Int, "contact-id"}}};
/// @}

/// Every channel of the library.
inline constexpr const char* kChannels[] = {kPhoneChannel, kVoiceCallChannel, kPttChannel, kRecentCallChannel,
                                            kActivityLogChannel};

/// All messages but those of the phone channel, channel by channel.
std::span<const Message> channelMessages();

/// The message @p name of @p channel; null when the library has no such message.
const Message* findMessage(const QCString& channel, const QCString& name);

} // namespace zyn
