// The telephony of a real phone is a library of its own, so that a desk needs no system bus.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>

#include <memory>

namespace zyn::handset {

class Modem;
class PhoneStatus;

/// The stack that is on the bus, whichever.
inline constexpr char kAnyStack[] = "auto";

/// Loads the library and makes the modem of @p stack: "ofono", "modemmanager", or kAnyStack. Null, which is logged,
/// when the library is not installed.
std::unique_ptr<Modem> loadModem(const QString& stack, PhoneStatus& status);

} // namespace zyn::handset

/// What the library exports: makes a modem, which the caller deletes; null for a @p stack that it does not know. It is
/// loaded only by the program with which it was built.
extern "C" ZYN_EXPORT zyn::handset::Modem* zynMakeModem(const char* stack, zyn::handset::PhoneStatus* status);
