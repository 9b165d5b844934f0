// Types and calls of the telephony API.
#pragma once

#include "platform/ZynExport.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>

using UINT8 = uint8_t;   ///< one byte, 0 to 255
using UINT32 = uint32_t; ///< 0 to 4294967295

/// @{ States and results of the telephony platform, which gives their values a meaning; they are passed on as
/// they come.
enum TAPI_POWER_ON_MODE_E : int {};
/// 0 and 3 are the states that allow the PIN control codes.
enum TAPI_SIM_STATUS_E : int {};
enum TAPI_SECURITY_PIN_STATUS_E : int {};
enum TAPI_SECURITY_SUBSIDY_STATUS_E : int {};
enum TAPI_CHARGER_STATUS_E : int {};
enum TAPI_BATTERY_STATUS_E : int {};
enum TAPI_NETWORK_SIGNAL_E : int {};
enum TAPI_NETWORK_ROAM_E : int {};
/// 5 is registered: the one status that comes with a network id.
enum TAPI_NETWORK_STATUS_E : int {};
enum TAPI_RESULT_E : int {};
/// @}

/// A yes-or-no state in one byte: 1 is yes.
enum TAPI_BOOL_STATUS_E : uint8_t {};

/// The line of a call, in one signed byte.
enum TAPI_CALL_LINE_E : int8_t {};

/// How many digits an IMSI has at most; it travels in one byte more.
inline constexpr int TAPI_IMSI_LENGTH = 15;

/// One network of a TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S.
struct TAPI_NETWORK_PREFERED_ENTRY_S
{
    char id[16];   ///< the numeric network id: Latin-1, ended by a NUL or by the field
    char name[32]; ///< the network's name: Latin-1, ended by a NUL or by the field
};

/**
 * A list of networks, as it travels: little-endian.
 *
 * The layout is this stand-in's own; a telephony platform that lays it out in another way replaces it. The count comes
 * from outside: check it against the number of entries.
 */
struct TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S
{
    int32_t count;                             ///< how many entries are in use, from the first
    TAPI_NETWORK_PREFERED_ENTRY_S entries[64]; ///< the networks; those behind count have no meaning
};

static_assert(offsetof(TAPI_NETWORK_PREFERED_ENTRY_S, id) == 0);
static_assert(offsetof(TAPI_NETWORK_PREFERED_ENTRY_S, name) == 16);
static_assert(sizeof(TAPI_NETWORK_PREFERED_ENTRY_S) == 48);
static_assert(offsetof(TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S, count) == 0);
static_assert(offsetof(TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S, entries) == 4);
static_assert(sizeof(TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S) == 3076);
static_assert(std::is_trivially_copyable_v<TAPI_NETWORK_NOTIFY_PREFERED_LIST_MSG_S>);

/**
 * Asks whether fixed dialing is enabled.
 *
 * @param card   the SIM card, 1 being the first
 * @param state  set to 1 when fixed dialing is enabled, to another value when not; untouched on failure
 * @return 0, or the telephony API's error
 */
ZYN_EXPORT int TAPI_FIXDIALING_GetStatus(int card, TAPI_BOOL_STATUS_E* state);
