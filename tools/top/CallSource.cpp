// What is known of the calls: requests, changes and the files of the log.
#include "tools/top/CallSource.h"

#include "handset/recent_calls/RecentCalls.h"
#include "platform/posix/File_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/zynphone/CallText.h"
#include "tools/zynphone/Counted.h"
#include "utility/PHONE_MsgClient.h"

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

/// The calls in the file of @p list; none when there is no sound one.
std::vector<Call> callsIn(RC_CALL_CATEGORY_T list)
{
    const QByteArray path = zyn::storeDirectoryPath() + zyn::recordFileName(list);
    const auto image = zyn::posix::readWhole(path, zyn::RecordFile::size());
    std::vector<Call> calls;
    if (!image || !zyn::RecordFile::isValid(*image))
        return calls;
    for (const int slot : zyn::RecordFile::usedSlots(*image))
        calls.push_back(zyn::RecordFile::at(*image, slot));
    return calls;
}

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

} // namespace

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
            return; // the end of the call, or one that was missed meanwhile
        ++m_changes;
        showCall();
    });
}

/// The client that m_missed has made for the process would leave its socket behind.
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
    std::vector<Call> missed = callsIn(RC_CALL_CATEGORY_MISSED);
    std::vector<Call> all = missed;
    for (const RC_CALL_CATEGORY_T list : {RC_CALL_CATEGORY_ANSWERED, RC_CALL_CATEGORY_DIALED})
        std::ranges::move(callsIn(list), std::back_inserter(all));
    std::erase_if(missed, std::not_fn(zyn::handset::isUnread));
    showMissed(missed);
    showNewest(all);
}

void CallSource::showMissed(const std::vector<Call>& unread)
{
    const QString count = u"%1 unread"_s.arg(unread.size());
    const bool isRead = unread.empty();
    m_state.set(Item::Missed, isRead ? count : count + u", last "_s + partyText(newestOf(unread)), !isRead);
}

void CallSource::showNewest(const std::vector<Call>& calls)
{
    if (calls.empty()) {
        m_newest.reset();
        return m_state.set(Item::LastLogged, {});
    }
    const Call& newest = newestOf(calls);
    m_state.set(Item::LastLogged, u"%1 %2, %3"_s.arg(categoryWord(newest.category), partyText(newest),
                                                     newest.getStartDateTime().toString(u"HH:mm:ss")));
    const bool isNew = std::exchange(m_newest, newest.uid) != newest.uid;
    if (isNew && (m_number.isEmpty() || m_number == newest.getPhoneNumber())) {
        m_number.clear();
        begin({});
    }
}

} // namespace zyn::tool
