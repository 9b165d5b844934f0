// The control socket of the phone server: by it, somebody at a desk plays the network and the other parties.
#pragma once

#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <QtCore/QString>

#include <cstddef>
#include <cstdint>

namespace zyn::phonecontrol {

/// Where the socket is: beside the server's other one.
inline constexpr char kSocketPath[] = "/tmp/zynphonecom/phone_control";

/// The same, in a directory that exists as far as it can.
inline QString socketPath()
{
    socketDirectory(voicecall::kSocketDirectory);
    return QLatin1String(kSocketPath);
}

/// What a client asks of the server.
enum Command : int32_t {
    Say = 1,         ///< something happens; data: the words of a script's line, in UTF-8, a NUL behind each
    ListCalls = 2,   ///< no data
    FollowCalls = 3, ///< as ListCalls, and from then on each change; no data
    AskModem = 4,    ///< what is known of the modem; no data
    Unlock = 5,      ///< opens the lock of the SIM card; data: the PIN, or the PUK and a new PIN, a NUL behind each
};

/// @{ What the members type, direction and state of a call say; the states are in the order of handset::CallState.
inline constexpr char kVoiceCall[] = "voice";
inline constexpr char kPttCall[] = "ptt";
inline constexpr char kPlacedCall[] = "placed";
inline constexpr char kIncomingCall[] = "incoming";
inline constexpr const char* kCallStates[] = {"dialing", "alerting", "ringing", "waiting", "connected",
                                              "held",    "ended",    "missed",  "failed"};
/// @}

/// What the server answers. A call is a JSON object: id, number, name, type, direction, state and since.
enum Reply : int32_t {
    Done = 1,        ///< it has happened; no data
    Refused = 2,     ///< it cannot happen; data: why, in UTF-8
    Calls = 3,       ///< data: a JSON array of the calls on the line
    CallChanged = 4, ///< data: the call that has changed
    ModemIs = 5,     ///< data: a JSON object, of which "modem" says whose it is
};

/// The most that a client says at once, in bytes: a status message with a record has two digits for each byte.
inline constexpr size_t kLongestSaying = size_t{16} * 1024;

/// The most digits of a PIN or PUK, and the fewest: 3GPP TS 31.101, 9.5.1.
inline constexpr int kLongestCode = 8;
inline constexpr int kShortestCode = 4;

/// What people at the telephones do, and what the network does, as a script and a client say it.
struct LineEvent
{
    const char* name;
    const char* values; ///< their names, for people
    qsizetype fewestValues;
    qsizetype mostValues;
    const char* meaning;
    bool isOfNetwork = false; ///< only the network of a desk does what somebody says
};

inline constexpr LineEvent kIncoming{"incoming", "number [name]", 1, 2, "somebody calls", true};
inline constexpr LineEvent kAnswer{"answer", "[id]", 0, 1, "the call that rings, here or there, is answered"};
inline constexpr LineEvent kHangUp{"hangup", "[id|all]", 0, 1, "the call ends"};
inline constexpr LineEvent kMissed{"missed", "", 0, 0, "the caller gives up before anybody answers", true};
inline constexpr LineEvent kFail{"fail", "", 0, 0, "the network does not put the placed call through", true};
inline constexpr LineEvent kSnapshot{"snapshot", "", 0, 0, "all states that are known are told again"};

inline constexpr LineEvent kLineEvents[] = {kIncoming, kAnswer, kHangUp, kMissed, kFail, kSnapshot};

} // namespace zyn::phonecontrol
