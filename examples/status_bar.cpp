// The status bar: a line that is shown again when the phone announces a change.
//
// On a desk: status_bar &
//            zynphone status service-name "Desk Network"
//            zynphone status snapshot --signal-quality 4 --battery-capacity 80
#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include <utility/PHONE_AsyncMsgReceiver.h>

#include <optional>

#include "Screen.h"

namespace {

/// The phone announces changes but cannot be asked, so at the start nothing is known.
class StatusBar
{
public:
    StatusBar(const PHONE_AsyncMsgReceiver& phone, Screen& screen)
        : m_screen(screen)
    {
        using Phone = PHONE_AsyncMsgReceiver;
        QObject::connect(&phone, &Phone::signalServiceName, &m_redraw, [this](QString name) { set(m_network, name); });
        QObject::connect(&phone, &Phone::signalSignalQuality, &m_redraw, [this](int value) { set(m_signal, value); });
        QObject::connect(&phone, &Phone::signalBatteryCapacity, &m_redraw,
                         [this](int value) { set(m_battery, value); });
        QObject::connect(&m_redraw, &QTimer::timeout, &m_redraw, [this] { show(); });
        m_redraw.setSingleShot(true);
        show();
    }

private:
    /// A message may announce several changes, one signal each; they are shown together.
    template<typename Field, typename Value>
    void set(Field& field, const Value& value)
    {
        field = value;
        m_redraw.start();
    }

    void show()
    {
        const QString network = m_network.isEmpty() ? QStringLiteral("no network") : m_network;
        m_screen.show(QStringLiteral("%1, signal %2, battery %3").arg(network, text(m_signal), text(m_battery)));
    }

    static QString text(const std::optional<int>& value)
    {
        return value ? QString::number(*value) : QStringLiteral("?");
    }

    Screen& m_screen;
    QTimer m_redraw;
    QString m_network;
    std::optional<int> m_signal;
    std::optional<int> m_battery;
};

} // namespace

int main(int argc, char** argv)
{
    Screen screen;
    const QCoreApplication application(argc, argv);
    const StatusBar statusBar(*PHONE_AsyncMsgReceiver::instance(), screen);
    return QCoreApplication::exec();
}
