// The fields of a stored record as values that can be written down and read back.
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QJsonValue>
#include <QtCore/QString>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace zyn::tool {

/// How the bytes of a field are written as a value: two fields with other bytes have other values.
struct FieldForm
{
    /// What a value is in JSON.
    enum Kind {
        Text,
        Number,
        Flag, ///< true, false or a number
    };

    Kind kind;
    QJsonValue (*value)(const QByteArray& bytes);
    /// The bytes, @p size of them, of the field @p name that @p text stands for; a usage error when it stands for none.
    QByteArray (*bytes)(const QString& text, const QString& name, qsizetype size);
};

struct StoredField
{
    enum Presence {
        Optional, ///< what is not there has the value of a blank record
        Required,
        OfStore, ///< given by the store, so that it is written only on request and a store that reads it gives its own
    };

    const char* name; ///< the field's name in JSON and its column in CSV; never changed once published
    size_t offset;
    size_t size;
    const FieldForm* form;
    Presence presence = Optional;
};

/// A kind of record.
struct RecordSchema
{
    const char* thing; ///< what it is a record of
    std::vector<StoredField> fields;
    QByteArray blank; ///< the record of which no field is set
};

/// Whether each of the bytes of a record of @p size bytes belongs to exactly one of @p fields.
constexpr bool isWhole(std::span<const StoredField> fields, size_t size)
{
    size_t covered = 0;
    for (const StoredField& field : fields) {
        for (const StoredField& other : fields) {
            if (&other != &field && other.offset < field.offset + field.size
                && field.offset < other.offset + other.size)
                return false;
        }
        covered += field.size;
        if (field.offset + field.size > size)
            return false;
    }
    return covered == size;
}

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
