// The records of the telephony platform that are a message's whole payload, taken apart.
#include "tools/recording/RecordFields.h"

#include "platform/TAPI.h"
#include "tools/zynphone/BlockText.h"
#include "utility/FixedText_p.h"
#include "utility/message/AllStatus_p.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using NetworkList = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;
using Network = TAPI_NETWORK_PREFERED_ENTRY_S;

constexpr qsizetype kMaxNetworks = std::size(NetworkList{}.entries);

/// The number whose memory image @p bytes are.
int32_t numberFrom(const QByteArray& bytes)
{
    int32_t number = 0;
    std::memcpy(&number, bytes.constData(), sizeof number);
    return number;
}

QJsonValue allStatusValue(const AllStatusField& field, const QByteArray& bytes)
{
    switch (field.kind) {
    case FieldKind::Int:
        return numberFrom(bytes);
    case FieldKind::Byte:
        return static_cast<uint8_t>(bytes[0]);
    case FieldKind::Text:
        return latin1Text(bytes);
    default:
        return blockText(bytes);
    }
}

/// How many bytes the used part of a list of @p networks takes.
constexpr qsizetype usedSize(qsizetype networks)
{
    return qsizetype{offsetof(NetworkList, entries)} + networks * qsizetype{sizeof(Network)};
}

QJsonArray networksOf(const QByteArray& payload, qsizetype count)
{
    QJsonArray networks;
    for (qsizetype index = 0; index < count; ++index) {
        Network network;
        std::memcpy(&network, payload.constData() + usedSize(index), sizeof network);
        networks += QJsonObject{{u"id"_s, latin1Text(network.id)}, {u"name"_s, latin1Text(network.name)}};
    }
    return networks;
}

} // namespace

void readAllStatusInto(MessageFields& message, const QByteArray& payload)
{
    qsizetype end = 0;
    for (const AllStatusField& field : kAllStatusFields) {
        QJsonValue value(QJsonValue::Undefined);
        if (field.offset + field.size <= payload.size()) {
            value = allStatusValue(field, payload.sliced(field.offset, field.size));
            end = field.offset + field.size;
        }
        message.values.push_back({QLatin1String(field.name), value});
    }
    message.rest = payload.sliced(end);
}

void readNetworkListInto(MessageFields& message, const QByteArray& payload)
{
    QJsonValue count(QJsonValue::Undefined);
    QJsonValue networks(QJsonValue::Undefined);
    qsizetype end = 0;
    if (payload.size() >= usedSize(0)) {
        count = numberFrom(payload);
        end = usedSize(0);
    }
    const qsizetype used = std::clamp(qsizetype{count.toInt()}, qsizetype{0}, kMaxNetworks);
    if (end > 0 && payload.size() >= usedSize(used)) {
        networks = networksOf(payload, used);
        // The places behind those in use are nobody's, also where they are not sent.
        end = payload.size() >= usedSize(kMaxNetworks) ? usedSize(kMaxNetworks) : usedSize(used);
    }
    message.values = {{u"count"_s, count}, {u"networks"_s, networks}};
    message.rest = payload.sliced(end);
}

} // namespace zyn::tool
