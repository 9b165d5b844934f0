// The telephony under the phone server: service, modem, SIM card, PIN, registration and permission.
#include "tools/doctor/Checks.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/PhoneConnection.h"
#include "tools/zynphone/SocketProbe.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// A fault of the modem: as what the phone server says of it shows it, and what is to be done.
struct ModemFault
{
    bool (*isThere)(const QJsonObject& modem);
    const char* text;
    const char* remedy;
};

QString wordIn(const QJsonObject& modem, const char* field)
{
    return modem.value(QLatin1String(field)).toString();
}

bool isFalse(const QJsonObject& modem, const char* field)
{
    return modem.value(QLatin1String(field)) == QJsonValue(false);
}

/// In the order in which they hide each other.
constexpr ModemFault kModemFaults[] = {
    {[](const QJsonObject& modem) { return isFalse(modem, "bus"); }, "there is no system bus, so no telephony",
     "start it: systemctl start dbus"},
    {[](const QJsonObject& modem) { return modem.contains(u"bus"_s); }, "it does not run",
     "start it: systemctl start ofono, or systemctl start ModemManager"},
    {[](const QJsonObject& modem) { return isFalse(modem, "present"); }, "it has no modem",
     "see what the kernel has: ls /dev/cdc-wdm* /dev/ttyUSB* /dev/ttyACM*, and the service's log: journalctl -b"},
    {[](const QJsonObject& modem) { return wordIn(modem, "sim") == u"none"_s; }, "there is no SIM card",
     "put one in; only emergency calls are possible without"},
    {[](const QJsonObject& modem) { return wordIn(modem, "pin") == u"PIN"_s; }, "the SIM card asks for its PIN",
     "give it: zynphone phone unlock"},
    {[](const QJsonObject& modem) { return wordIn(modem, "pin") == u"PUK"_s; }, "the SIM card asks for its PUK",
     "give it and a new PIN: zynphone phone unlock; the operator knows the PUK"},
    {[](const QJsonObject& modem) { return wordIn(modem, "sim") == u"locked"_s; },
     "the phone or the card is locked to a network", "ask who sold it for the code"},
    {[](const QJsonObject& modem) { return isFalse(modem, "powered"); }, "the modem has no power",
     "see the service's log: journalctl -b"},
    {[](const QJsonObject& modem) { return isFalse(modem, "radio"); }, "the radio is off",
     "switch it on: zynphone radio on"},
    {[](const QJsonObject& modem) { return wordIn(modem, "network") == u"denied"_s; }, "the network denies this card",
     "ask its operator"},
    {[](const QJsonObject& modem) { return wordIn(modem, "network") != u"registered"_s; },
     "it is not registered with a network", "wait where there is coverage"},
    {[](const QJsonObject& modem) { return isFalse(modem, "voice"); }, "the modem takes no calls",
     "take one that does, or see which calls its operator takes"},
};

/// What has failed last, behind what is wrong, as it may be why.
QString withFailure(const QString& text, const QJsonObject& modem)
{
    const QString failure = wordIn(modem, "failure");
    return failure.isEmpty() ? text : text + u"; the last failure: "_s + failure;
}

QString stateText(const QJsonObject& modem)
{
    QString text = u"registered with %1"_s.arg(wordIn(modem, "operator"));
    if (modem.value(u"roaming"_s).toBool())
        text += u", abroad"_s;
    if (modem.value(u"strength"_s).isDouble())
        text += u", signal %1 %"_s.arg(modem.value(u"strength"_s).toInt());
    return text;
}

} // namespace

Findings checkModem()
{
    // Without a phone server, the check of the services says so.
    if (SocketProbe::at(phonecontrol::kSocketPath).state != SocketProbe::Served)
        return {};
    QJsonObject modem;
    try {
        modem = QJsonDocument::fromJson(PhoneConnection().ask(phonecontrol::AskModem, phonecontrol::ModemIs)).object();
    } catch (const CommandError& error) {
        return {wrong(u"modem"_s, error.message(), u"start this version's: zyn-phoned &"_s)};
    }
    const QString stack = wordIn(modem, "modem");
    if (stack == u"desk"_s)
        return {};
    const auto* const fault =
        std::ranges::find_if(kModemFaults, [&](const ModemFault& known) { return known.isThere(modem); });
    if (fault == std::end(kModemFaults))
        return {ok(stack, stateText(modem))};
    return {wrong(stack, withFailure(QLatin1String(fault->text), modem), QLatin1String(fault->remedy))};
}

} // namespace zyn::tool
