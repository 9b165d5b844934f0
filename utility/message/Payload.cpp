// The encoding of payloads: the values of a message's fields to bytes and back.
#include "utility/message/Payload_p.h"

#include "platform/QCopChannel.h"
#include "platform/TAPI.h"
#include "utility/FixedText_p.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

namespace zyn {
namespace {

/// The number from -128 to 127 that @p byte stands for.
constexpr int32_t signedByte(uint8_t byte)
{
    return byte < 0x80 ? byte : byte - 0x100;
}

using Network = TAPI_NETWORK_PREFERED_ENTRY_S;

constexpr uint32_t kNullText = 0xFFFF'FFFF;

static_assert(std::endian::native == std::endian::little, "records travel as they are in memory");

/// Reads what follows each other in a payload, most significant byte first.
class Reader
{
public:
    explicit Reader(const QByteArray& payload)
        : m_rest(payload)
    {}

    /// Whether everything that was asked for was there.
    bool isComplete() const { return m_isComplete; }
    qsizetype remaining() const { return m_rest.size(); }

    /// The next @p size bytes; null when they are not there, as for all that is asked for from then on.
    const char* next(size_t size)
    {
        m_isComplete = m_isComplete && size <= static_cast<size_t>(m_rest.size());
        if (!m_isComplete)
            return nullptr;
        const char* const bytes = m_rest.data();
        m_rest = m_rest.sliced(static_cast<qsizetype>(size));
        return bytes;
    }

    template<typename Number>
    Number number()
    {
        const char* const bytes = next(sizeof(Number));
        return bytes ? qFromBigEndian<Number>(bytes) : Number{0};
    }

    /// A length in bytes, then UTF-16; the last byte of an odd length is ignored.
    QString text()
    {
        const auto length = number<uint32_t>();
        if (!m_isComplete || length == kNullText)
            return {};
        const char* const bytes = next(length);
        if (!bytes)
            return {};
        QString text(static_cast<qsizetype>(length / 2), Qt::Uninitialized);
        qFromBigEndian<char16_t>(bytes, text.size(), text.data());
        return text;
    }

    QByteArray block(size_t size)
    {
        const char* const bytes = next(size);
        const auto length = static_cast<qsizetype>(size);
        return bytes ? QByteArray(bytes, length) : QByteArray(length, '\0');
    }

