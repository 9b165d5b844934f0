// Telephony by ModemManager.
#pragma once

#include "handset/modem/StackModem.h"

#include <QtCore/QMap>
#include <QtCore/QVariantMap>

namespace zyn::handset {

/// Has its calls made by ModemManager: follows the first modem that it has, and enables it.
class ModemManagerModem : public StackModem
{
    Q_OBJECT

public:
    /// @{ The service's name on the bus, and for people.
    static constexpr char kServiceName[] = "org.freedesktop.ModemManager1";
    static constexpr char kName[] = "ModemManager";
    /// @}

    ModemManagerModem(Bus& bus, PhoneStatus& status);

    void setRadio(bool isOn) override;

protected:
    void subscribe() override;
    void askForModems() override;
    void forget() override;
    void askForCall(int id, const Request& request) override;
    void askToAnswer(const Line& call, const Bus::Reply& then) override;
    void askToHangUp(const Line& call, const Bus::Reply& then) override;
    void askForTone(const Line& call, QChar key) override;
    void askToUnlock(const Codes& codes, const Bus::Reply& then) override;
    void askForTries(const std::function<void()>& then) override;

private Q_SLOTS:
    void noteAdded(const QDBusMessage& signal);
    void noteRemoved(const QDBusMessage& signal);
    void noteChange(const QDBusMessage& signal);
    void noteCallAdded(const QDBusMessage& signal);
    void noteCallState(const QDBusMessage& signal);

private:
    using Interfaces = QMap<QString, QVariantMap>;

    BusAddress at(const QString& interface) const;
    BusAddress callAt(const QString& path) const;

    void take(const QString& path, const Interfaces& interfaces);
    void leave();
    void note(const QString& interface, const QVariantMap& properties);
    void dropInterface(const QString& interface);
    void noteModem();
    void readSim(const QString& path);
    void enable();
    void askForCalls();
    /// Whether a call has just come, or was there when the service was first asked.
    enum class Found : uint8_t { New, Before };
    void askForCallProperties(const QString& path, Found found);
    void addCall(const QString& path, const QVariantMap& properties, Found found);
    void noteState(const QString& path, qint64 state, qint64 reason);
    void startCall(int id, const QString& path);
    void deleteCall(const QString& path);
    void probe();
    Bus::Reply failsWith(const QString& what);

    QString m_modem; ///< the path of the modem that is followed; empty without one
    QString m_sim;   ///< the path of its SIM card; empty without one
    Interfaces m_known;
    bool m_isRadioWanted = true;
    QTimer m_retry; ///< runs while the modem could not be enabled
    QTimer m_probe; ///< runs while there are calls, or the modem is mute
    bool m_isMute = false;
};

} // namespace zyn::handset
