// Parses the fields of messages, as typed on a command line or in a script.
#include "handset/common/FieldWords.h"

#include <limits>

namespace zyn::handset {
namespace {

template<typename Number>
FieldValue numberFrom(const WordReader& reader, const QString& word, const QString& what)
{
    return reader.number(word, what, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
}

} // namespace

FieldValue valueFrom(const WordReader& reader, const Field& field, const QString& word, const QString& what)
{
    switch (field.kind) {
    case FieldKind::Int:
        return numberFrom<int32_t>(reader, word, what);
    case FieldKind::Byte:
        return numberFrom<uint8_t>(reader, word, what);
    case FieldKind::Char:
        return numberFrom<int8_t>(reader, word, what);
    case FieldKind::Raw:
        return reader.block(word, what, field.size);
    case FieldKind::Latin1:
        return reader.latin1(word, what, field.size - 1);
    case FieldKind::Text:
    case FieldKind::Networks:
        break;
    }
    return word;
}

} // namespace zyn::handset
