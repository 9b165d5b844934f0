// The telephony stacks that a phone may have, and the one that is used.
#pragma once

#include "handset/modem/Battery.h"
#include "handset/modem/Bus.h"
#include "handset/modem/StackModem.h"

#include <QtDBus/QDBusServiceWatcher>

#include <memory>
#include <span>
#include <vector>

namespace zyn::handset {

/// A stack: its name in options and for people, the name of its service, and what has calls made by it.
struct Stack
{
    const char* option;
    const char* name;
    const char* service;
    std::unique_ptr<StackModem> (*make)(Bus& bus, PhoneStatus& status);
};

/// The stacks that are known, the one that is preferred first.
std::span<const Stack> stacks();

/**
 * The modem of the stack that is on the bus: the first one that is there, until it goes.
 *
 * It also tells the states of the battery, which no stack has.
 */
class PhoneStacks : public Modem
{
    Q_OBJECT

public:
    /// @param allowed  the stacks that may be used
    /// @param status   tells the states of the phone, and lives longer
    PhoneStacks(std::vector<const Stack*> allowed, PhoneStatus& status);
    ~PhoneStacks() override;

    void start() override;
    QString obstacle(const Request& request) const override;
    size_t callsAtOnce() const override;
    void dial(int id, const Request& request) override;
    bool carryOut(int id, CallEvent event) override;
    void sendTone(int id, QChar key) override;
    void setRadio(bool isOn) override;
    bool hasRadio() const override { return m_modem && m_modem->hasRadio(); }
    void unlock(const Codes& codes, const Result& then) override;
    QJsonObject describe() const override;
    void close() override;

private:
    void look();
    void use(const Stack& stack);
    void leave();
    QString names() const;

    PhoneStatus& m_status;
    const std::vector<const Stack*> m_allowed;
    Bus m_bus;
    Battery m_battery;
    QDBusServiceWatcher m_watcher;
    std::unique_ptr<StackModem> m_modem; ///< of the stack that is used, or was used last; null before the first one
    bool m_isThere = false;              ///< that stack is on the bus
};

} // namespace zyn::handset
