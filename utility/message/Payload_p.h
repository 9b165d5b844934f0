// The payload encoding of the message channels, and the description of the fields in it.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QString>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace zyn {

/**
 * Reads the fields of a payload one after another.
 *
 * A field that is not there whole reads as 0 or as a null text, and so does every field after it: nothing is
 * read from the middle of another field.
 */
class PayloadReader
{
public:
    explicit PayloadReader(const QByteArray& payload);

    /// 4 bytes, most significant first.
    int32_t readInt();
    /// 1 byte, as a number from 0 to 255.
    uint8_t readByte();
    /// A length in bytes and as many bytes of UTF-16; the length 0xFFFFFFFF gives a null text, 0 an empty
    /// one.
    QString readText();
    /// Exactly as many bytes as @p block has.
    void readRaw(std::span<uint8_t> block);

    /// Whether every field that was asked for was there.
    bool isComplete() const { return m_complete; }
    /// How many bytes have not been read; of use while every field was there.
    qint64 remaining() const;

private:
    bool has(qint64 size);

    QDataStream m_stream;
    bool m_complete = true;
};

/// Builds a payload, field after field: `PayloadWriter().writeText(number).writeBool(flag).payload()`.
class PayloadWriter
{
public:
    PayloadWriter();

    PayloadWriter& writeInt(int32_t value);
    PayloadWriter& writeByte(uint8_t value);
    /// Writes an int: 1 for true, 0 for false.
    PayloadWriter& writeBool(bool value);
    /// Keeps a null text apart from an empty one.
    PayloadWriter& writeText(const QString& text);
    /// Writes the bytes alone, without a length.
    PayloadWriter& writeRaw(std::span<const uint8_t> block);

    QByteArray payload() const { return m_payload; }

private:
    QByteArray m_payload;
    QDataStream m_stream;
};

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
