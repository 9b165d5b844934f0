// How senders learn that there are other listeners.
#include "platform/qcop/ChannelChanges_p.h"

#include "platform/posix/Directory_p.h"

#include <QtCore/QRandomGenerator>

#include <utility>

namespace zyn {
namespace {

/// The link in a root that leads nowhere: its target is the number's name.
constexpr char kLink[] = ".zyn-changes";
/// Begins what stands there after a listener that can make no number.
constexpr char kNoNumber[] = "none-";
/// How often a listener tries to count: others may come to name another number meanwhile.
constexpr int kAttempts = 4;
/// For how long senders believe that nothing has changed that nobody counts.
constexpr std::chrono::milliseconds kTrustTime{50};

QByteArray anyName()
{
    return kNoNumber + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
}

} // namespace

std::optional<posix::SharedCounter> ChannelChanges::announce(int root)
{
    std::optional<posix::SharedCounter> made; // until it is attached to by its name
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        auto number = posix::SharedCounter::attach(posix::linkTarget(root, kLink), posix::Access::Change);
        if (number) {
            number->increase();
            if (!number->isMarked())
                posix::waitForTick();
            number->mark();
            return number;
        }
        made = posix::SharedCounter::make();
        posix::replaceLink(root, kLink, made ? made->name() : anyName());
        if (!made)
            break;
    }
    posix::waitForTick();
    return std::nullopt;
}

void ChannelChanges::withdraw(int root, const posix::SharedCounter& number)
{
    // Who comes at the same moment may keep a number that nobody finds: senders look for listeners each time then.
    if (!number.isShared() && posix::linkTarget(root, kLink) == number.name())
        posix::removeEntry(root, kLink);
}

void ChannelChanges::update(int root)
{
    // Before anything is looked at, so that the next update sees what comes meanwhile.
    m_updateTime = posix::tickTime();
    if (!hasChanged(posix::linkTarget(root, kLink)) && m_updateTime - m_changeTime < kTrustTime)
        return;
    m_changeTime = m_updateTime;
    ++m_moment;
}

void ChannelChanges::forget()
{
    m_number.reset();
    m_name.clear();
}

bool ChannelChanges::hasChanged(const QByteArray& name)
{
    const bool isTrusted = m_number && m_name == name;
    // Who sends once needs none.
    if (m_name != name || m_moment == 1)
        m_number = m_moment > 0 ? posix::SharedCounter::attach(name, posix::Access::Read) : std::nullopt;
    m_name = name;
    const uint32_t value = m_number ? m_number->value() : 0;
    return std::exchange(m_value, value) != value || !isTrusted;
}

} // namespace zyn