    /// As many texts as @p count says, unless the payload ends before.
    QStringList texts(int count)
    {
        QStringList list;
        while (list.size() < count && m_isComplete)
            list += text();
        return list;
    }

private:
    QByteArrayView m_rest;
    bool m_isComplete = true;
};

/// How often @p field occurs that is counted by @p count.
int occurrences(const Field& field, int32_t count)
{
    return std::clamp(count, 0, int{field.size});
}

void readField(FieldValue& value, const Field& field, const FieldValue& first, Reader& reader)
{
    switch (field.kind) {
    case FieldKind::Int:
        value.number = reader.number<int32_t>();
        break;
    case FieldKind::Byte:
        value.number = reader.number<uint8_t>();
        break;
    case FieldKind::Char:
        value.number = signedByte(reader.number<uint8_t>());
        break;
    case FieldKind::Text:
        if (field.occurs == Occurrence::AsCounted)
            value.texts = reader.texts(occurrences(field, first.number));
        else
            value.text = reader.text();
        break;
    case FieldKind::Raw:
        value.bytes = reader.block(field.size);
        break;
    case FieldKind::Latin1:
    case FieldKind::Networks:
        break;
    }
}

template<typename Number>
void append(QByteArray& payload, Number number)
{
    const Number bytes = qToBigEndian(number);
    payload.append(reinterpret_cast<const char*>(&bytes), sizeof bytes);
}

void appendText(QByteArray& payload, const QString& text)
{
    const qsizetype begin = payload.size() + qsizetype{sizeof(uint32_t)};
    append(payload, text.isNull() ? kNullText : static_cast<uint32_t>(text.size() * 2));
    payload.resize(begin + text.size() * 2);
    qToBigEndian<char16_t>(text.utf16(), text.size(), payload.data() + begin);
}

void appendField(QByteArray& payload, const Field& field, const FieldValue& value)
{
    switch (field.kind) {
    case FieldKind::Int:
        append(payload, value.number);
        break;
    case FieldKind::Byte:
    case FieldKind::Char:
        append(payload, static_cast<uint8_t>(value.number));
        break;
    case FieldKind::Text:
        if (field.occurs != Occurrence::AsCounted)
            return appendText(payload, value.text);
        for (const QString& text : value.texts)
            appendText(payload, text);
        break;
    case FieldKind::Raw:
        payload.append(value.bytes.leftJustified(field.size, '\0'));
        break;
    case FieldKind::Latin1:
    case FieldKind::Networks:
        break;
    }
}

/// The networks at @p bytes, an id and a name for each.
QStringList networksAt(const char* bytes, int count)
{
    QStringList texts;
    for (int index = 0; index < count; ++index) {
        Network network;
        std::memcpy(&network, bytes + static_cast<size_t>(index) * sizeof network, sizeof network);
        texts += {latin1Text(network.id), latin1Text(network.name)};
    }
    return texts;
}

void storeNetworks(std::span<char> bytes, const QStringList& texts)
{
    for (qsizetype index = 0; index + 1 < texts.size() && bytes.size() >= sizeof(Network); index += 2) {
        storeText(bytes.subspan(offsetof(Network, id), sizeof(Network::id)), texts[index].toLatin1());
        storeText(bytes.subspan(offsetof(Network, name), sizeof(Network::name)), texts[index + 1].toLatin1());
        bytes = bytes.subspan(sizeof(Network));
    }
}

int networkCount(const Field& field, const FieldValue& first)
{
    return std::clamp(first.number, 0, static_cast<int>(field.size / sizeof(Network)));
}

/// How many bytes of @p field are in use.
qsizetype usedSize(const Field& field, const FieldValue& first)
{
    return field.kind == FieldKind::Networks ? networkCount(field, first) * qsizetype{sizeof(Network)} : field.size;
}

FieldValue recordField(const Field& field, const FieldValue& first, const char* bytes)
{
    switch (field.kind) {
    case FieldKind::Int:
        return qFromLittleEndian<int32_t>(bytes);
    case FieldKind::Byte:
        return static_cast<uint8_t>(*bytes);
    case FieldKind::Latin1:
        return latin1Text(std::span(bytes, field.size));
    case FieldKind::Networks:
        return networksAt(bytes, networkCount(field, first));
    default:
        return QByteArray(bytes, field.size);
    }
}

void storeRecordField(std::span<char> bytes, FieldKind kind, const FieldValue& value)
{
    switch (kind) {
    case FieldKind::Int:
        qToLittleEndian(value.number, bytes.data());
        break;
    case FieldKind::Byte:
        bytes[0] = static_cast<char>(value.number);
        break;
    case FieldKind::Latin1:
        storeText(bytes, value.text.toLatin1());
        break;
    case FieldKind::Networks:
        storeNetworks(bytes, value.texts);
        break;
    default:
        std::copy_n(value.bytes.data(), std::min(bytes.size(), static_cast<size_t>(value.bytes.size())), bytes.data());
    }
}

FieldValues decodeRecord(std::span<const Field> fields, const QByteArray& payload)
{
    FieldValues values(fields.size());
    for (const Field& field : fields) {
        const qsizetype end = field.offset + usedSize(field, values[0]);
        if (end > payload.size())
            break;
        values.list[values.whole++] = recordField(field, values[0], payload.constData() + field.offset);
        // Places behind those in use are ignored, sent or not.
        const qsizetype fieldEnd = qsizetype{field.offset} + field.size;
        values.end = fieldEnd <= payload.size() ? fieldEnd : end;
    }
    return values;
}

/// Reads @p fields, which follow each other.
FieldValues decodeSequence(std::span<const Field> fields, const QByteArray& payload)
{
    FieldValues values(fields.size());
    Reader reader(payload);
    size_t next = 0;
    for (const Field& field : fields) {
        if (!isLeftOut(field, values[0]))
            readField(values[next], field, values[0], reader);
        ++next;
        if (reader.isComplete()) {
            values.whole = static_cast<qsizetype>(next);
            values.end = payload.size() - reader.remaining();
        }
    }
    return values;
}

} // namespace

FieldValues decode(const Message& message, const QByteArray& payload)
{
    return message.isRecord() ? decodeRecord(message.fields, payload) : decodeSequence(message.fields, payload);
}

QByteArray encode(std::span<const Field> fields, std::span<const FieldValue> values)
{
    Q_ASSERT(fields.size() == values.size());
    QByteArray payload;
    for (size_t next = 0; next < fields.size(); ++next) {
        if (!isLeftOut(fields[next], values[0]))
            appendField(payload, fields[next], values[next]);
    }
    return payload;
}

QByteArray encode(const Message& message, std::span<const FieldValue> values)
{
    const std::span<const Field> fields = message.fields;
    if (!message.isRecord())
        return encode(fields, values);
    Q_ASSERT(fields.size() == values.size());
    QByteArray payload(recordSize(message), '\0');
    for (size_t next = 0; next < fields.size(); ++next) {
        const std::span bytes(payload.data() + fields[next].offset, fields[next].size);
        storeRecordField(bytes, fields[next].kind, values[next]);
    }
    return payload;
}

QByteArray encode(const Message& message, std::initializer_list<FieldValue> values)
{
    return encode(message, std::span(values.begin(), values.size()));
}

qsizetype recordSize(const Message& message)
{
    const Field& last = *std::prev(message.fields.end());
    return qsizetype{last.offset} + last.size;
}

bool sendMessage(const Message& message, std::initializer_list<FieldValue> values)
{
    return QCopChannel::send(message.channel, message.name, encode(message, values));
}

} // namespace zyn
