// The payload encoding of the message channels.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDataStream>
#include <QtCore/QString>

#include <cstdint>
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

} // namespace zyn
