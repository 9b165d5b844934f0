// The messages of the phone channel: their fields, and what becomes of each.
#include "utility/FixedText_p.h"
#include "utility/PHONE_Log_p.h"
#include "utility/message/AllStatus_p.h"
#include "utility/message/Message_p.h"
#include "utility/message/PhoneMessages_p.h"
#include <iterator>
#include <string_view>

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

namespace {

using enum FieldKind;
using Client = PHONE_MsgClient;

constexpr char kBanner[] = "********Client****************";
constexpr char kPowerOnBanner[] = "*********Client***************";

// The name of a type twice: as the enumerator and as its text.
#define ZYN_TYPE(type) PHONE_Msg::type, #type

// A row each: type and name, fields, log lines, signal.
// clang-format off
constexpr PhoneMessage kMessages[] = {
    {ZYN_TYPE(PHONE_MSG_ALL_STATUS_S), "snapshot", {{AllStatusRecord, "status"}},
     {{"PHONE_MSG_ALL_STATUS_S"}},
     emitSnapshot},
    {ZYN_TYPE(PHONE_MSG_POWER_ON_MODE_S), "power-on-mode", {{Int, "mode"}},
     {{"PHONE_MSG_POWER_ON_MODE_S"}, {"MsgClient: Power on Mode %d ", value(0), kPowerOnBanner}},
     emits<&Client::signalPowerOnMode, value(0)>},
    {ZYN_TYPE(PHONE_MSG_POWER_KEY_PRESSED_S), "power-key", {},
     {{"PHONE_MSG_POWER_KEY_PRESSED_S Message", {}, kBanner}},
     emits<&Client::signalPowerDown>},
    {ZYN_TYPE(PHONE_MSG_BATTERY_STATUS_S), "battery-status", {{Int, "status"}},
     {{"PHONE_MSG_BATTERY_STATUS_S"}, {"MsgClient: Battery Status = %d", value(0), kBanner}},
     emits<&Client::signalBatteryStatus, value(0)>},
    {ZYN_TYPE(PHONE_MSG_BATTERY_VALUE_CHANGE_S), "battery-capacity", {{Byte, "value"}},
     {{"PHONE_MSG_BATTERY_VALUE_CHANGE_S"}, {"MsgClient: Battery Value = %d", value(0), kBanner}},
     emits<&Client::signalBatteryCapacity, value(0)>},
    {ZYN_TYPE(PHONE_MSG_CHARGE_STATUS_S), "charger", {{Int, "status"}},
     {{"PHONE_MSG_CHARGE_STATUS_S"}, {"MsgClient: Charge Status = %d", value(0), kBanner}},
     emits<&Client::signalChargeStatus, value(0)>},
    {ZYN_TYPE(PHONE_MSG_SIM_CARD_STATUS_S), "sim-card", {{Int, "status"}},
     {{"PHONE_MSG_SIM_CARD_STATUS_S"}, {"MsgClient: Sim card status = %d", value(0), kBanner}},
     emits<&Client::signalSimCardStatus, value(0)>},
    {PHONE_Msg::PHONE_MSG_TYPE_T{7}, nullptr, nullptr, {}, {}, nullptr},
    {ZYN_TYPE(PHONE_MSG_PIN1_STATUS_S), "pin", {{Int, "status"}},
     {{"PHONE_MSG_PIN1_STATUS_S"}, {"MsgClient: Pin1 Status = %d", value(0), kBanner}},
     emits<&Client::signalPinStatus, value(0)>},
    {ZYN_TYPE(PHONE_MSG_SUBSIDY_LOCK_STATUS_S), "subsidy-lock", {{Int, "status"}},
     {{"PHONE_MSG_SUBSIDY_LOCK_STATUS_S"}, {"MsgClient: Subsidy lock status = %d", value(0), kBanner}},
     emits<&Client::signalSubsidyStatus, value(0)>},
    {ZYN_TYPE(PHONE_MSG_SIGNAL_QUALITY_S), "signal-quality", {{Int, "quality"}},
     {{"MsgClient: Signal Value = %d", value(0)}},
     emits<&Client::signalSignalQuality, value(0)>},
    {ZYN_TYPE(PHONE_MSG_SERVICE_AVAILABILITY_S), "service-availability", {{Int, "value"}},
     {{"MsgClient: Service = %d", lowByte(0)}},
     emits<&Client::signalServiceAvailability, lowByte(0)>},
    {ZYN_TYPE(PHONE_MSG_ROAMING_STATE_S), "roaming", {{Int, "state"}},
     {{"MsgClient: roam = %d", value(0)}},
     emits<&Client::signalRoamingState, value(0)>},
    {ZYN_TYPE(PHONE_MSG_NETWORK_STATUS_S), "network", {{Int, "status"}, {Text, "id"}},
     {{"******Network status = %d", value(0)}},
     emitNetworkStatus},
    {ZYN_TYPE(PHONE_MSG_SERVICE_NAME_S), "service-name", {{Text, "name"}},
     {{"Service name = %s", value(0)}},
     emits<&Client::signalServiceName, value(0)>},
    {ZYN_TYPE(PHONE_MSG_SPN_NAME_S), "provider-name", {{Text, "name"}, {Byte, "flag"}},
     {{"SPN = %s", value(0)}},
     emitProviderName},
    {ZYN_TYPE(PHONE_MSG_HOME_ZONE_NAME_S), "home-zone-name", {{Text, "name"}}, {},
     emits<&Client::signalHomeZoneName, value(0)>},
    {ZYN_TYPE(PHONE_MSG_RET_SET_RFMOD_S), "radio-mode-result", {{Int, "result"}},
     {{"PHONE_MSG_RET_SET_RFMOD_S"}, {"MsgClient: RF Mode Return = %d", value(0), kBanner}},
     emits<&Client::signalSetRFModResult, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_GPRS_ACTIVATED_S), "gprs-activated", {{Int, "value"}}, {},
     emits<&Client::signalGprsActivated, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_GPRS_ATTACHED_S), "gprs-attached", {{Int, "value"}}, {},
     emits<&Client::signalGprsAttached, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_GPRS_SERVICE_S), "gprs-service", {{Int, "value"}}, {},
     emits<&Client::signalGprsService, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_RET_OPEN_GPRS_S), "open-gprs-result", {{Int, "result"}},
     {{"Phone Client: Ret of open gprs = %d", value(0)}},
     emits<&Client::signalOpenGprsResult, value(0)>},
    {ZYN_TYPE(PHONE_MSG_RET_CLOSE_GPRS_S), "close-gprs-result", {{Int, "result"}},
     {{"Phone Client: Ret of close gprs = %d", value(0)}},
     emits<&Client::signalCloseGprsResult, value(0)>},
    {ZYN_TYPE(PHONE_MSG_LOW_BATTERY_S), "low-battery", {},
     {{"Phone Client: Low battery"}},
     emits<&Client::signalLowBattery>},
    {ZYN_TYPE(PHONE_MSG_SET_RFMOD_S), "set-radio-mode", {{Int, "on"}}, {}, nullptr},
    {ZYN_TYPE(PHONE_MSG_SET_FEATUREDB_LANG_S), "set-language", {{Int, "language"}}, {}, nullptr},
    {ZYN_TYPE(PHONE_MSG_RET_SET_FEATUREDB_LANG_S), "language-result", {{Int, "result"}},
     {{"PHONE_MSG_RET_SET_FEATUREDB_LANG_S"},
      {"MsgClient: Notify BP current language  Return = %d", value(0), kBanner}},
     nullptr},
    {ZYN_TYPE(PHONE_MSG_IMSI_S), "imsi", {{Raw, "imsi", TAPI_IMSI_LENGTH + 1}}, {},
     emits<&Client::signalImsiId, value(0)>},
    {ZYN_TYPE(PHONE_MSG_EGPRS_SERVICE_S), "egprs-service", {{Int, "value"}},
     {{"Phone Client: EGPRS Service status = %d", notZero(0)}},
     emits<&Client::signalEgprsService, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_EGPRS_TRANS_S), "egprs-transmission", {{Int, "value"}},
     {{"Phone Client: EGPRS Transmission status = %d", notZero(0)}},
     emits<&Client::signalEgprsTrans, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_TTY_FEATURE_CHANGED_S), "tty-feature-changed", {}, {},
     emits<&Client::signalTTYFeatureChanged>},
    {ZYN_TYPE(PHONE_MSG_TOTAL_DATA_BYTES_S), "total-bytes",
     {{Int, "connected"}, {Int, "total"}, {Int, "sent"}, {Int, "received"}},
     {{"phone client gprs connected =  %d", isOne(0)},
      {"phone client gprs total sentbytes = %d", value(2)},
      {"phone client gprs total recvedbytes = %d", value(3)},
      {"phone client gprs total bytes = %d", value(1)}},
     emits<&Client::signalTotalDataBytes, isOne(0), value(1), value(2), value(3)>},
    {ZYN_TYPE(PHONE_MSG_SESSION_DATA_BYTES_S), "session-bytes",
     {{Int, "connected"}, {Byte, "session"}, {Int, "bytes"}, {Int, "sent"}, {Int, "received"}},
     {{"phone client gprs connected =  %d", isOne(0)},
      {"phone client gprs current sentbytes = %d", value(3)},
      {"phone client gprs current recvedbytes = %d", value(4)},
      {"phone client gprs session id =  %d", value(1)},
      {"phone client gprs session bytes = %d", value(2)},
      {"phone client gprs sesion sentbytes = %d", value(3)},
      {"phone client gprs session recvedbytes = %d", value(4)}},
     emits<&Client::signalSessionDataBytes, value(1), isOne(0), value(2), value(3), value(4)>},
    {ZYN_TYPE(PHONE_MSG_TOTAL_CONNECTED_DURATION_S), "total-duration", {{Int, "connected"}, {Int, "seconds"}},
     {{"phone client csd connected =  %d", isOne(0)}, {"phone client csd total secs = %d", value(1)}},
     emits<&Client::signalTotalConnectedDuration, isOne(0), value(1)>},
    {ZYN_TYPE(PHONE_MSG_CURRENT_CONNECTED_DURATION_S), "current-duration",
     {{Int, "connected"}, {Int, "seconds"}},
     {{"phone client csd connected =  %d", isOne(0)}, {"phone client csd current secs = %d", value(1)}},
     emits<&Client::signalCurrentConnectedDuration, isOne(0), value(1)>},
    {ZYN_TYPE(PHONE_MSG_RESET_TOTAL_DURATION_S), "reset-total-duration", {{Int, "kind"}}, {}, nullptr},
    {ZYN_TYPE(PHONE_MSG_RET_RESET_TOTAL_DURATION_S), "reset-total-duration-result",
     {{Int, "kind"}, {Int, "retcode"}},
     {{"type =  %d", value(0)}, {"retcode =  %d", value(1)}},
     emits<&Client::signalResetTotalDurationRet, isZero(0), isZero(1)>},
    {ZYN_TYPE(PHONE_MSG_SERVICE_ID_AND_NAME_S), "service-id-and-name",
     {{Text, "first"}, {Text, "second"}, {Text, "third"}}, {},
     emits<&Client::signalServiceIdAndName, value(2), value(0), value(1)>},
    {ZYN_TYPE(PHONE_MSG_NETWORK_LIST_0_S), "network-list-0", {{NetworkListRecord, "list"}}, {},
     emitNetworkList0},
    {ZYN_TYPE(PHONE_MSG_NETWORK_LIST_1_S), "network-list-1", {{NetworkListRecord, "list"}}, {},
     emitNetworkList1},
    {ZYN_TYPE(PHONE_MSG_OPERATOR_LOGO_S), "operator-logo", {{Byte, "value"}},
     {{"logo hide = %d", value(0)}},
     emits<&Client::signalOperatorLogo, notZero(0)>},
    {ZYN_TYPE(PHONE_MSG_CSD_CALL_STAT_CHANGED_S), "csd-call-changed", {}, {},
     emits<&Client::signalCSDCallStatChanged>},
    {ZYN_TYPE(PHONE_MSG_CALL_FORWARD_STAT_CHANGED_S), "call-forward-changed", {}, {},
     emits<&Client::signalCallForwardStatChanged>},
    {ZYN_TYPE(PHONE_MSG_LINE_NUMBER_STAT_CHANGED_S), "line-number-changed", {}, {},
     emits<&Client::signalLineNumberStatChanged>},
    {ZYN_TYPE(PHONE_MSG_VOICE_CALL_STAT_CHANGED_S), "voice-call-changed", {}, {},
     emits<&Client::signalVoiceCallStatChanged>},
    {ZYN_TYPE(PHONE_MSG_CHARGE_COMPLETED_S), "charge-completed", {}, {},
     emits<&Client::signalChargeComleted>},
    {ZYN_TYPE(PHONE_MSG_LOW_BATTERY_STATUS_CHANGED_S), "low-battery-changed", {}, {},
     emits<&Client::signalLowBatteryStatusChanged>},
    {ZYN_TYPE(PHONE_MSG_CALL_BARRING_STATUS_CHANGED_S), "call-barring-changed", {}, {},
     emits<&Client::signalCallbarringStatusChanged>},
    {ZYN_TYPE(PHONE_MSG_WIFI_CAMP_STATUS_S), "wifi-camp", {}, {},
     emits<&Client::signalWifiCampStatus>},
    {ZYN_TYPE(PHONE_MSG_WIFI_SIGNAL_BAR_S), "wifi-signal-bar", {}, {},
     emits<&Client::signalWifiSignalBar>},
    {ZYN_TYPE(PHONE_MSG_WIFI_CONNECTION_IN_PROGRESS_S), "wifi-connecting", {}, {},
     emits<&Client::signalWifiConnectionInProgress>},
    {ZYN_TYPE(PHONE_MSG_WIFI_PROFILE_NAME_S), "wifi-profile-name", {{Text, "name"}}, {},
     emits<&Client::signalWifiProfileName, value(0)>},
    {ZYN_TYPE(PHONE_MSG_UMA_ICON_S), "uma-icon", {{Byte, "value"}},
     {{"UMA:value =  %d\n", value(0)}},
     emits<&Client::signalDisplayUMAIcon, value(0)>},
    {ZYN_TYPE(PHONE_MSG_SIM_CARD_CHANGED_S), "sim-card-changed", {},
     {{"get message: PHONE_MSG_SIM_CARD_CHANGED_S\n"}},
     emits<&Client::signalSimCardChanged>},
    {ZYN_TYPE(PHONE_MSG_GET_TOTAL_BYTE_AND_DURATION_S), "get-totals", {}, {}, nullptr},
};
// clang-format on

