// Calls of the Java runtime, placed over a connection to the phone server. For C and C++, by plain symbol names.
#pragma once

#include "platform/ZynExport.h"

#ifdef __cplusplus
extern "C" {
#endif

/// @file
/// One connection in a process, used from one thread, whose event loop reads the server's replies. A connection that is
/// lost stays lost until PHONE_VoiceCall_Java_DeInit() and another PHONE_VoiceCall_Java_Init(). The event loop, a
/// request and the end of a connection may each wait up to 5 seconds for a server that stalls; one that sends anything
/// but replies ends the connection. A thread without Qt's event loop sends requests all the same and gets no replies; a
/// server may end a connection on which a few hundred replies wait.

/**
 * Connects to the phone server, which must run as this user or as root, and registers.
 *
 * A server that takes nothing for 5 seconds counts as gone.
 *
 * @param callback  called with the low 8 bits of each reply's code that is neither 0 nor 1; it may end the
 *                  connection
 * @return the handle for the other functions, which is 1; 0 when there is a connection already, lost or not, when
 *         @p callback is null, or on any failure
 */
ZYN_EXPORT int PHONE_VoiceCall_Java_Init(void (*callback)(char));

/**
 * Asks the server for a call.
 *
 * @param handle  as PHONE_VoiceCall_Java_Init() gave it; any other has no connection
 * @param number  Latin-1, 1 to 41 characters
 * @param value   passed on as it is
 * @return 0 when the request was sent; -1 when not, when the number does not fit, or without a connection
 */
ZYN_EXPORT int PHONE_VoiceCall_Java_MakeCall(int handle, const char* number, int value);

/// Asks the server to end the call of the connection @p handle. @return 0 when the request was sent, else -1
ZYN_EXPORT int PHONE_VoiceCall_Java_EndCall(int handle);

/// Asks the server to dial one @p character within the call of the connection @p handle.
/// @return 0 when the request was sent, else -1
ZYN_EXPORT int PHONE_VoiceCall_Java_DialExtension(int handle, char character);

/// Unregisters from the server, if there is a connection, and ends it. Any handle but 1 has no effect.
ZYN_EXPORT void PHONE_VoiceCall_Java_DeInit(int handle);

#ifdef __cplusplus
}
#endif
