// Sources of the phone's state: status messages, the call log, the favourites.
#include "tools/top/StateSources.h"

#include "handset/common/Text.h"
#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/store/StoredCalls.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/RecordText.h"
#include "tools/zynphone/Text.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QString>
#include <QtCore/QTime>

#include <algorithm>
#include <array>
#include <functional>
#include <type_traits>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

QString timeOfDay()
{
    return QTime::currentTime().toString(u"HH:mm:ss"_s);
}

QString yesNo(bool is)
{
    return is ? u"yes"_s : u"no"_s;
}

constexpr int kNetworkRegistered = 5; // of TAPI_NETWORK_STATUS_E

template<typename Argument>
QString argumentText(const Argument& argument)
{
    if constexpr (std::is_same_v<Argument, QString>)
        return argument;
    else if constexpr (std::is_same_v<Argument, bool>)
        return yesNo(argument);
    else
        return QString::number(argument);
}

QString talkText(UINT32 seconds)
{
    return handset::durationText(static_cast<int>(seconds));
}

QString bytesText(bool connected, UINT32 total, UINT32 sent, UINT32 received)
{
    return u"%1, %2 sent, %3 received%4"_s.arg(total).arg(sent).arg(received).arg(connected ? ", connected"_L1 : ""_L1);
}

QString messageName(const QCString& message)
{
    const PhoneMessage* const known = phoneMessage(message);
    return known && known->enumerator ? QString::fromLatin1(known->enumerator) : QString::fromUtf8(message);
}

using Call = PHONE_ENG_RecentCall;

QString partyText(const QString& number, const QString& name)
{
    return name.isEmpty() ? number : number + u' ' + name;
}

QString partyText(const Call& call)
{
    return partyText(call.getPhoneNumber(), call.getDisplayName());
}

/// The greatest uid is the newest.
const Call& newestOf(const std::vector<Call>& calls)
{
    return *std::ranges::max_element(calls, {}, &Call::uid);
}

using Store = ActivityLog_ENG_RecordStore;
using Numbers = std::array<QString, Store::kFavourites>;

static_assert(int{static_cast<uint8_t>(Item::Favourite4)} - int{static_cast<uint8_t>(Item::Favourite0)} + 1
              == Store::kFavourites);

void showItem(PhoneState& state, Item item, const QString& number)
{
    TopPals_Missed_Details unread;
    unread.number = number;
    if (number.isEmpty())
        return state.remove(item);
    if (RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        return state.set(item, number + u", no file"_s);
    const bool isRead = unread.missedCallCount == 0 && unread.unreadMsgCount == 0;
    state.set(item,
              u"%1, %2 missed, %3"_s.arg(number, QString::number(unread.missedCallCount),
                                         counted(unread.unreadMsgCount, "message")),
              !isRead);
}

} // namespace

