// The encoding of payloads: the values of a message's fields to bytes and back.
#pragma once

#include "utility/message/Message_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVarLengthArray>

#include <initializer_list>
#include <span>
#include <utility>

namespace zyn {

/// What a field holds: the member that its kind says.
struct FieldValue
{
    FieldValue() = default;
    FieldValue(int32_t value)
        : number(value)
    {}
    FieldValue(QString value)
        : text(std::move(value))
    {}
    FieldValue(QByteArray value)
        : bytes(std::move(value))
    {}
    FieldValue(QStringList values)
        : texts(std::move(values))
    {}

    int32_t number = 0; ///< Int, Byte, Char
    QString text;       ///< Text, Latin1
    QByteArray bytes;   ///< Raw, always of the field's size
    QStringList texts;  ///< what occurs as counted; the networks, an id and a name for each
};

/// The values of a message's fields in their order. What the payload did not hold whole is 0 and null.
struct FieldValues
{
    explicit FieldValues(size_t fields = 0)
        : list(static_cast<qsizetype>(fields))
    {}

    FieldValue& operator[](size_t field) { return list[static_cast<qsizetype>(field)]; }
    const FieldValue& operator[](size_t field) const { return list[static_cast<qsizetype>(field)]; }

    /// Whether the payload held every field.
    bool isComplete() const { return whole == list.size(); }

    QVarLengthArray<FieldValue, 6> list; ///< none of the messages that a receiver decodes has more fields
    qsizetype whole = 0;                 ///< how many fields, from the first, the payload held whole
    qsizetype end = 0;                   ///< where the last of those ends; the rest is ignored
};

/// Reads the fields of @p message. From the first one that is not there whole on, nothing is read: no field comes from
/// the middle of another one's bytes.
FieldValues decode(const Message& message, const QByteArray& payload);

/// Whether a payload leaves @p field out as the message's @p first one says.
inline bool isLeftOut(const Field& field, const FieldValue& first)
{
    return field.occurs == Occurrence::WhenSet && first.number == 0;
}

/// @{ The payload of @p values, one for each field. Bytes that are shorter than their field are followed by zeros;
/// longer ones of a field that follows others go as they are, for whoever sends bytes of any number.
QByteArray encode(std::span<const Field> fields, std::span<const FieldValue> values);
QByteArray encode(const Message& message, std::span<const FieldValue> values);
QByteArray encode(const Message& message, std::initializer_list<FieldValue> values);
/// @}

/// How many bytes the record @p message has.
qsizetype recordSize(const Message& message);

/// Sends @p message with @p values; false when it could not be handed on.
bool sendMessage(const Message& message, std::initializer_list<FieldValue> values = {});

} // namespace zyn
