// The forms in which the fields of stored records are written down.
#pragma once

#include "tools/interchange/StoredField.h"

#include <cstdint>
#include <cstring>

namespace zyn::tool {

/// A whole number of 32 bits.
extern const FieldForm kNumberForm;
/// A byte: false for 0, true for 1, else its number.
extern const FieldForm kFlagForm;
/// @{ A text that ends in a NUL. What a text alone would not keep is "hex:" and the digits of all bytes: bytes behind
/// the NUL, a missing one, what is no UTF-8, what is not printable, and a text that begins with "hex:" itself.
extern const FieldForm kLatin1Form;
extern const FieldForm kUtf8Form;
/// @}
/// Bytes without a meaning: nothing for zeros, a graphic text as it is, else "hex:" and digits.
extern const FieldForm kBlockForm;
/// Seconds since 1970: ISO 8601 in UTC; read with any offset, but with one.
extern const FieldForm kTimeForm;

/// @{ A number of 32 bits and its bytes.
inline QByteArray bytesOfNumber(int32_t number)
{
    return QByteArray(reinterpret_cast<const char*>(&number), sizeof number);
}

inline int32_t numberOfBytes(const QByteArray& bytes)
{
    int32_t number = 0;
    std::memcpy(&number, bytes.constData(), sizeof number);
    return number;
}
/// @}

} // namespace zyn::tool
