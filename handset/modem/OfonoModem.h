// Telephony by oFono.
#pragma once

#include "handset/modem/StackModem.h"

#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QVariantMap>

namespace zyn::handset {

/// Has its calls made by ofonod: follows the first modem that it has, powers it, and has its radio on.
class OfonoModem : public StackModem
{
    Q_OBJECT

public:
    /// @{ The service's name on the bus, and for people.
    static constexpr char kServiceName[] = "org.ofono";
    static constexpr char kName[] = "oFono";
    /// @}

    OfonoModem(Bus& bus, PhoneStatus& status);

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
    void noteModemAdded(const QDBusMessage& signal);
    void noteModemRemoved(const QDBusMessage& signal);
    void noteChange(const QDBusMessage& signal);
    void noteCallAdded(const QDBusMessage& signal);
    void noteCallChange(const QDBusMessage& signal);
    void noteCallReason(const QDBusMessage& signal);
    void noteCallRemoved(const QDBusMessage& signal);

private:
    BusAddress at(const QString& interface) const;
    BusAddress callAt(const QString& path) const;

    void take(const QString& path, const QVariantMap& properties);
    void leave();
    void noteModem(const QString& property, const QVariant& value);
    void noteInterfaces(const QStringList& interfaces);
    void askForProperties(const QString& interface, const std::function<void()>& then = {});
    void readProperties(const QString& interface, const std::function<void()>& then, int tries);
    void note(const QString& interface, const QString& property, const QVariant& value);
    void askForCalls();
    void addCall(const QString& path, const QVariantMap& properties);
    void switchOn();
    void noteCallState(const QString& path, const QString& state);
    /// How often a call is still placed again that is refused.
    struct DialTries
    {
        int whileNotReady;
        int whileBusy;
    };
    void askForCall(int id, const Request& request, DialTries tries);
    void noteDialed(int id, const QString& path);

    QString m_modem; ///< the path of the modem that is followed; empty without one
    QStringList m_interfaces;
    QMap<QString, QVariantMap> m_known; ///< by interface: what depends on several properties is found again
    QSet<int> m_asked;                  ///< the calls that oFono was asked to place, and has yet to reply to
    bool m_isRadioWanted = true;
    QTimer m_retry; ///< runs while the modem could not be switched on
};

} // namespace zyn::handset
