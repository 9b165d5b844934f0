// The fields of a message, described, so that a decoder and a developer's tool read them alike.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <array>
#include <cstdint>
#include <initializer_list>

namespace zyn {

class PayloadReader;

enum class FieldKind : uint8_t {
    Int,  ///< a number of 32 bits
    Byte, ///< a number from 0 to 255
    Char, ///< a number from -128 to 127
    Text, ///< a text, null or empty among them
    Raw,  ///< a block of bytes of a fixed size
    /// @{ The whole payload: the memory image of a record of the telephony platform.
    AllStatusRecord,   ///< AllStatus
    NetworkListRecord, ///< TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S
    /// @}
};

enum class Occurrence : uint8_t {
    Once,
    AsCounted, ///< as often as the message's first field, a number, says
    WhenSet,   ///< only when the message's first field, a number, is not 0
};

/// One field of a payload, encoded as PayloadReader reads its kind.
struct Field
{
    FieldKind kind;
    const char* name;
    uint8_t size = 0; ///< of a Raw field, in bytes; of one that occurs as counted, how often at most
    Occurrence occurs = Occurrence::Once;
};

/// What a field holds: the member that its kind says.
struct FieldValue
{
    int32_t number = 0; ///< Int, Byte, Char
    QString text;       ///< Text
    QByteArray bytes;   ///< Raw, always of the field's size; the records
};

inline constexpr size_t kMaxFields = 5;
using FieldValues = std::array<FieldValue, kMaxFields>;

/// Reads one field from @p reader, which reads @p payload; what is missing is 0 and null.
FieldValue readField(const Field& field, PayloadReader& reader, const QByteArray& payload);

/// Reads @p fields, at most kMaxFields that occur once, from @p payload. What is missing from there on is 0
/// and null.
FieldValues readFields(std::initializer_list<Field> fields, const QByteArray& payload);

} // namespace zyn
