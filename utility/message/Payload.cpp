// The payload encoding of the message channels.
#include "utility/message/Payload_p.h"
#include <QtCore/QIODevice>
#include <QtCore/QtEndian>
#include <algorithm>

namespace zyn {
namespace {

constexpr uint32_t kNullText = 0xFFFF'FFFF;

/// The one place that names the format: stream format version 3, most significant byte first.
void configure(QDataStream& stream)
{
    stream.setVersion(QDataStream::Qt_2_1);
    stream.setByteOrder(QDataStream::BigEndian);
}

} // namespace

PayloadReader::PayloadReader(const QByteArray& payload)
    : m_stream(payload)
{
    configure(m_stream);
}

/// Whether the next field, @p size bytes long, is there whole.
bool PayloadReader::has(qint64 size)
{
    m_complete = m_complete && size <= remaining();
    return m_complete;
}

qint64 PayloadReader::remaining() const
{
    return m_stream.device()->bytesAvailable();
}

int32_t PayloadReader::readInt()
{
    int32_t value = 0;
    if (has(sizeof value))
        m_stream >> value;
    return value;
}

uint8_t PayloadReader::readByte()
{
    uint8_t value = 0;
    if (has(sizeof value))
        m_stream >> value;
    return value;
}

QString PayloadReader::readText()
{
    // Not by QDataStream: for a missing length it gives an empty text, and it refuses an odd one.
    const auto length = static_cast<uint32_t>(readInt());
    if (!m_complete || length == kNullText || !has(length))
        return {};
    const QByteArray bytes = m_stream.device()->read(length);
    QString text(bytes.size() / 2, Qt::Uninitialized);
    qFromBigEndian<char16_t>(bytes.constData(), text.size(), text.data());
    return text;
}

void PayloadReader::readRaw(std::span<uint8_t> block)
{
    std::fill(block.begin(), block.end(), uint8_t{0});
    const auto size = static_cast<qint64>(block.size());
    if (has(size))
        m_stream.device()->read(reinterpret_cast<char*>(block.data()), size);
}

PayloadWriter::PayloadWriter()
    : m_stream(&m_payload, QIODevice::WriteOnly)
{
    configure(m_stream);
}

PayloadWriter& PayloadWriter::writeInt(int32_t value)
{
    m_stream << value;
    return *this;
}

PayloadWriter& PayloadWriter::writeByte(uint8_t value)
{
    m_stream << value;
    return *this;
}

PayloadWriter& PayloadWriter::writeBool(bool value)
{
    return writeInt(value ? 1 : 0);
}

PayloadWriter& PayloadWriter::writeText(const QString& text)
{
    m_stream << text;
    return *this;
}

PayloadWriter& PayloadWriter::writeRaw(std::span<const uint8_t> block)
{
    m_stream.device()->write(reinterpret_cast<const char*>(block.data()), static_cast<qint64>(block.size()));
    return *this;
}

namespace {

QByteArray readBlock(zyn::PayloadReader& reader, uint8_t size)
{
    QByteArray block(size, '\0');
    reader.readRaw(std::span(reinterpret_cast<uint8_t*>(block.data()), size));
    return block;
}

} // namespace

FieldValue readField(const Field& field, PayloadReader& reader, const QByteArray& payload)
{
    switch (field.kind) {
    case FieldKind::Int:
        return {reader.readInt(), {}, {}};
    case FieldKind::Byte:
        return {reader.readByte(), {}, {}};
    case FieldKind::Char:
        return {static_cast<int8_t>(reader.readByte()), {}, {}};
    case FieldKind::Text:
        return {0, reader.readText(), {}};
    case FieldKind::Raw:
        return {0, {}, readBlock(reader, field.size)};
    case FieldKind::AllStatusRecord:
    case FieldKind::NetworkListRecord:
        return {0, {}, payload};
    }
    return {};
}

FieldValues readFields(std::initializer_list<Field> fields, const QByteArray& payload)
{
    FieldValues values;
    PayloadReader reader(payload);
    size_t next = 0;
    for (const Field& field : fields)
        values.at(next++) = readField(field, reader, payload);
    return values;
}

} // namespace zyn
