// Names and sends the messages of the phone channel.
#pragma once

#include "platform/QCopChannel.h"
#include "platform/ZynExport.h"

/**
 * Names and sends the messages of the phone channel, "/ZYN/phone".
 *
 * Status messages come from the phone server; requests go to it, and it answers with status messages. Any object may
 * send any type. Each listens on the channel for as long as it lives, so that it receives what it sends. Sending prints
 * debug lines: see platform/QuietTrace.h.
 */
class ZYN_EXPORT PHONE_Msg : public QCopChannel
{
    // No Q_OBJECT: it has no signals of its own, and reports the class name of its base.

public:
    /// The types of the messages: what the phone server tells, and, where it says so, what it is asked.
    enum PHONE_MSG_TYPE_T : int {
        PHONE_MSG_ALL_STATUS_S = 0, ///< snapshot of all basic status values in one raw record
        PHONE_MSG_POWER_ON_MODE_S = 1,
        PHONE_MSG_POWER_KEY_PRESSED_S = 2,
        PHONE_MSG_BATTERY_STATUS_S = 3,
        PHONE_MSG_BATTERY_VALUE_CHANGE_S = 4,
        PHONE_MSG_CHARGE_STATUS_S = 5,
        PHONE_MSG_SIM_CARD_STATUS_S = 6,
        // 7 has a message name but no use.
        PHONE_MSG_PIN1_STATUS_S = 8,
        PHONE_MSG_SUBSIDY_LOCK_STATUS_S = 9,
        PHONE_MSG_SIGNAL_QUALITY_S = 10,
        PHONE_MSG_SERVICE_AVAILABILITY_S = 11,
        PHONE_MSG_ROAMING_STATE_S = 12,
        PHONE_MSG_NETWORK_STATUS_S = 13, ///< network registration status and network id
        PHONE_MSG_SERVICE_NAME_S = 14,
        PHONE_MSG_SPN_NAME_S = 15, ///< service-provider name with its flag
        PHONE_MSG_HOME_ZONE_NAME_S = 16,
        PHONE_MSG_RET_SET_RFMOD_S = 17, ///< answers PHONE_MSG_SET_RFMOD_S
        PHONE_MSG_GPRS_ACTIVATED_S = 18,
        PHONE_MSG_GPRS_ATTACHED_S = 19,
        PHONE_MSG_GPRS_SERVICE_S = 20,
        PHONE_MSG_RET_OPEN_GPRS_S = 21,
        PHONE_MSG_RET_CLOSE_GPRS_S = 22,
        PHONE_MSG_LOW_BATTERY_S = 23,
        PHONE_MSG_SET_RFMOD_S = 24,              ///< request: set the radio mode
        PHONE_MSG_SET_FEATUREDB_LANG_S = 25,     ///< request: tell the modem side the current language
        PHONE_MSG_RET_SET_FEATUREDB_LANG_S = 26, ///< answers PHONE_MSG_SET_FEATUREDB_LANG_S
        PHONE_MSG_IMSI_S = 27,
        PHONE_MSG_EGPRS_SERVICE_S = 28,
        PHONE_MSG_EGPRS_TRANS_S = 29,
        PHONE_MSG_TTY_FEATURE_CHANGED_S = 30,
        PHONE_MSG_TOTAL_DATA_BYTES_S = 31,
        PHONE_MSG_SESSION_DATA_BYTES_S = 32,
        PHONE_MSG_TOTAL_CONNECTED_DURATION_S = 33,
        PHONE_MSG_CURRENT_CONNECTED_DURATION_S = 34,
        PHONE_MSG_RESET_TOTAL_DURATION_S = 35,     ///< request: reset a total duration
        PHONE_MSG_RET_RESET_TOTAL_DURATION_S = 36, ///< answers PHONE_MSG_RESET_TOTAL_DURATION_S
        PHONE_MSG_SERVICE_ID_AND_NAME_S = 37,      ///< three texts: service id and names
        PHONE_MSG_NETWORK_LIST_0_S = 38,
        PHONE_MSG_NETWORK_LIST_1_S = 39,
        PHONE_MSG_OPERATOR_LOGO_S = 40,
        PHONE_MSG_CSD_CALL_STAT_CHANGED_S = 41,
        PHONE_MSG_CALL_FORWARD_STAT_CHANGED_S = 42,
        PHONE_MSG_LINE_NUMBER_STAT_CHANGED_S = 43,
        PHONE_MSG_VOICE_CALL_STAT_CHANGED_S = 44,
        PHONE_MSG_CHARGE_COMPLETED_S = 45,
        PHONE_MSG_LOW_BATTERY_STATUS_CHANGED_S = 46,
        PHONE_MSG_CALL_BARRING_STATUS_CHANGED_S = 47,
        PHONE_MSG_WIFI_CAMP_STATUS_S = 48,
        PHONE_MSG_WIFI_SIGNAL_BAR_S = 49,
        PHONE_MSG_WIFI_CONNECTION_IN_PROGRESS_S = 50,
        PHONE_MSG_WIFI_PROFILE_NAME_S = 51,
        PHONE_MSG_UMA_ICON_S = 52,
        PHONE_MSG_SIM_CARD_CHANGED_S = 53,
        PHONE_MSG_GET_TOTAL_BYTE_AND_DURATION_S = 54, ///< request: report the GPRS and CSD totals, as 31 and 33
    };

    /// Listens on the phone channel as @p name, a label for debugging that may be null; @p parent deletes it.
    explicit PHONE_Msg(QObject* parent = nullptr, const char* name = nullptr);
    ~PHONE_Msg() override;

    /// "PHONE_MSG_" and the number of @p type; an empty, not null, name for a type outside 0 to 54.
    QCString getMsg(PHONE_MSG_TYPE_T type);

    /// Sends the message of @p type without a payload; false when it could not be handed on, or has no name.
    bool send(PHONE_MSG_TYPE_T type);
    /// Sends the message of @p type with @p data as it is; false when it could not be handed on, or has no name.
    bool send(PHONE_MSG_TYPE_T type, const QByteArray& data);
};