StatusSource::StatusSource(PhoneState& state)
    : m_state(state)
{
    follow(&PHONE_MsgClient::signalBatteryCapacity, Item::Battery);
    follow(&PHONE_MsgClient::signalBatteryStatus, Item::BatteryStatus);
    follow(&PHONE_MsgClient::signalChargeStatus, Item::Charger);
    follow(&PHONE_MsgClient::signalSimCardStatus, Item::SimCard);
    follow(&PHONE_MsgClient::signalPinStatus, Item::Pin);
    follow(&PHONE_MsgClient::signalSubsidyStatus, Item::SubsidyLock);
    follow(&PHONE_MsgClient::signalRegisted, Item::NetworkId);
    follow(&PHONE_MsgClient::signalServiceName, Item::ServiceName);
    follow(&PHONE_MsgClient::signalHomeZoneName, Item::HomeZone);
    follow(&PHONE_MsgClient::signalSignalQuality, Item::Signal);
    follow(&PHONE_MsgClient::signalServiceAvailability, Item::Service);
    follow(&PHONE_MsgClient::signalRoamingState, Item::Roaming);
    follow(&PHONE_MsgClient::signalGprsAttached, Item::GprsAttached);
    follow(&PHONE_MsgClient::signalGprsService, Item::GprsService);
    follow(&PHONE_MsgClient::signalGprsActivated, Item::GprsActivated);
    follow(&PHONE_MsgClient::signalEgprsService, Item::EgprsService);
    follow(&PHONE_MsgClient::signalEgprsTrans, Item::EgprsTransmission);
    follow(&PHONE_MsgClient::signalWifiProfileName, Item::WifiProfile);
    follow(&PHONE_MsgClient::signalDisplayUMAIcon, Item::Uma);
    followEvent(&PHONE_MsgClient::signalLowBattery, Item::PowerEvent, "low battery", true);
    followEvent(&PHONE_MsgClient::signalLowBatteryStatusChanged, Item::PowerEvent, "low battery changed");
    followEvent(&PHONE_MsgClient::signalChargeComleted, Item::PowerEvent, "charge completed");
    followEvent(&PHONE_MsgClient::signalPowerDown, Item::PowerEvent, "power key");
    followEvent(&PHONE_MsgClient::signalWifiCampStatus, Item::WifiEvent, "camp status");
    followEvent(&PHONE_MsgClient::signalWifiSignalBar, Item::WifiEvent, "signal bar");
    followEvent(&PHONE_MsgClient::signalWifiConnectionInProgress, Item::WifiEvent, "connecting");
    followNames();
    followCounters();
}

void StatusSource::receive(const QCString& message, const QByteArray& data)
{
    m_state.set(Item::LastMessage, timeOfDay() + u' ' + messageName(message));
    PHONE_MsgClient::receive(message, data);
}

template<typename Argument>
void StatusSource::follow(void (PHONE_MsgClient::*signal)(Argument), Item item)
{
    connect(this, signal, this, [this, item](Argument argument) { m_state.set(item, argumentText(argument)); });
}

void StatusSource::followEvent(void (PHONE_MsgClient::*signal)(), Item item, const char* event, bool isAlert)
{
    connect(this, signal, this,
            [this, item, event, isAlert] { m_state.set(item, QLatin1String(event) + u' ' + timeOfDay(), isAlert); });
}

void StatusSource::followNames()
{
    connect(this, &PHONE_MsgClient::signalNetworkStatus, this, [this](TAPI_NETWORK_STATUS_E status) {
        const bool isRegistered = status == kNetworkRegistered;
        m_state.set(Item::Network, QString::number(status) + (isRegistered ? ", registered"_L1 : ", not registered"_L1),
                    !isRegistered);
    });
    connect(this, &PHONE_MsgClient::signalSpnNameExtend, this, [this](const SERVICE_PROVIDER_DATA_S& provider) {
        m_state.set(Item::Provider, provider.name.isEmpty()
                                        ? QString()
                                        : u"%1 (%2)"_s.arg(provider.name, QString::number(provider.flag)));
    });
    connect(this, &PHONE_MsgClient::signalImsiId, this, [this](const UINT8* imsi) {
        m_state.set(Item::Imsi, blockText(QByteArray(reinterpret_cast<const char*>(imsi), TAPI_IMSI_LENGTH + 1)));
    });
}

void StatusSource::followCounters()
{
    connect(this, &PHONE_MsgClient::signalTotalDataBytes, this,
            [this](bool connected, UINT32 total, UINT32 sent, UINT32 received) {
                m_state.set(Item::TotalBytes, bytesText(connected, total, sent, received));
            });
    connect(this, &PHONE_MsgClient::signalSessionDataBytes, this,
            [this](UINT8 session, bool connected, UINT32 total, UINT32 sent, UINT32 received) {
                m_state.set(Item::SessionBytes, u"%1: "_s.arg(session) + bytesText(connected, total, sent, received));
            });
    connect(this, &PHONE_MsgClient::signalCurrentConnectedDuration, this, [this](bool connected, UINT32 seconds) {
        m_state.set(Item::Connection, connected ? u"yes, for %1"_s.arg(talkText(seconds))
                                                : u"no, the last for %1"_s.arg(talkText(seconds)));
    });
    connect(this, &PHONE_MsgClient::signalTotalConnectedDuration, this,
            [this](bool, UINT32 seconds) { m_state.set(Item::ConnectionTotal, talkText(seconds)); });
}

