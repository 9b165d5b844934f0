// The channels of the library: their names, and the messages on each.
#pragma once

#include "platform/QCString.h"
#include "utility/message/Payload_p.h"
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>

namespace zyn {

/// @{ The phone channel: its name, the prefix of its message names, and how many types it has.
inline constexpr char kPhoneChannel[] = "/ZYN/phone";
inline constexpr std::string_view kPhonePrefix = "PHONE_MSG_";
inline constexpr unsigned kPhoneTypes = 55;
/// @}

/// The name of the message of @p type, or an empty one, not null, when there are not as many types.
QCString messageName(std::string_view prefix, unsigned type, unsigned types);

/// The type, below @p types, whose name is @p name to the byte: the number has no sign, blank or leading
/// zero.
std::optional<unsigned> messageType(std::string_view prefix, const QCString& name, unsigned types);

/// @{ Requests to place and end voice calls.
inline constexpr char kVoiceCallChannel[] = "/ZYN/Phone/LocalPath";
inline constexpr char kMakeCall[] = "MakeCall";
inline constexpr char kDropCall[] = "DropCall";
/// How the number of a call is dialed.
enum DialMode : int {
    DialOrdinary = 0,
    DialDirectly = 1,  ///< unchanged
    DialPrependly = 2, ///< with a prefix put in front
};
/// What a request says of a call's identity restriction and line when its sender leaves them open.
inline constexpr int kDefaultClir = 0;
inline constexpr int8_t kDefaultLine = 2;
/// @}

/// @{ Requests to start and end push-to-talk calls, and how many parties one has at most.
inline constexpr char kPttChannel[] = "/KQ/calling2ptt";
inline constexpr char kMakePttCall[] = "makePttCall";
inline constexpr char kDropPttCall[] = "dropPttCall";
inline constexpr uint8_t kMaxPttParties = 25;
/// @}

/// @{ The recent-call screens: the prefix of their numbered messages, and how many of those there are.
inline constexpr char kRecentCallChannel[] = "/ZYN/recentcall";
inline constexpr std::string_view kRecentCallPrefix = "RECENTCALL_MSG_";
inline constexpr unsigned kRecentCallTypes = 8;
/// @}

/// @{ What the owner of the activity log is told.
inline constexpr char kActivityLogChannel[] = "ACTIVITY_LOG_CHANNEL";
inline constexpr char kModifyFavourite[] = "MODIFY_TOPPAL_DETAILS";
/// @}

/// Every channel of the library.
inline constexpr const char* kChannels[] = {kPhoneChannel, kVoiceCallChannel, kPttChannel, kRecentCallChannel,
                                            kActivityLogChannel};

/// A message of a channel other than the phone channel. For constants only: the list does not own what is in it.
struct ChannelMessage
{
    const char* channel;
    const char* name;
    const char* enumerator; ///< null when it has none
    std::initializer_list<Field> fields;
};

/// All of them, channel by channel.
std::span<const ChannelMessage> channelMessages();

/// What a message is and holds.
struct MessageForm
{
    const char* enumerator; ///< null when the message has none
    std::span<const Field> fields;
};

/// The form of the message @p name of @p channel, the phone channel included; nothing when the library has no
/// such message.
std::optional<MessageForm> messageForm(const QCString& channel, const QCString& name);

} // namespace zyn
