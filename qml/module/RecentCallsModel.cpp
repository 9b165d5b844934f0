// The log of recent calls as a list.
#include "qml/module/RecentCallsModel.h"

#include "recentcall/utility/RC_Interface.h"
#include "recentcall/utility/RecentCall_Client_p.h"

#include <QtQml/qqmlinfo.h>

#include <algorithm>
#include <cstring>

namespace zyn::qml {
namespace {

/// @{ What the library gives for calls that are no push-to-talk calls.
constexpr int kNoPartyType = -1;
constexpr int kNoIdType = 0;
/// @}

/// The session as it was stored, in UTF-8.
QString sessionOf(const CallRecord& call)
{
    const auto length = static_cast<qsizetype>(qstrnlen(call.pttSessionId, sizeof call.pttSessionId));
    return call.isPtt() ? QString::fromUtf8(call.pttSessionId, length) : QString();
}

using Row = CallRow;

constexpr ListRole<Row> kRoles[] = {
    {"callId", [](const Row& row) { return QVariant(row.call.uid); }},
    {"number", [](const Row& row) { return QVariant(row.call.getPhoneNumber()); }},
    {"name", [](const Row& row) { return QVariant(row.call.getDisplayName()); }},
    {"start", [](const Row& row) { return QVariant(row.call.getStartDateTime()); }},
    {"duration", [](const Row& row) { return QVariant(row.call.duration); }},
    {"category", [](const Row& row) { return QVariant(int{row.call.category}); }},
    {"callType", [](const Row& row) { return QVariant(int{row.call.callType}); }},
    {"completed", [](const Row& row) { return QVariant(row.call.completed != 0); }},
    {"isRead", [](const Row& row) { return QVariant((row.call.readFlags & CallRecord::kRead) != 0); }},
    {"strictRead", [](const Row& row) { return QVariant((row.call.readFlags & CallRecord::kStrictRead) != 0); }},
    {"pttPartyType",
     [](const Row& row) { return QVariant(row.call.isPtt() ? int{row.call.pttPartyType} : kNoPartyType); }},
    {"pttIdType", [](const Row& row) { return QVariant(row.call.isPtt() ? int{row.call.pttIdType} : kNoIdType); }},
    {"pttSession", [](const Row& row) { return QVariant(sessionOf(row.call)); }},
};

/// Sends @p request for each of @p items. Ends with the first one that is not answered, as every further one would wait
/// for the service as well; its result, or that of the last one.
template<typename Items, typename Request>
int requestEach(const Items& items, const Request& request)
{
    int result = recentcall::Success;
    for (const auto& item : items) {
        result = request(item);
        if (!isAnswered(result))
            break;
    }
    return result;
}

QString readLastDialed()
{
    QString number;
    RC_Interface().getLastDialedNumber(number);
    return number;
}

} // namespace

bool CallRow::operator==(const CallRow& other) const
{
    return std::memcmp(&call, &other.call, sizeof call) == 0;
}

RecentCallsModel::RecentCallsModel(QObject* parent)
    : FetchedRows(kRoles, parent)
    , m_reader([this] { begin(); },
               [this](const CallSelection& selection, const CallLogReader::Calls& calls) { take(selection, calls); })
{
    connect(&m_reader, &CallLogReader::outdated, this, &RecentCallsModel::reload);
    connect(&m_reader, &CallLogReader::outdated, this, &RecentCallsModel::refreshLastDialed);
    reload();
    refreshLastDialed();
}

void RecentCallsModel::setCategory(Category category)
{
    if (category < Answered || category > All) {
        qmlWarning(this) << "there is no category " << int{category};
        return;
    }
    if (category == this->category())
        return;
    select({category, m_selection.callType});
    Q_EMIT categoryChanged();
}

void RecentCallsModel::setCallType(CallType callType)
{
    if (callType == this->callType())
        return;
    select({m_selection.category, callType});
    Q_EMIT callTypeChanged();
}

void RecentCallsModel::remove(int row)
{
    if (const CallRow* const found = find(row)) {
        change(
            [call = found->call] { return RC_Interface().deleteRecord(RC_RecordInterfaceImpl(new CallRecord(call))); });
    }
}

void RecentCallsModel::clear()
{
    change([selection = m_selection] {
        return requestEach(selection.types(), [&selection](RC_CALL_TYPE_T type) {
            return RC_Interface().deleteRecordAll(selection.list(), type);
        });
    });
}

void RecentCallsModel::markRead(int row)
{
    if (const CallRow* const found = find(row))
        change([call = found->call] { return int{recentcall::markRead(call)}; });
}

void RecentCallsModel::markAllRead()
{
    std::vector<CallRecord> unread;
    for (const CallRow& row : rows()) {
        if ((row.call.readFlags & CallRecord::kRead) == 0)
            unread.push_back(row.call);
    }
    change([unread = std::move(unread)] {
        return requestEach(unread, [](const CallRecord& call) { return int{recentcall::markRead(call)}; });
    });
}

void RecentCallsModel::refreshLastDialed()
{
    runBeside(Lane::Files, this, readLastDialed, [this](const QString& number) {
        if (std::exchange(m_lastDialed, number) != number)
            Q_EMIT lastDialedChanged();
    });
}

void RecentCallsModel::select(const CallSelection& selection)
{
    m_selection = selection;
    forgetRows();
    reload();
}

void RecentCallsModel::take(const CallSelection& selection, const CallLogReader::Calls& calls)
{
    // What was asked for may be shown no more; the calls that are to be shown follow.
    if (calls && selection == m_selection) {
        std::vector<CallRow> rows;
        rows.reserve(calls->size());
        for (const CallRecord& call : *calls)
            rows.push_back({call});
        setRows(std::move(rows));
    }
    // While the service does not answer, the list is read again and again; that is told once.
    if (!calls && !error().isEmpty())
        finishAsBefore();
    else
        finish(calls ? QString() : CallLogReader::noAnswerText());
}

/// Sends a request that changes the log, whose result is one of RC_Interface.
void RecentCallsModel::change(std::function<int()> request)
{
    begin();
    m_reader.changes().change(this, std::move(request), [this](int result) {
        finish(isAnswered(result) ? QString() : CallLogReader::noAnswerText());
    });
}

} // namespace zyn::qml
