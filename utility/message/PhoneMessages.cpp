// The messages of the phone channel: their fields, and what a client makes of each.
#include "utility/message/PhoneMessages_p.h"

#include "platform/TAPI.h"
#include "utility/FixedText_p.h"
#include "utility/PHONE_Log_p.h"
#include "utility/PHONE_MsgClient.h"
#include "utility/message/AllStatus_p.h"

#include <QtCore/QPointer>

#include <charconv>
#include <functional>
#include <iterator>
#include <optional>
#include <type_traits>
#include <utility>

namespace zyn {

/// Emits a client's signals for as long as it lives: a receiver may destroy it in the middle of a message.
class Emitter
{
public:
    /// @param line  where the client receives, for the trace lines of single messages
    Emitter(PHONE_MsgClient& client, int line)
        : m_client(&client)
        , m_line(line)
    {}

    template<typename... Parameters, typename... Arguments>
    void operator()(void (PHONE_MsgClient::*signal)(Parameters...), Arguments&&... arguments) const
    {
        if (m_client)
            std::invoke(signal, *m_client, std::forward<Arguments>(arguments)...);
    }

    /// Prints the trace line of the client's receive().
    void trace() const { logEntry(kPhoneLogLevel, kClientSource, "receive", m_line); }

private:
    QPointer<PHONE_MsgClient> m_client;
    int m_line;
};

namespace {

using enum FieldKind;
using Client = PHONE_MsgClient;
using NetworkList = TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S;

constexpr Argument value(size_t field)
{
    return {field, Rule::AsItIs};
}

constexpr Argument notZero(size_t field)
{
    return {field, Rule::NotZero};
}

constexpr Argument isZero(size_t field)
{
    return {field, Rule::IsZero};
}

constexpr Argument isOne(size_t field)
{
    return {field, Rule::IsOne};
}

constexpr Argument lowByte(size_t field)
{
    return {field, Rule::LowByte};
}

/// The number that is logged or emitted of a field.
int32_t number(const FieldValues& values, Argument argument)
{
    const int32_t field = values[argument.field].number;
    switch (argument.rule) {
    case Rule::Unused:
        return 0;
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

/// The argument as the type that a signal takes.
template<typename T>
T convert(FieldValues& values, Argument argument)
{
    if constexpr (std::is_same_v<T, QString>)
        return values[argument.field].text;
    else if constexpr (std::is_same_v<T, UINT8*>)
        return reinterpret_cast<UINT8*>(values[argument.field].bytes.data());
    else
        return static_cast<T>(number(values, argument));
}

/// Emits @p Signal with @p Arguments, one for each of its parameters.
template<auto Signal, Argument... Arguments>
void emits(const Emitter& emitter, FieldValues& values, const QByteArray& /*payload*/)
{
    [&]<typename... Parameters>(void (PHONE_MsgClient::*signal)(Parameters...)) {
        emitter(signal, convert<Parameters>(values, Arguments)...);
    }(Signal);
}

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
    const bool isAligned = reinterpret_cast<uintptr_t>(record.constData()) % alignof(NetworkList) == 0;
    if (record.size() >= qsizetype{sizeof(NetworkList)} && isAligned)
        return record;
    return QByteArray(record.constData(), record.size()).leftJustified(qsizetype{sizeof(NetworkList)}, '\0');
}

template<int kind>
void emitNetworkList(const Emitter& emitter, FieldValues& /*values*/, const QByteArray& payload)
{
    const QByteArray list = asNetworkList(payload);
    emitter.trace();
    emitter(&Client::signalnetworkListGotten, PHONE_UI_NETWORKLIST_TYPE_T{kind},
            reinterpret_cast<NetworkList*>(const_cast<char*>(list.constData())));
    if (kind == 0)
        emitter.trace();
}

void emitSnapshot(const Emitter& emitter, FieldValues& /*values*/, const QByteArray& payload)
{
    AllStatus status = readAllStatus(payload);
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

void emitNetworkStatus(const Emitter& emitter, FieldValues& values, const QByteArray& /*payload*/)
{
    const TAPI_NETWORK_STATUS_E status{values[0].number};
    if (status == kRegistered)
        emitRegistered(emitter, values[1].text);
    else
        emitNotRegistered(emitter, status);
}

void emitProviderName(const Emitter& emitter, FieldValues& values, const QByteArray& /*payload*/)
{
    emitter(&Client::signalSpnNameExtend,
            SERVICE_PROVIDER_DATA_S{static_cast<UINT8>(values[1].number), values[0].text});
}

constexpr char kBanner[] = "********Client****************";
constexpr char kPowerOnBanner[] = "*********Client***************";
constexpr std::string_view kPrefix = "PHONE_MSG_";

constexpr std::initializer_list<Field> kNetworkListFields = {
    {Int, "count", sizeof(NetworkList::count), Occurrence::Once, offsetof(NetworkList, count)},
    {Networks, "networks", sizeof(NetworkList::entries), Occurrence::Once, offsetof(NetworkList, entries)},
};

// What a type's message is: its channel, its name by the number, and the enumerator, which must have that number.
#define ZYN_TYPE(number, type)                                                                                         \
    kPhoneChannel, "PHONE_MSG_" #number, PHONE_Msg::type == (number) ? #type : throw "not the type's number"

// A row each: type and fields, word, log lines, signals.
// clang-format off
constexpr PhoneMessage kMessages[] = {
    {{ZYN_TYPE(0, PHONE_MSG_ALL_STATUS_S), kAllStatusFields, "status"}, "snapshot",
     {{"PHONE_MSG_ALL_STATUS_S"}}, emitSnapshot},
    {{ZYN_TYPE(1, PHONE_MSG_POWER_ON_MODE_S), {{Int, "mode"}}}, "power-on-mode",
     {{"PHONE_MSG_POWER_ON_MODE_S"}, {"MsgClient: Power on Mode ", value(0), kPowerOnBanner, " "}},
     emits<&Client::signalPowerOnMode, value(0)>},
    {{ZYN_TYPE(2, PHONE_MSG_POWER_KEY_PRESSED_S)}, "power-key",
     {{"PHONE_MSG_POWER_KEY_PRESSED_S Message", {}, kBanner}}, emits<&Client::signalPowerDown>},
    {{ZYN_TYPE(3, PHONE_MSG_BATTERY_STATUS_S), {{Int, "status"}}}, "battery-status",
     {{"PHONE_MSG_BATTERY_STATUS_S"}, {"MsgClient: Battery Status = ", value(0), kBanner}},
     emits<&Client::signalBatteryStatus, value(0)>},
    {{ZYN_TYPE(4, PHONE_MSG_BATTERY_VALUE_CHANGE_S), {{Byte, "value"}}}, "battery-capacity",
     {{"PHONE_MSG_BATTERY_VALUE_CHANGE_S"}, {"MsgClient: Battery Value = ", value(0), kBanner}},
     emits<&Client::signalBatteryCapacity, value(0)>},
    {{ZYN_TYPE(5, PHONE_MSG_CHARGE_STATUS_S), {{Int, "status"}}}, "charger",
     {{"PHONE_MSG_CHARGE_STATUS_S"}, {"MsgClient: Charge Status = ", value(0), kBanner}},
     emits<&Client::signalChargeStatus, value(0)>},
    {{ZYN_TYPE(6, PHONE_MSG_SIM_CARD_STATUS_S), {{Int, "status"}}}, "sim-card",
     {{"PHONE_MSG_SIM_CARD_STATUS_S"}, {"MsgClient: Sim card status = ", value(0), kBanner}},
     emits<&Client::signalSimCardStatus, value(0)>},
    {{kPhoneChannel, "PHONE_MSG_7"}, nullptr, {}, nullptr},
    {{ZYN_TYPE(8, PHONE_MSG_PIN1_STATUS_S), {{Int, "status"}}}, "pin",
     {{"PHONE_MSG_PIN1_STATUS_S"}, {"MsgClient: Pin1 Status = ", value(0), kBanner}},
     emits<&Client::signalPinStatus, value(0)>},
    {{ZYN_TYPE(9, PHONE_MSG_SUBSIDY_LOCK_STATUS_S), {{Int, "status"}}}, "subsidy-lock",
     {{"PHONE_MSG_SUBSIDY_LOCK_STATUS_S"}, {"MsgClient: Subsidy lock status = ", value(0), kBanner}},
     emits<&Client::signalSubsidyStatus, value(0)>},
    {{ZYN_TYPE(10, PHONE_MSG_SIGNAL_QUALITY_S), {{Int, "quality"}}}, "signal-quality",
     {{"MsgClient: Signal Value = ", value(0)}}, emits<&Client::signalSignalQuality, value(0)>},
    {{ZYN_TYPE(11, PHONE_MSG_SERVICE_AVAILABILITY_S), {{Int, "value"}}}, "service-availability",
     {{"MsgClient: Service = ", lowByte(0)}}, emits<&Client::signalServiceAvailability, lowByte(0)>},
    {{ZYN_TYPE(12, PHONE_MSG_ROAMING_STATE_S), {{Int, "state"}}}, "roaming",
     {{"MsgClient: roam = ", value(0)}}, emits<&Client::signalRoamingState, value(0)>},
    {{ZYN_TYPE(13, PHONE_MSG_NETWORK_STATUS_S), {{Int, "status"}, {Text, "id"}}}, "network",
     {{"******Network status = ", value(0)}}, emitNetworkStatus},
    {{ZYN_TYPE(14, PHONE_MSG_SERVICE_NAME_S), {{Text, "name"}}}, "service-name",
     {{"Service name = ", value(0)}}, emits<&Client::signalServiceName, value(0)>},
    {{ZYN_TYPE(15, PHONE_MSG_SPN_NAME_S), {{Text, "name"}, {Byte, "flag"}}}, "provider-name",
     {{"SPN = ", value(0)}}, emitProviderName},
    {{ZYN_TYPE(16, PHONE_MSG_HOME_ZONE_NAME_S), {{Text, "name"}}}, "home-zone-name",
     {}, emits<&Client::signalHomeZoneName, value(0)>},
    {{ZYN_TYPE(17, PHONE_MSG_RET_SET_RFMOD_S), {{Int, "result"}}}, "radio-mode-result",
     {{"PHONE_MSG_RET_SET_RFMOD_S"}, {"MsgClient: RF Mode Return = ", value(0), kBanner}},
     emits<&Client::signalSetRFModResult, notZero(0)>},
    {{ZYN_TYPE(18, PHONE_MSG_GPRS_ACTIVATED_S), {{Int, "value"}}}, "gprs-activated",
     {}, emits<&Client::signalGprsActivated, notZero(0)>},
    {{ZYN_TYPE(19, PHONE_MSG_GPRS_ATTACHED_S), {{Int, "value"}}}, "gprs-attached",
     {}, emits<&Client::signalGprsAttached, notZero(0)>},
    {{ZYN_TYPE(20, PHONE_MSG_GPRS_SERVICE_S), {{Int, "value"}}}, "gprs-service",
     {}, emits<&Client::signalGprsService, notZero(0)>},
    {{ZYN_TYPE(21, PHONE_MSG_RET_OPEN_GPRS_S), {{Int, "result"}}}, "open-gprs-result",
     {{"Phone Client: Ret of open gprs = ", value(0)}}, emits<&Client::signalOpenGprsResult, value(0)>},
    {{ZYN_TYPE(22, PHONE_MSG_RET_CLOSE_GPRS_S), {{Int, "result"}}}, "close-gprs-result",
     {{"Phone Client: Ret of close gprs = ", value(0)}}, emits<&Client::signalCloseGprsResult, value(0)>},
    {{ZYN_TYPE(23, PHONE_MSG_LOW_BATTERY_S)}, "low-battery",
     {{"Phone Client: Low battery"}}, emits<&Client::signalLowBattery>},
    {{ZYN_TYPE(24, PHONE_MSG_SET_RFMOD_S), {{Int, "on"}}}, "set-radio-mode", {}, nullptr},
    {{ZYN_TYPE(25, PHONE_MSG_SET_FEATUREDB_LANG_S), {{Int, "language"}}}, "set-language", {}, nullptr},
    {{ZYN_TYPE(26, PHONE_MSG_RET_SET_FEATUREDB_LANG_S), {{Int, "result"}}}, "language-result",
     {{"PHONE_MSG_RET_SET_FEATUREDB_LANG_S"},
      {"MsgClient: Notify BP current language  Return = ", value(0), kBanner}},
     nullptr},
    {{ZYN_TYPE(27, PHONE_MSG_IMSI_S), {{Raw, "imsi", TAPI_IMSI_LENGTH + 1}}}, "imsi",
     {}, emits<&Client::signalImsiId, value(0)>},
    {{ZYN_TYPE(28, PHONE_MSG_EGPRS_SERVICE_S), {{Int, "value"}}}, "egprs-service",
     {{"Phone Client: EGPRS Service status = ", notZero(0)}}, emits<&Client::signalEgprsService, notZero(0)>},
    {{ZYN_TYPE(29, PHONE_MSG_EGPRS_TRANS_S), {{Int, "value"}}}, "egprs-transmission",
     {{"Phone Client: EGPRS Transmission status = ", notZero(0)}}, emits<&Client::signalEgprsTrans, notZero(0)>},
    {{ZYN_TYPE(30, PHONE_MSG_TTY_FEATURE_CHANGED_S)}, "tty-feature-changed",
     {}, emits<&Client::signalTTYFeatureChanged>},
    {{ZYN_TYPE(31, PHONE_MSG_TOTAL_DATA_BYTES_S),
      {{Int, "connected"}, {Int, "total"}, {Int, "sent"}, {Int, "received"}}}, "total-bytes",
     {{"phone client gprs connected =  ", isOne(0)}, {"phone client gprs total sentbytes = ", value(2)},
      {"phone client gprs total recvedbytes = ", value(3)}, {"phone client gprs total bytes = ", value(1)}},
     emits<&Client::signalTotalDataBytes, isOne(0), value(1), value(2), value(3)>},
    {{ZYN_TYPE(32, PHONE_MSG_SESSION_DATA_BYTES_S),
      {{Int, "connected"}, {Byte, "session"}, {Int, "bytes"}, {Int, "sent"}, {Int, "received"}}}, "session-bytes",
     {{"phone client gprs connected =  ", isOne(0)}, {"phone client gprs current sentbytes = ", value(3)},
      {"phone client gprs current recvedbytes = ", value(4)}, {"phone client gprs session id =  ", value(1)},
      {"phone client gprs session bytes = ", value(2)}, {"phone client gprs sesion sentbytes = ", value(3)},
      {"phone client gprs session recvedbytes = ", value(4)}},
     emits<&Client::signalSessionDataBytes, value(1), isOne(0), value(2), value(3), value(4)>},
    {{ZYN_TYPE(33, PHONE_MSG_TOTAL_CONNECTED_DURATION_S), {{Int, "connected"}, {Int, "seconds"}}}, "total-duration",
     {{"phone client csd connected =  ", isOne(0)}, {"phone client csd total secs = ", value(1)}},
     emits<&Client::signalTotalConnectedDuration, isOne(0), value(1)>},
    {{ZYN_TYPE(34, PHONE_MSG_CURRENT_CONNECTED_DURATION_S), {{Int, "connected"}, {Int, "seconds"}}}, "current-duration",
     {{"phone client csd connected =  ", isOne(0)}, {"phone client csd current secs = ", value(1)}},
     emits<&Client::signalCurrentConnectedDuration, isOne(0), value(1)>},
    {{ZYN_TYPE(35, PHONE_MSG_RESET_TOTAL_DURATION_S), {{Int, "kind"}}}, "reset-total-duration", {}, nullptr},
    {{ZYN_TYPE(36, PHONE_MSG_RET_RESET_TOTAL_DURATION_S),
      {{Int, "kind"}, {Int, "retcode"}}}, "reset-total-duration-result",
     {{"type =  ", value(0)}, {"retcode =  ", value(1)}},
     emits<&Client::signalResetTotalDurationRet, isZero(0), isZero(1)>},
    {{ZYN_TYPE(37, PHONE_MSG_SERVICE_ID_AND_NAME_S),
      {{Text, "first"}, {Text, "second"}, {Text, "third"}}}, "service-id-and-name",
     {}, emits<&Client::signalServiceIdAndName, value(2), value(0), value(1)>},
    {{ZYN_TYPE(38, PHONE_MSG_NETWORK_LIST_0_S), kNetworkListFields, "list"}, "network-list-0", {}, emitNetworkList<0>},
    {{ZYN_TYPE(39, PHONE_MSG_NETWORK_LIST_1_S), kNetworkListFields, "list"}, "network-list-1", {}, emitNetworkList<1>},
    {{ZYN_TYPE(40, PHONE_MSG_OPERATOR_LOGO_S), {{Byte, "value"}}}, "operator-logo",
     {{"logo hide = ", value(0)}}, emits<&Client::signalOperatorLogo, notZero(0)>},
    {{ZYN_TYPE(41, PHONE_MSG_CSD_CALL_STAT_CHANGED_S)}, "csd-call-changed",
     {}, emits<&Client::signalCSDCallStatChanged>},
    {{ZYN_TYPE(42, PHONE_MSG_CALL_FORWARD_STAT_CHANGED_S)}, "call-forward-changed",
     {}, emits<&Client::signalCallForwardStatChanged>},
    {{ZYN_TYPE(43, PHONE_MSG_LINE_NUMBER_STAT_CHANGED_S)}, "line-number-changed",
     {}, emits<&Client::signalLineNumberStatChanged>},
    {{ZYN_TYPE(44, PHONE_MSG_VOICE_CALL_STAT_CHANGED_S)}, "voice-call-changed",
     {}, emits<&Client::signalVoiceCallStatChanged>},
    {{ZYN_TYPE(45, PHONE_MSG_CHARGE_COMPLETED_S)}, "charge-completed", {}, emits<&Client::signalChargeComleted>},
    {{ZYN_TYPE(46, PHONE_MSG_LOW_BATTERY_STATUS_CHANGED_S)}, "low-battery-changed",
     {}, emits<&Client::signalLowBatteryStatusChanged>},
    {{ZYN_TYPE(47, PHONE_MSG_CALL_BARRING_STATUS_CHANGED_S)}, "call-barring-changed",
     {}, emits<&Client::signalCallbarringStatusChanged>},
    {{ZYN_TYPE(48, PHONE_MSG_WIFI_CAMP_STATUS_S)}, "wifi-camp", {}, emits<&Client::signalWifiCampStatus>},
    {{ZYN_TYPE(49, PHONE_MSG_WIFI_SIGNAL_BAR_S)}, "wifi-signal-bar", {}, emits<&Client::signalWifiSignalBar>},
    {{ZYN_TYPE(50, PHONE_MSG_WIFI_CONNECTION_IN_PROGRESS_S)}, "wifi-connecting",
     {}, emits<&Client::signalWifiConnectionInProgress>},
    {{ZYN_TYPE(51, PHONE_MSG_WIFI_PROFILE_NAME_S), {{Text, "name"}}}, "wifi-profile-name",
     {}, emits<&Client::signalWifiProfileName, value(0)>},
    {{ZYN_TYPE(52, PHONE_MSG_UMA_ICON_S), {{Byte, "value"}}}, "uma-icon",
     {{"UMA:value =  ", value(0), nullptr, "\n"}}, emits<&Client::signalDisplayUMAIcon, value(0)>},
    {{ZYN_TYPE(53, PHONE_MSG_SIM_CARD_CHANGED_S)}, "sim-card-changed",
     {{"get message: PHONE_MSG_SIM_CARD_CHANGED_S\n"}}, emits<&Client::signalSimCardChanged>},
    {{ZYN_TYPE(54, PHONE_MSG_GET_TOTAL_BYTE_AND_DURATION_S)}, "get-totals", {}, nullptr},
};
// clang-format on

#undef ZYN_TYPE

/// Whether the table may be indexed by the type.
constexpr bool isIndexedByType()
{
    for (size_t index = 0; index < std::size(kMessages); ++index) {
        const std::string_view name(kMessages[index].name);
        const char tens = index < 10 ? '_' : static_cast<char>('0' + index / 10);
        const size_t length = kPrefix.size() + (index < 10 ? 1 : 2);
        if (name.size() != length || !name.ends_with(static_cast<char>('0' + index % 10)) || name[length - 2] != tens)
            return false;
    }
    return true;
}

static_assert(isIndexedByType());

/// Whether @p line has no argument, or one that its message has.
constexpr bool suits(const LogLine& line, std::initializer_list<Field> fields)
{
    return line.argument.rule == Rule::Unused || line.argument.field < fields.size();
}

constexpr bool logLinesSuitTheirFields()
{
    for (const PhoneMessage& message : kMessages) {
        for (const LogLine& line : message.log) {
            if (!suits(line, message.fields))
                return false;
        }
    }
    return true;
}

static_assert(logLinesSuitTheirFields());

void print(LogText& log, const LogLine& line, const Message& message, const FieldValues& values)
{
    const auto add = [&log](const char* text) {
        if (text)
            log << text;
    };
    const auto [field, rule] = line.argument;
    add(line.banner);
    add(line.text);
    if (rule != Rule::Unused && message.fields.begin()[field].kind == Text)
        add(values[field].text.toLatin1().constData());
    else if (rule != Rule::Unused)
        log << number(values, line.argument);
    add(line.end);
    add(line.banner);
}

/// The decimal number that follows @p prefix in @p name, however it is spelled.
std::optional<size_t> numberAfter(std::string_view prefix, std::string_view name)
{
    if (!name.starts_with(prefix))
        return std::nullopt;
    size_t number = 0;
    const char* const end = name.data() + name.size();
    const auto [parsed, error] = std::from_chars(name.data() + prefix.size(), end, number);
    if (error != std::errc() || parsed != end)
        return std::nullopt;
    return number;
}

} // namespace

std::span<const PhoneMessage> phoneMessages()
{
    return kMessages;
}

const PhoneMessage* phoneMessage(const QCString& name)
{
    const auto type = numberAfter(kPrefix, std::string_view(name.constData(), static_cast<size_t>(name.size())));
    return type && *type < std::size(kMessages) && name == kMessages[*type].name ? &kMessages[*type] : nullptr;
}

void deliver(PHONE_MsgClient& client, const QCString& name, const QByteArray& payload, LogText& log, int line)
{
    const PhoneMessage* const message = phoneMessage(name);
    if (!message)
        return;
    FieldValues values = message->isRecord() ? FieldValues() : decode(*message, payload);
    for (const LogLine& logLine : message->log)
        print(log, logLine, *message, values);
    log.flush();
    if (message->emitSignals)
        message->emitSignals(Emitter(client, line), values, payload);
}

} // namespace zyn
