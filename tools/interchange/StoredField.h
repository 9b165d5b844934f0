// The fields of stored records as values that can be written as text and read back.
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

/// Converts the bytes of a field to a value and back; different bytes give different values.
struct FieldForm
{
    /// The kinds of JSON values.
    enum Kind {
        Text,
        Number,
        Flag, ///< true, false or a number
    };

    Kind kind;
    QJsonValue (*value)(const QByteArray& bytes);
    /// The @p size bytes of the field @p name given by @p text. Throws a usage error if it is invalid.
    QByteArray (*bytes)(const QString& text, const QString& name, qsizetype size);
};

struct StoredField
{
    enum Presence {
        Optional, ///< if missing, has the value of a blank record
        Required,
        OfStore, ///< assigned by the store: written on request only, and ignored by a store that reads it
    };

    const char* name; ///< the JSON field and CSV column; never changed once published
    size_t offset;
    size_t size;
    const FieldForm* form;
    Presence presence = Optional;
};

/// A kind of record.
struct RecordSchema
{
    const char* thing; ///< for messages
    std::vector<StoredField> fields;
    QByteArray blank; ///< a record without values
};

/// Whether @p fields cover each byte of a record of @p size bytes exactly once.
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

/// A 32-bit number.
extern const FieldForm kNumberForm;
/// A byte: false for 0, true for 1, otherwise a number.
extern const FieldForm kFlagForm;
/// @{ A NUL-terminated text. Written as "hex:" and the digits of all bytes if a plain text would lose something: bytes
/// after the NUL, a missing NUL, invalid UTF-8, unprintable characters, or a leading "hex:".
extern const FieldForm kLatin1Form;
extern const FieldForm kUtf8Form;
/// @}
/// Bytes without a meaning: empty for zeros, a graphic text as it is, otherwise "hex:" and digits.
extern const FieldForm kBlockForm;
/// Seconds since 1970 in ISO 8601, written in UTC, read with any explicit offset.
extern const FieldForm kTimeForm;

/// @{ A 32-bit number and its bytes.
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
