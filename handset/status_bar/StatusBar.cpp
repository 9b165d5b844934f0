// The status bar: a line for each signal of the phone.
#include "handset/status_bar/StatusBar.h"

#include "handset/common/Output.h"
#include "handset/common/Text.h"
#include "utility/PHONE_AsyncMsgReceiver.h"

#include <type_traits>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using Relay = PHONE_AsyncMsgReceiver;

constexpr int kNameWidth = 28;

QString valueText(bool value)
{
    return value ? u"yes"_s : u"no"_s;
}

QString valueText(const QString& text)
{
    return u'"' + printable(text) + u'"';
}

QString valueText(const PHONE_SERVICE_PROVIDER_DATA_S& provider)
{
    return u"%1 %2"_s.arg(QString::number(provider.flag), valueText(provider.name));
}

template<typename Number>
requires std::is_enum_v<Number> || std::is_integral_v<Number> QString valueText(Number value)
{
    return QString::number(int{value});
}

/// Connects each signal with the name that its line shows.
class Rows
{
public:
    Rows(Relay& relay, Output& output)
        : m_relay(relay)
        , m_output(output)
    {}

    template<typename... Values>
    void operator()(const char* name, void (Relay::*signal)(Values...)) const
    {
        QObject::connect(&m_relay, signal, &m_relay, [name, &output = m_output](Values... values) {
            QString line = QString(QLatin1String(name)).leftJustified(kNameWidth);
            ((line += valueText(values)), ...);
            output.write(line.trimmed() + u'\n');
        });
    }

private:
    Relay& m_relay;
    Output& m_output;
};

} // namespace

void showStatus(Relay& relay, Output& output)
{
    const Rows show(relay, output);
    // In the order in which the relay declares them.
    show("SIM card", &Relay::signalSimCardStatus);
    show("PIN", &Relay::signalPinStatus);
    show("charger", &Relay::signalChargeStatus);
    show("battery", &Relay::signalBatteryStatus);
    show("battery capacity", &Relay::signalBatteryCapacity);
    show("radio mode set", &Relay::signalSetRFModResult);
    show("signal quality", &Relay::signalSignalQuality);
    show("service available", &Relay::signalServiceAvailability);
    show("roaming", &Relay::signalRoamingState);
    show("network", &Relay::signalNetworkStatus);
    show("network id", &Relay::signalRegisted);
    show("service name", &Relay::signalServiceName);
    show("service provider", &Relay::signalSpnNameExtend);
    show("GPRS activated", &Relay::signalGprsActivated);
    show("GPRS attached", &Relay::signalGprsAttached);
    show("GPRS service", &Relay::signalGprsService);
    show("EGPRS service", &Relay::signalEgprsService);
    show("EGPRS transmitting", &Relay::signalEgprsTrans);
    show("GPRS open result", &Relay::signalOpenGprsResult);
    show("GPRS close result", &Relay::signalCloseGprsResult);
    show("battery low", &Relay::signalLowBattery);
    show("operator logo hidden", &Relay::signalOperatorLogo);
    show("data call changed", &Relay::signalCSDCallStatChanged);
    show("call forwarding changed", &Relay::signalCallForwardStatChanged);
    show("line number changed", &Relay::signalLineNumberStatChanged);
    show("voice call changed", &Relay::signalVoiceCallStatChanged);
    show("charging complete", &Relay::signalChargeComleted);
    show("battery low status changed", &Relay::signalLowBatteryStatusChanged);
    show("call barring changed", &Relay::signalCallbarringStatusChanged);
    show("Wi-Fi camp status", &Relay::signalWifiCampStatus);
    show("Wi-Fi signal bar", &Relay::signalWifiSignalBar);
    show("Wi-Fi connecting", &Relay::signalWifiConnectionInProgress);
    show("Wi-Fi profile", &Relay::signalWifiProfileName);
    show("SIM card changed", &Relay::signalSimCardChanged);
    show("home zone", &Relay::signalHomeZoneName);
    show("UMA icon", &Relay::signalDisplayUMAIcon);
}

} // namespace zyn::handset
