// The fields of a message, read by their description.
#include "utility/PHONE_PayloadFields_p.h"

#include "utility/PHONE_Payload_p.h"

namespace {

QByteArray readBlock(zyn::PayloadReader& reader, uint8_t size)
{
    QByteArray block(size, '\0');
    reader.readRaw(std::span(reinterpret_cast<uint8_t*>(block.data()), size));
    return block;
}

zyn::FieldValue readField(const zyn::Field& field, zyn::PayloadReader& reader, const QByteArray& payload)
{
    switch (field.kind) {
    case zyn::FieldKind::Int:
        return {reader.readInt(), {}, {}};
    case zyn::FieldKind::Byte:
        return {reader.readByte(), {}, {}};
    case zyn::FieldKind::Text:
        return {0, reader.readText(), {}};
    case zyn::FieldKind::Raw:
        return {0, {}, readBlock(reader, field.size)};
    case zyn::FieldKind::Record:
        return {0, {}, payload};
    }
    return {};
}

} // namespace

namespace zyn {

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
