// The fields of a message, described, so that a decoder and a developer's tool read them alike.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <array>
#include <cstdint>
#include <initializer_list>

namespace zyn {

enum class FieldKind : uint8_t {
    Int,    ///< a number of 32 bits
    Byte,   ///< a number from 0 to 255
    Text,   ///< a text, null or empty among them
    Raw,    ///< a block of bytes of a fixed size
    Record, ///< the whole payload: the memory image of a record of the telephony platform
};

/// One field of a payload, encoded as PayloadReader reads its kind.
struct Field
{
    FieldKind kind;
    const char* name;
    uint8_t size = 0; ///< of a Raw field, in bytes
};

/// What a field holds: the member that its kind says.
struct FieldValue
{
    int32_t number = 0; ///< Int, Byte
    QString text;       ///< Text
    QByteArray bytes;   ///< Raw, always of the field's size; Record
};

inline constexpr size_t kMaxFields = 5;
using FieldValues = std::array<FieldValue, kMaxFields>;

/// Reads @p fields, at most kMaxFields, from @p payload. What is missing from there on is 0 and null.
FieldValues readFields(std::initializer_list<Field> fields, const QByteArray& payload);

} // namespace zyn