#undef ZYN_TYPE

static_assert(std::size(kMessages) == kPhoneTypes);

/// Whether the table may be indexed by the type.
constexpr bool isIndexedByType()
{
    for (size_t index = 0; index < std::size(kMessages); ++index) {
        if (kMessages[index].type != static_cast<PHONE_Msg::PHONE_MSG_TYPE_T>(index))
            return false;
    }
    return true;
}

static_assert(isIndexedByType());

/// Whether @p line converts nothing, or one field of @p fields as that is to be printed.
constexpr bool suits(const LogLine& line, std::initializer_list<Field> fields)
{
    const std::string_view format(line.format);
    const size_t conversion = format.find('%');
    if (conversion == format.npos)
        return true;
    if (line.argument.field >= fields.size() || format.find('%', conversion + 1) != format.npos)
        return false;
    const bool isText = fields.begin()[line.argument.field].kind == Text;
    return format.substr(conversion, 2) == (isText ? "%s" : "%d");
}

constexpr bool logLinesSuitTheirFields()
{
    for (const PhoneMessage& message : kMessages) {
        if (message.fields.size() > kMaxFields)
            return false;
        for (const LogLine& line : message.log) {
            if (!suits(line, message.fields))
                return false;
        }
    }
    return true;
}

static_assert(logLinesSuitTheirFields());

} // namespace

std::span<const PhoneMessage> phoneMessages()
{
    return kMessages;
}

namespace {

void printBanner(const LogLine& line)
{
    if (line.banner)
        PHONE_Log(kPhoneLogLevel, "%s", line.banner);
}

// The formats come from the table, where they are checked when it is compiled.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
void print(const LogLine& line, const FieldValues& values)
{
    printBanner(line);
    if (line.printsText())
        PHONE_Log(kPhoneLogLevel, line.format, values[line.argument.field].text.toLatin1().constData());
    else
        PHONE_Log(kPhoneLogLevel, line.format, number(values, line.argument));
    printBanner(line);
}
#pragma GCC diagnostic pop

} // namespace

void deliver(PHONE_MsgClient& client, const QCString& name, const QByteArray& payload, int line)
{
    const std::optional<unsigned> type = messageType(kPhonePrefix, name, kPhoneTypes);
    if (!type)
        return;
    const PhoneMessage& message = phoneMessages()[*type];
    FieldValues values = readFields(message.fields, payload);
    for (const LogLine& logLine : message.log)
        print(logLine, values);
    if (message.emitSignals)
        message.emitSignals(Emitter(client, line), values);
}

} // namespace zyn
