// Places and ends voice calls.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>

/// Restriction of the calling line's identity; the application that carries the call out gives the values their
/// meaning.
enum PHONE_MAKE_CALL_CLIR_T : int {};

/**
 * Asks for a call. A null or empty number asks for nothing; no result tells whether the request was sent.
 *
 * @param number  Latin-1
 * @param name    the name to show, null for none
 * @param flag    passed on as it is
 * @param clir    passed on as it is
 * @param line    the line to call on (TAPI_CALL_LINE_E)
 */
ZYN_EXPORT void PHONE_MakeVoiceCall(char* number, QString const& name, bool flag, PHONE_MAKE_CALL_CLIR_T clir,
                                    signed char line);
/// The same, under a symbol name that other runtimes can look up.
extern "C" ZYN_EXPORT void PHONE_VoiceCallInterfaceMakeVoiceCall(char* number, QString const& name, bool flag,
                                                                 PHONE_MAKE_CALL_CLIR_T clir, signed char line);

/// Asks for a call to @p number (Latin-1) as it is, on line 2.
ZYN_EXPORT void PHONE_MakeVoiceCallDirectly(char const* number);
/// Asks for a call to @p number (Latin-1) with the prefix put in front, on line 2.
ZYN_EXPORT void PHONE_MakeVoiceCallPrependly(char const* number);
/// Asks to end the call.
ZYN_EXPORT void PHONE_EndVoiceCall();

/// @{ There are no video calls: these do nothing.
ZYN_EXPORT void PHONE_MakeVideoCall(char const* number);
ZYN_EXPORT void PHONE_EndVTCall();
/// @}
