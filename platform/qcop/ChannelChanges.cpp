// Tells senders when the listeners of a channel may have changed.
#include "platform/qcop/ChannelChanges_p.h"

#include "platform/posix/Directory_p.h"

#include <QtCore/QRandomGenerator>

#include <utility>

namespace zyn {
namespace {

/// The link in a root that leads nowhere: its target is the number's name.
constexpr char kLink[] = ".zyn-changes";
/// The prefix of the target that a listener sets if it cannot make a number.
constexpr char kNoNumber[] = "none-";
/// How often a listener tries to count: others may name another number at the same time.
constexpr int kReadAttempts = 4;
/// For how long senders assume that nothing has changed apart from what is counted.
constexpr std::chrono::milliseconds kTrustTime{50};

QByteArray anyName()
{
    return kNoNumber + QByteArray::number(QRandomGenerator::system()->generate64(), 16);
}

} // namespace

std::optional<posix::SharedCounter> ChannelChanges::announce(int root)
{
    std::optional<posix::SharedCounter> made; // until it is attached to by its name
    for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
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
    // A listener that starts now may keep a number that senders cannot find; they then look for listeners each time.
    if (!number.isShared() && posix::linkTarget(root, kLink) == number.name())
        posix::removeEntry(root, kLink);
}

void ChannelChanges::update(int root)
{
    // Taken first, so that the next update sees changes that happen during this one.
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
    // A process that sends once does not need the number.
    if (m_name != name || m_moment == 1)
        m_number = m_moment > 0 ? posix::SharedCounter::attach(name, posix::Access::Read) : std::nullopt;
    m_name = name;
    const uint32_t value = m_number ? m_number->value() : 0;
    return std::exchange(m_value, value) != value || !isTrusted;
}

} // namespace zyn
