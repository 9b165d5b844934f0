// What the messages of the phone channel emit.
#include "utility/PHONE_MsgSignals_p.h"

#include "utility/FixedText_p.h"
#include "utility/PHONE_AllStatus_p.h"
#include "utility/PHONE_Log.h"

namespace zyn {
namespace {

using Client = PHONE_MsgClient;
using zyn::Emitter;

/// The network status that comes with a network id.
constexpr TAPI_NETWORK_STATUS_E kRegistered{5};

void emitRegistered(const Emitter& emitter, const QString& id)
{
    PHONE_Log(kPhoneLogLevel, "Network id = %s ", id.toLatin1().constData());
    emitter(&Client::signalNetid, id);
    emitter(&Client::signalNetworkStatus, kRegistered);
    emitter(&Client::signalRegisted, id);
}

void emitNotRegistered(const Emitter& emitter, TAPI_NETWORK_STATUS_E status)
{
    const QString empty = QStringLiteral("");
    emitter(&Client::signalNetworkStatus, status);
    emitter(&Client::signalRegisted, empty);
    emitter(&Client::signalServiceName, empty);
    emitter(&Client::signalSpnNameExtend, SERVICE_PROVIDER_DATA_S{0, empty});
}

/// @p record, or a copy of it when it is shorter than the list or does not lie where one may.
QByteArray asNetworkList(const QByteArray& record)
{
    using List = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;
    const bool isAligned = reinterpret_cast<uintptr_t>(record.constData()) % alignof(List) == 0;
    if (record.size() >= qsizetype{sizeof(List)} && isAligned)
        return record;
    return QByteArray(record.constData(), record.size()).leftJustified(qsizetype{sizeof(List)}, '\0');
}

void emitNetworkList(const Emitter& emitter, PHONE_UI_NETWORKLIST_TYPE_T kind, const QByteArray& record)
{
    const QByteArray list = asNetworkList(record);
    emitter.trace();
    emitter(&Client::signalnetworkListGotten, kind,
            reinterpret_cast<TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S*>(const_cast<char*>(list.constData())));
}

} // namespace

int32_t number(const FieldValues& values, Argument argument)
{
    const int32_t field = values[argument.field].number;
    switch (argument.rule) {
    case Rule::AsItIs:
        return field;
    case Rule::NotZero:
        return field != 0;
    case Rule::IsZero:
        return field == 0;
    case Rule::IsOne:
        return field == 1;
    case Rule::LowByte:
        return field & 0xFF;
    }
    return 0;
}

void emitSnapshot(const Emitter& emitter, FieldValues& values)
{
    AllStatus status = readAllStatus(values[0].bytes);
    emitter(&Client::signalPowerOnMode, TAPI_POWER_ON_MODE_E{status.powerOnMode});
    emitter(&Client::signalSimCardStatus, TAPI_SIM_STATUS_E{status.simCardStatus});
    emitter(&Client::signalPinStatus, TAPI_SECURITY_PIN_STATUS_E{status.pinStatus});
    emitter(&Client::signalSubsidyStatus, TAPI_SECURITY_SUBSIDY_STATUS_E{status.subsidyStatus});
    emitter(&Client::signalBatteryStatus, TAPI_BATTERY_STATUS_E{status.batteryStatus});
    emitter(&Client::signalChargeStatus, TAPI_CHARGER_STATUS_E{status.chargeStatus});
    emitter(&Client::signalBatteryCapacity, status.batteryCapacity);
    emitter(&Client::signalSignalQuality, TAPI_NETWORK_SIGNAL_E{status.signalQuality});
    emitter(&Client::signalRoamingState, TAPI_NETWORK_ROAM_E{status.roamingState});
    emitter(&Client::signalGprsAttached, status.gprsAttachState == 1 || status.gprsAttachState == 2);
    emitter(&Client::signalGprsService, status.gprsServiceState == 1);
    if (status.networkId[0] != '\0')
        emitter(&Client::signalRegisted, latin1Text(status.networkId));
    emitter(&Client::signalNetworkStatus, TAPI_NETWORK_STATUS_E{status.networkStatus});
    emitter(&Client::signalImsiId, status.imsi);
    emitter(&Client::signalEgprsService, status.egprsServiceState != 0);
}

void emitNetworkStatus(const Emitter& emitter, FieldValues& values)
{
    const TAPI_NETWORK_STATUS_E status{values[0].number};
    if (status == kRegistered)
        emitRegistered(emitter, values[1].text);
    else
        emitNotRegistered(emitter, status);
}

void emitProviderName(const Emitter& emitter, FieldValues& values)
{
    emitter(&Client::signalSpnNameExtend,
            SERVICE_PROVIDER_DATA_S{static_cast<UINT8>(values[1].number), values[0].text});
}

void emitNetworkList0(const Emitter& emitter, FieldValues& values)
{
    emitNetworkList(emitter, PHONE_UI_NETWORKLIST_TYPE_T{0}, values[0].bytes);
    emitter.trace();
}

void emitNetworkList1(const Emitter& emitter, FieldValues& values)
{
    emitNetworkList(emitter, PHONE_UI_NETWORKLIST_TYPE_T{1}, values[0].bytes);
}

} // namespace zyn