CallSource::CallSource(PhoneState& state, const PHONE_MsgClient& client)
    : m_state(state)
{
    connect(&m_requests, &PHONE_VoiceCallReceiver::signalMakeCall, this,
            [this](const QString& number, const QString& name) {
                m_number = number;
                begin(u"asked for "_s + partyText(number, name));
            });
    connect(&m_requests, &PHONE_VoiceCallReceiver::sigDropCall, this, [this] { begin(u"asked to hang up"_s); });
    connect(&m_missed, &RC_MissedCallInterface::dataUpdate, this, &CallSource::refresh);
    connect(&client, &PHONE_MsgClient::signalVoiceCallStatChanged, this, [this] {
        const auto known = m_newest;
        refresh();
        if (m_newest != known)
            return; // the end of the call, or another call that was missed
        ++m_changes;
        showCall();
    });
}

/// Otherwise the process-wide client of m_missed would leave its socket behind.
CallSource::~CallSource()
{
    RecentCall_MsgClient::destruction();
}

void CallSource::begin(const QString& call)
{
    m_call = call;
    m_changes = 0;
    showCall();
}

void CallSource::showCall()
{
    QStringList parts;
    if (!m_call.isEmpty())
        parts += m_call;
    if (m_changes > 0)
        parts += counted(m_changes, "change");
    m_state.set(Item::Call, parts.join(u", "_s), !parts.isEmpty());
}

void CallSource::refresh()
{
    std::vector<Call> all;
    bool isWhole = true;
    for (const RC_CALL_CATEGORY_T list :
         {RC_CALL_CATEGORY_MISSED, RC_CALL_CATEGORY_ANSWERED, RC_CALL_CATEGORY_DIALED}) {
        std::optional<std::vector<Call>> calls = storedCalls(list);
        if (list == RC_CALL_CATEGORY_MISSED)
            showMissed(calls);
        isWhole = isWhole && calls;
        std::ranges::move(std::move(calls).value_or(std::vector<Call>()), std::back_inserter(all));
    }
    if (isWhole)
        showNewest(all);
    else
        m_state.remove(Item::LastLogged);
}

void CallSource::showMissed(const std::optional<std::vector<Call>>& calls)
{
    if (!calls)
        return m_state.remove(Item::Missed);
    std::vector<Call> unread = *calls;
    std::erase_if(unread, std::not_fn(handset::isUnread));
    const QString count = u"%1 unread"_s.arg(unread.size());
    const bool isRead = unread.empty();
    m_state.set(Item::Missed, isRead ? count : count + u", last "_s + partyText(newestOf(unread)), !isRead);
}

void CallSource::showNewest(const std::vector<Call>& calls)
{
    // What is in the log at first tells nothing of the call in progress.
    const bool isFirst = !std::exchange(m_hasLooked, true);
    if (calls.empty()) {
        m_newest.reset();
        return m_state.set(Item::LastLogged, {});
    }
    const Call& newest = newestOf(calls);
    m_state.set(Item::LastLogged, u"%1 %2, %3"_s.arg(categoryWord(newest.category), partyText(newest),
                                                     newest.getStartDateTime().toString(u"HH:mm:ss")));
    const bool isNew = std::exchange(m_newest, newest.uid) != newest.uid;
    if (isNew && !isFirst && (m_number.isEmpty() || m_number == newest.getPhoneNumber())) {
        m_number.clear();
        begin({});
    }
}

void readFavourites(PhoneState& state)
{
    Numbers numbers;
    // The store would create the file of favourites.
    if (DetailsFile::isAt(storeDirectoryPath() + '/' + kTopPalsDetailsName)) {
        // A store caches the favourites when it is constructed.
        Store::destroy();
        Store::instance()->getCurrentTopPalsFileNames(numbers.data());
    }
    for (size_t place = 0; place < numbers.size(); ++place)
        showItem(state, static_cast<Item>(static_cast<size_t>(Item::Favourite0) + place), numbers.at(place));
}

} // namespace zyn::tool
