// The telephony stacks that a phone may have, and the one that is used.
#include "handset/modem/PhoneStacks.h"

#include "handset/common/Log.h"
#include "handset/modem/ModemManagerModem.h"
#include "handset/modem/OfonoModem.h"
#include "handset/phone_server/ModemPlugin.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

/// The bus itself, which knows who is on it.
const BusAddress kBusItself{u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s};

template<typename Kind>
std::unique_ptr<StackModem> makeOf(Bus& bus, PhoneStatus& status)
{
    return std::make_unique<Kind>(bus, status);
}

constexpr Stack kStacks[] = {
    {"ofono", OfonoModem::kName, OfonoModem::kServiceName, makeOf<OfonoModem>},
    {"modemmanager", ModemManagerModem::kName, ModemManagerModem::kServiceName, makeOf<ModemManagerModem>},
};

} // namespace

std::span<const Stack> stacks()
{
    return kStacks;
}

PhoneStacks::PhoneStacks(std::vector<const Stack*> allowed, PhoneStatus& status)
    : m_status(status)
    , m_allowed(std::move(allowed))
    , m_battery(m_bus, status)
{
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    for (const Stack* stack : m_allowed)
        m_watcher.addWatchedService(QLatin1String(stack->service));
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& service, const QString& before) {
                if (m_modem && m_modem->service() == service && !before.isEmpty())
                    leave();
                if (!m_isThere)
                    look();
            });
    connect(&m_bus, &Bus::connected, this, [this] {
        m_watcher.setConnection(m_bus.connection());
        look();
    });
    connect(&m_bus, &Bus::lost, this, &PhoneStacks::leave);
}

PhoneStacks::~PhoneStacks() = default;

void PhoneStacks::start()
{
    m_bus.start();
    if (!m_isThere)
        log(u"waiting for %1"_s.arg(names()));
}

QString PhoneStacks::obstacle(const Request& request) const
{
    if (m_isThere)
        return m_modem->obstacle(request);
    return (m_bus.isConnected() ? u"%1 does not run"_s : u"there is no system bus, and no %1"_s).arg(names());
}

size_t PhoneStacks::callsAtOnce() const
{
    return m_modem ? m_modem->callsAtOnce() : 1;
}

void PhoneStacks::dial(int id, const Request& request)
{
    if (m_isThere)
        m_modem->dial(id, request);
    else
        Q_EMIT ended(id, CallEnd::Network);
}

bool PhoneStacks::carryOut(int id, CallEvent event)
{
    return m_modem && m_modem->carryOut(id, event);
}

void PhoneStacks::sendTone(int id, QChar key)
{
    if (m_modem)
        m_modem->sendTone(id, key);
}

void PhoneStacks::setRadio(bool isOn)
{
    if (m_isThere)
        m_modem->setRadio(isOn);
    else
        Q_EMIT radioSwitched(false);
}

void PhoneStacks::unlock(const Codes& codes, const Result& then)
{
    if (m_isThere)
        m_modem->unlock(codes, then);
    else
        then(obstacle({}));
}

QJsonObject PhoneStacks::describe() const
{
    if (m_isThere)
        return m_modem->describe();
    return {
        {u"modem"_s, names()}, {u"present"_s, false}, {u"bus"_s, m_bus.isConnected()}, {u"obstacle"_s, obstacle({})}};
}

void PhoneStacks::close()
{
    if (m_modem)
        m_modem->close();
}

/// Asks who is there, and uses the first.
void PhoneStacks::look()
{
    for (const Stack* stack : m_allowed) {
        m_bus.call(kBusItself, u"NameHasOwner"_s, {QLatin1String(stack->service)}, this,
                   [this, stack](const QDBusMessage& reply) {
                       if (!m_isThere && hasSignature(reply, "b") && reply.arguments().constFirst().toBool())
                           use(*stack);
                   });
    }
}

void PhoneStacks::use(const Stack& stack)
{
    log(u"%1 is there, and is used"_s.arg(QLatin1String(stack.name)));
    m_isThere = true;
    if (m_modem && m_modem->service() == QLatin1String(stack.service))
        return m_modem->start();
    if (m_modem)
        m_modem->giveUp();
    m_modem = stack.make(m_bus, m_status);
    connect(m_modem.get(), &Modem::came, this, &Modem::came);
    connect(m_modem.get(), &Modem::identified, this, &Modem::identified);
    connect(m_modem.get(), &Modem::happened, this, &Modem::happened);
    connect(m_modem.get(), &Modem::reached, this, &Modem::reached);
    connect(m_modem.get(), &Modem::ended, this, &Modem::ended);
    connect(m_modem.get(), &Modem::radioSwitched, this, &Modem::radioSwitched);
    connect(m_modem.get(), &Modem::radioChanged, this, &Modem::radioChanged);
    m_modem->start();
}

void PhoneStacks::leave()
{
    if (!std::exchange(m_isThere, false))
        return;
    m_modem->lose();
    log(u"the telephony has gone: waiting for %1"_s.arg(names()));
}

/// Those that may be used, for people.
QString PhoneStacks::names() const
{
    QStringList texts;
    for (const Stack* stack : m_allowed)
        texts += QLatin1String(stack->name);
    return texts.join(u" or "_s);
}

} // namespace zyn::handset

zyn::handset::Modem* zynMakeModem(const char* stack, zyn::handset::PhoneStatus* status)
{
    using namespace zyn::handset;
    std::vector<const Stack*> allowed;
    for (const Stack& known : stacks()) {
        if (qstrcmp(stack, known.option) == 0 || qstrcmp(stack, kAnyStack) == 0)
            allowed.push_back(&known);
    }
    return allowed.empty() ? nullptr : new PhoneStacks(std::move(allowed), *status);
}
