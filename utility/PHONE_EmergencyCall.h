// Tells which numbers may be dialed when dialing is restricted.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>

/// @file
/// The emergency numbers are in the file "/tmp/emergency_call", which every question reads anew, to its end. A missing
/// file means no numbers; of a file that breaks off, the numbers before the break count. If it is not a regular file,
/// at most 1,560 records are read. Texts are compared character by character. Questions about an input print debug
/// lines: see platform/QuietTrace.h.

/// Whether @p number (Latin-1) is an emergency number; null is not.
ZYN_EXPORT bool PHONE_IsEmergencyCall(char* number);
/// The same.
ZYN_EXPORT bool PHONE_IsEmergencyCallNumber(char* number);

/**
 * Whether @p input, the text typed so far, may still become an emergency number or a control code that is allowed now.
 *
 * The code that shows the IMEI is allowed while the keypad lock status is 0, the codes that change and unblock the PINs
 * while the SIM card status is 0 or 3. An empty text is refused.
 */
ZYN_EXPORT bool PHONE_IsEmergencyCallInput(QString const& input);
/// The same.
ZYN_EXPORT bool PHONE_IsInputtingEmergencyCall(QString const& input);
