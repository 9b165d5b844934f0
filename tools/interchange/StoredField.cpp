// The fields of stored records as values that can be written as text and read back.
#include "tools/interchange/StoredField.h"

#include "handset/common/Text.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QDateTime>
#include <QtCore/QRegularExpression>

#include <limits>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::jsonEscaped;

QJsonValue numberValue(const QByteArray& bytes)
{
    return numberOfBytes(bytes);
}

QByteArray numberBytes(const QString& text, const QString& name, qsizetype /*size*/)
{
    return bytesOfNumber(wholeNumber(text, name));
}

QJsonValue flagValue(const QByteArray& bytes)
{
    const auto byte = static_cast<uint8_t>(bytes.front());
    return byte > 1 ? QJsonValue(byte) : QJsonValue(byte == 1);
}

QByteArray flagBytes(const QString& text, const QString& name, qsizetype /*size*/)
{
    if (text == "true"_L1 || text == "false"_L1)
        return QByteArray(1, text == "true"_L1 ? '\1' : '\0');
    const std::optional<int> number = handset::wholeNumber(text);
    if (!number || *number < 0 || *number > std::numeric_limits<uint8_t>::max())
        throw usageError(u"%1 '%2' is neither true nor false nor a whole number from 0 to 255"_s.arg(name, text));
    return QByteArray(1, static_cast<char>(*number));
}

/// The text before the first NUL, converted by @p decode; unset if @p field contains more than that and NULs.
template<typename Decode, typename Encode>
QJsonValue textValue(const QByteArray& field, Decode decode, Encode encode)
{
    const auto length = static_cast<qsizetype>(qstrnlen(field.constData(), static_cast<size_t>(field.size())));
    const QString text = decode(field.first(length));
    const bool isAll = length < field.size() && encode(text).leftJustified(field.size(), '\0') == field;
    return isAll && !isHexBlock(text) && jsonEscaped(text) == text ? text : hexBlock(field);
}

void requireNoNul(const QString& text, const QString& name)
{
    if (text.contains(QChar::Null))
        throw usageError(u"the %1 holds a NUL"_s.arg(name));
}

QJsonValue latin1Value(const QByteArray& bytes)
{
    return textValue(
        bytes, [](const QByteArray& text) { return QString::fromLatin1(text); },
        [](const QString& text) { return text.toLatin1(); });
}

QByteArray latin1Bytes(const QString& text, const QString& name, qsizetype size)
{
    if (isHexBlock(text))
        return blockFrom(text, name, size);
    requireNoNul(text, name);
    return latin1Field(text, name, size - 1).toLatin1().leftJustified(size, '\0');
}

QJsonValue utf8Value(const QByteArray& bytes)
{
    return textValue(
        bytes, [](const QByteArray& text) { return QString::fromUtf8(text); },
        [](const QString& text) { return text.toUtf8(); });
}

QByteArray utf8Bytes(const QString& text, const QString& name, qsizetype size)
{
    if (isHexBlock(text))
        return blockFrom(text, name, size);
    requireNoNul(text, name);
    const QByteArray bytes = text.toUtf8();
    if (QString::fromUtf8(bytes) != text)
        throw usageError(u"the %1 holds what UTF-8 does not keep"_s.arg(name));
    if (bytes.size() >= size)
        throw usageError(u"the %1 has %2 bytes; at most %3 fit"_s.arg(name).arg(bytes.size()).arg(size - 1));
    return bytes.leftJustified(size, '\0');
}

QJsonValue blockValue(const QByteArray& bytes)
{
    return blockText(bytes);
}

QJsonValue timeValue(const QByteArray& bytes)
{
    return QDateTime::fromSecsSinceEpoch(numberOfBytes(bytes)).toUTC().toString(Qt::ISODate);
}

QByteArray timeBytes(const QString& text, const QString& name, qsizetype /*size*/)
{
    static const QRegularExpression iso(
        QRegularExpression::anchoredPattern(uR"(\d{4}-\d\d-\d\dT\d\d:\d\d(:\d\d)?(Z|[+-]\d\d:\d\d))"_s));
    const QDateTime time = QDateTime::fromString(text, Qt::ISODate);
    if (!iso.match(text).hasMatch() || !time.isValid())
        throw usageError(
            u"%1 '%2' is not a date and time like 2024-05-31T18:30:00Z or 2024-05-31T20:30:00+02:00"_s.arg(name, text));
    return bytesOfNumber(secondsOf(time, text));
}

} // namespace

const FieldForm kNumberForm{FieldForm::Number, numberValue, numberBytes};
const FieldForm kFlagForm{FieldForm::Flag, flagValue, flagBytes};
const FieldForm kLatin1Form{FieldForm::Text, latin1Value, latin1Bytes};
const FieldForm kUtf8Form{FieldForm::Text, utf8Value, utf8Bytes};
const FieldForm kBlockForm{FieldForm::Text, blockValue, blockFrom};
const FieldForm kTimeForm{FieldForm::Text, timeValue, timeBytes};

} // namespace zyn::tool
