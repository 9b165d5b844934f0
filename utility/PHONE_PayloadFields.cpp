// The fields of a message, read by their description.
#include "utility/PHONE_PayloadFields_p.h"

#include "utility/PHONE_Payload_p.h"

namespace zyn {
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
