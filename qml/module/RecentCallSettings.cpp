// The settings of recent calls, and of placing calls.
#include "qml/module/RecentCallSettings.h"

#include "qml/module/HandsetFiles.h"
#include "qml/module/Lanes.h"
#include "recentcall/utility/RecentCall_Setup.h"
#include "utility/PHONE_Setup.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace zyn::qml {
namespace {

/// As a number that QML has: a setting may be greater.
int heldToInt(unsigned int value)
{
    constexpr unsigned int kGreatest = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(value, kGreatest));
}

} // namespace

RecentCallSettings::RecentCallSettings(QObject* parent)
    : QObject(parent)
{
    connect(&m_watch, &FileWatch::changed, this, &RecentCallSettings::reload);
    m_watch.setFiles({phoneSettingsFile(), fixedDialSwitchFile(), favouritesSwitchFile(), deskStateFile()});
    reload();
}

/// Reads everything anew, on the lane of the files: the process's settings keep some of it.
RecentCallSettings::Values RecentCallSettings::read()
{
    RecentCall_Setup::destroy();
    RecentCall_Setup* const setup = RecentCall_Setup::instance();
    return {.maxAnswered = setup->getMaxRecordSize(RC_CALL_CATEGORY_ANSWERED),
            .maxMissed = setup->getMaxRecordSize(RC_CALL_CATEGORY_MISSED),
            .maxDialed = setup->getMaxRecordSize(RC_CALL_CATEGORY_DIALED),
            .maxTotal = setup->getMaxRecordSize(RC_CALL_CATEGORY_ALL),
            .maxFrequent = setup->getMaxFrequent(),
            .idleSendView = setup->getIdleSendView(),
            .maxActivities = heldToInt(setup->getMaxTopPalsAvlItems()),
            .fixedDialing = int{setup->isFixedDialingAvailable()},
            .twoLineView = setup->getTwoLineView(),
            .prepend = PHONE_Setup().isPrepend()};
}

void RecentCallSettings::reload()
{
    const auto readUnlessUnreadable = [] {
        QString problem = phoneSettingsProblem();
        std::optional<Values> values;
        if (problem.isEmpty())
            values = read();
        return std::pair(std::move(problem), values);
    };
    runBeside(Lane::Files, this, readUnlessUnreadable, [this](const std::pair<QString, std::optional<Values>>& result) {
        if (result.second)
            show(*result.second);
        finish(result.first);
    });
}

void RecentCallSettings::setTwoLineView(bool on)
{
    store([on] { return RecentCall_Setup::instance()->setTwoLineView(on); }, &Values::twoLineView, on,
          &RecentCallSettings::twoLineViewChanged);
}

void RecentCallSettings::setPrepend(bool on)
{
    store([on] { return PHONE_Setup().setPrepend(on); }, &Values::prepend, on, &RecentCallSettings::prependChanged);
}

void RecentCallSettings::store(const std::function<bool()>& write, bool Values::*value, bool on,
                               void (RecentCallSettings::*valueChanged)())
{
    runBeside(Lane::Files, this, write, [=, this](bool isStored) {
        if (isStored)
            m_values.*value = on;
        Q_EMIT(this->*valueChanged)();
        finish(isStored ? QString() : tr("The settings cannot be stored: %1").arg(phoneSettingsFile()));
    });
}

void RecentCallSettings::show(const Values& values)
{
    const Values before = std::exchange(m_values, values);
    if (before != values)
        Q_EMIT changed();
    if (before.twoLineView != values.twoLineView)
        Q_EMIT twoLineViewChanged();
    if (before.prepend != values.prepend)
        Q_EMIT prependChanged();
    if (!std::exchange(m_isLoaded, true))
        Q_EMIT loadedChanged();
}

void RecentCallSettings::finish(const QString& error)
{
    if (std::exchange(m_error, error) != error)
        Q_EMIT errorChanged();
    if (!error.isEmpty())
        Q_EMIT failed(error);
}

} // namespace zyn::qml
