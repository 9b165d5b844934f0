// What describes a message: its channel, its names and its fields. The channels of the phone side.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace zyn {

enum class FieldKind : uint8_t {
    Int,  ///< a number of 32 bits
    Byte, ///< a number from 0 to 255
    Char, ///< a number from -128 to 127
    Text, ///< a text, null or empty among them
    Raw,  ///< a block of bytes of a fixed size
    /// @{ In records only.
    Latin1,   ///< a text in a field of a fixed size, ended by a NUL or by the field
    Networks, ///< entries of a network list, as many as the record's first field says
    /// @}
};

enum class Occurrence : uint8_t {
    Once,
    AsCounted, ///< as often as the message's first field, a number, says
    WhenSet,   ///< only when the message's first field, a number, is not 0
};

struct Field
{
    FieldKind kind;
    const char* name;
    uint16_t size = 0; ///< in bytes, of Raw and of all in records; of what occurs as counted, how often at most
    Occurrence occurs = Occurrence::Once;
    uint16_t offset = 0; ///< in a record
};

/// A message as all see it who send, receive, print or record it. For constants only: it does not own its lists.
struct Message
{
    const char* channel;
    const char* name;
    const char* enumerator = nullptr; ///< null when it has none
    std::initializer_list<Field> fields = {};
    /// What people call a payload that is the memory image of a record, whose fields are at their offsets; null when
    /// the fields follow each other.
    const char* record = nullptr;

    constexpr bool isRecord() const { return record != nullptr; }
};

/// The channel of the phone's states and of requests to the phone server.
inline constexpr char kPhoneChannel[] = "/ZYN/phone";

/// @{ Requests to place and end voice calls.
inline constexpr char kVoiceCallChannel[] = "/ZYN/Phone/LocalPath";
inline constexpr Message kMakeCall{.channel = kVoiceCallChannel,
                                   .name = "MakeCall",
                                   .fields = {{FieldKind::Text, "number"},
                                              {FieldKind::Text, "name"},
                                              {FieldKind::Int, "flag"},
                                              {FieldKind::Int, "clir"},
                                              {FieldKind::Int, "dial-mode"},
                                              {FieldKind::Char, "line"}}};
inline constexpr Message kDropCall{.channel = kVoiceCallChannel, .name = "DropCall"};

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
inline constexpr uint8_t kMaxPttParties = 25;
inline constexpr Message kMakePttCall{.channel = kPttChannel,
                                      .name = "makePttCall",
                                      .fields = {{FieldKind::Int, "count"},
                                                 {FieldKind::Text, "numbers", kMaxPttParties, Occurrence::AsCounted},
                                                 {FieldKind::Text, "texts", kMaxPttParties, Occurrence::AsCounted},
                                                 {FieldKind::Int, "value1"},
                                                 {FieldKind::Int, "value2"}}};
inline constexpr Message kDropPttCall{.channel = kPttChannel, .name = "dropPttCall"};
/// @}

} // namespace zyn
