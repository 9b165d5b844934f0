// Reads the log of recent calls beside the thread of the user interface, and again when it has changed.
#include "qml/module/CallLogReader.h"

#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"

#include <algorithm>
#include <iterator>
#include <utility>

using namespace std::chrono_literals;

namespace zyn::qml {
namespace {

constexpr RC_CALL_TYPE_T kNamedTypes[] = {RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};

/// What RC_Interface returns when the service has done what it was asked for, and when it has no such record.
constexpr int kDone = 0;
constexpr int kNoSuchRecord = 1;

/// Between attempts while the service does not answer; the pauses grow, as each attempt may wait for it.
constexpr auto kFirstPause = 1s;
constexpr auto kLongestPause = 15s;

CallLogReader::Calls fetchCalls(const CallSelection& selection)
{
    std::vector<CallRecord> calls;
    for (const RC_CALL_TYPE_T type : selection.types()) {
        QPtrList<RC_RecordInterface> records;
        if (RC_Interface().getRecordList(records, selection.list(), type) != kDone)
            return std::nullopt;
        for (const RC_RecordInterface* record : records)
            calls.push_back(*static_cast<const RC_RecordInterfaceImpl*>(record)->getData());
    }
    // The order of the screens, by which a call's details are asked for.
    std::ranges::stable_sort(calls, [](const CallRecord& left, const CallRecord& right) { return left < right; });
    return calls;
}

} // namespace

std::vector<RC_CALL_TYPE_T> CallSelection::types() const
{
    if (callType != 0)
        return {static_cast<RC_CALL_TYPE_T>(callType)};
    return {std::begin(kNamedTypes), std::end(kNamedTypes)};
}

bool isAnswered(int result)
{
    return result == kDone || result == kNoSuchRecord;
}

CallLogReader::CallLogReader(std::function<void()> begins, Taker ends)
    : m_begins(std::move(begins))
    , m_ends(std::move(ends))
    , m_pause(kFirstPause)
{
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &CallLogReader::outdated);
    connect(m_changes.get(), &CallLogChanges::changed, this, &CallLogReader::outdated);
}

void CallLogReader::read(const CallSelection& selection)
{
    if (m_isReading)
        m_next = selection;
    else
        send(selection);
}

QString CallLogReader::noAnswerText()
{
    return tr("The recent-call service does not answer. Start zyn-recentcalld, or look at what it has logged.");
}

void CallLogReader::send(const CallSelection& selection)
{
    m_isReading = true;
    m_begins();
    const auto fetch = [selection] {
        Calls calls = fetchCalls(selection);
        const bool isServed = calls || posix::isServed(recentcall::kSocketPath);
        return std::pair(std::move(calls), isServed);
    };
    runBeside(Lane::CallLog, this, fetch,
              [this, selection](const std::pair<Calls, bool>& result) { end(selection, result.first, result.second); });
}

void CallLogReader::end(const CallSelection& selection, const Calls& calls, bool isServed)
{
    m_isReading = false;
    noteAnswer(calls.has_value(), isServed);
    m_ends(selection, calls);
    if (const auto next = std::exchange(m_next, std::nullopt))
        read(*next);
}

void CallLogReader::noteAnswer(bool isThere, bool isServed)
{
    const bool wasThere = m_pause == kFirstPause;
    if (!isThere) {
        // A service that starts announces itself.
        if (isServed || m_pause < kLongestPause)
            m_retry.start(m_pause);
        m_pause = std::min<std::chrono::milliseconds>(2 * m_pause, kLongestPause);
    } else if (!wasThere) {
        m_retry.stop();
        m_pause = kFirstPause;
        m_changes->noteReturn();
    }
}

} // namespace zyn::qml
