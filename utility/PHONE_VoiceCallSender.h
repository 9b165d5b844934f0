// Sends requests to place and end voice calls.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>

/// Sends requests to the application that carries voice calls out. It does not answer: the phone status messages tell
/// how a call goes on.
class ZYN_EXPORT PHONE_VoiceCallSender
{
public:
    PHONE_VoiceCallSender();
    virtual ~PHONE_VoiceCallSender();

    /**
     * Asks for a call.
     *
     * @param number    Latin-1; null and empty are refused
     * @param name      the name to show, null for none
     * @param flag      passed on as it is
     * @param clir      restriction of the calling line's identity, passed on as it is
     * @param dialMode  0 ordinary, 1 the number unchanged, 2 with the prefix put in front
     * @param line      the line to call on (TAPI_CALL_LINE_E)
     * @return whether the request was sent
     */
    bool makeCall(const char* number, const QString& name, bool flag, int clir, int dialMode, signed char line);
    /// Asks for a call to @p number in @p dialMode, on line 2 without a name, a flag or a restriction.
    bool makeCall(const char* number, int dialMode);
    /// Asks to end the call.
    void dropCall();
};
