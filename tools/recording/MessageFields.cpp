// The payload of a message, taken apart into named values.
#include "tools/recording/MessageFields.h"

#include "tools/recording/RecordFields.h"
#include "tools/zynphone/BlockText.h"
#include "utility/message/Message_p.h"
#include "utility/message/Payload_p.h"

#include <QtCore/QJsonArray>

#include <algorithm>
#include <optional>
#include <span>

namespace zyn::tool {
namespace {

/// Reads the fields of one payload in their order.
class FieldReader
{
public:
    explicit FieldReader(const QByteArray& payload)
        : m_payload(payload)
        , m_reader(payload)
        , m_left(payload.size())
    {}

    /// Whether the payload is to hold @p field, as far as it was read.
    bool has(const Field& field) const { return field.occurs != Occurrence::WhenSet || m_first != 0; }

    /// The value of @p field, undefined when it is not there whole.
    QJsonValue next(const Field& field)
    {
        QJsonValue value = field.occurs == Occurrence::AsCounted ? readList(field) : readOne(field);
        if (!m_reader.isComplete())
            return QJsonValue::Undefined;
        if (m_left == m_payload.size())
            m_first = value.toInt();
        m_left = static_cast<qsizetype>(m_reader.remaining());
        return value;
    }

    /// What follows the last field that was there whole.
    QByteArray rest() const { return m_payload.last(m_left); }

private:
    QJsonValue readOne(const Field& field)
    {
        const FieldValue value = readField(field, m_reader, m_payload);
        if (field.kind == FieldKind::Raw)
            return blockText(value.bytes);
        if (field.kind == FieldKind::Text)
            return value.text.isNull() ? QJsonValue() : QJsonValue(value.text);
        return value.number;
    }

    QJsonValue readList(const Field& field)
    {
        QJsonArray list;
        const int count = std::clamp(m_first, 0, int{field.size});
        while (list.size() < count && m_reader.isComplete())
            list += readOne(field);
        return list;
    }

    const QByteArray m_payload;
    PayloadReader m_reader;
    qsizetype m_left; ///< bytes behind the last field that was there whole
    int m_first = 0;  ///< the first field, when that is a number
};

void readInto(MessageFields& message, std::span<const Field> fields, const QByteArray& payload)
{
    FieldReader reader(payload);
    for (const Field& field : fields) {
        if (reader.has(field))
            message.values.push_back({QLatin1String(field.name), reader.next(field)});
    }
    message.rest = reader.rest();
}

} // namespace

MessageFields messageFields(const QCString& channel, const QCString& message, const QByteArray& payload)
{
    MessageFields result;
    result.rest = payload;
    const std::optional<MessageForm> form = messageForm(channel, message);
    if (!form)
        return result;
    result.isKnown = true;
    result.enumerator = QLatin1String(form->enumerator);
    const FieldKind kind = leadingKind(form->fields);
    if (kind == FieldKind::AllStatusRecord)
        readAllStatusInto(result, payload);
    else if (kind == FieldKind::NetworkListRecord)
        readNetworkListInto(result, payload);
    else
        readInto(result, form->fields, payload);
    return result;
}

} // namespace zyn::tool
