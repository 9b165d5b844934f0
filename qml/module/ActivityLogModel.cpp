// What is logged of a favourite, as a list.
#include "qml/module/ActivityLogModel.h"

#include "qml/module/HandsetFiles.h"
#include "qml/module/Lanes.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"

#include <map>
#include <utility>
#include <vector>

namespace zyn::qml {
namespace {

/// As many as a person looks through. Settings may give a file more.
constexpr size_t kMostActivities = 1000;

constexpr ListRole<ActivityRow> kActivityRoles[] = {
    {"callId", [](const ActivityRow& row) { return QVariant(row.callId); }},
    {"number", [](const ActivityRow& row) { return QVariant(row.number); }},
    {"name", [](const ActivityRow& row) { return QVariant(row.name); }},
    {"start", [](const ActivityRow& row) { return QVariant(row.start); }},
    {"duration", [](const ActivityRow& row) { return QVariant(row.duration); }},
    {"category", [](const ActivityRow& row) { return QVariant(row.category); }},
    {"callType", [](const ActivityRow& row) { return QVariant(row.callType); }},
    {"completed", [](const ActivityRow& row) { return QVariant(row.isCompleted); }},
    {"isRead", [](const ActivityRow& row) { return QVariant(row.isRead); }},
    {"isMessage", [](const ActivityRow& row) { return QVariant(row.isMessage); }},
    {"message", [](const ActivityRow& row) { return QVariant(row.message); }},
};

enum class LogState : uint8_t { Read, Damaged, FavouritesUnknown };

struct StoredActivities
{
    LogState state = LogState::Read;
    std::vector<ActivityRow> rows;
};

ActivityRow activityRow(const PHONE_ENG_ActivityLog& entry)
{
    return {.index = entry.topPalsAvlIndex,
            .position = entry.topPalsAvlPos,
            .twin = 0,
            .callId = entry.uid,
            .number = entry.getPhoneNumber(),
            .name = entry.getDisplayName(),
            .start = entry.getStartDateTime(),
            .duration = entry.duration,
            .category = entry.category,
            .callType = entry.callType,
            .isCompleted = entry.completed != 0,
            .isRead = (entry.readFlags & PHONE_ENG_RecentCall::kRead) != 0,
            .isMessage = entry.msgType != 0,
            .message = entry.getMsgString()};
}

/// Reads the log of @p number, on the lane of the files.
StoredActivities readActivities(const QString& number)
{
    using Store = ActivityLog_ENG_RecordStore;
    const FavouritesFile favourites = checkFavouritesFile();
    if (favourites != FavouritesFile::Valid) // to ask the store would make one
        return {favourites == FavouritesFile::Missing ? LogState::Read : LogState::FavouritesUnknown, {}};
    Store::destroy(); // it keeps what it has read
    Store* const store = Store::instance();
    const QString name = store->getTopPalFileItem(number) >= 0 ? number : favouriteKey(number);
    if (name.isEmpty() || store->getTopPalFileItem(name) < 0)
        return {};
    QSortedList<PHONE_ENG_ActivityLog> entries;
    entries.setAutoDelete(true);
    StoredActivities result;
    if (store->readTopPalsAvlContactRecordList(entries, name) != 1)
        result.state = LogState::Damaged;
    std::map<std::pair<int32_t, int32_t>, int> seen;
    for (const PHONE_ENG_ActivityLog* const entry : std::as_const(entries)) {
        ActivityRow row = activityRow(*entry);
        if (row.number != name) // a damaged file gives it to another
            continue;
        row.twin = seen[{row.index, row.position}]++;
        result.rows.push_back(std::move(row));
        if (result.rows.size() == kMostActivities)
            break;
    }
    return result;
}

} // namespace

ActivityLogModel::ActivityLogModel(QObject* parent)
    : FetchedRows(kActivityRoles, parent)
{
    connect(&m_watch, &FileWatch::changed, this, &ActivityLogModel::reload);
    reload();
}

void ActivityLogModel::setNumber(const QString& number)
{
    if (std::exchange(m_number, number) == number)
        return;
    QStringList files = QStringList{favouritesFile()} + favouriteFiles(number) + favouriteFiles(favouriteKey(number));
    files.removeDuplicates();
    m_watch.setFiles(files);
    forgetRows();
    Q_EMIT numberChanged();
    reload();
}

void ActivityLogModel::fetch()
{
    begin();
    const auto read = [number = m_number] { return readActivities(number); };
    runBeside(Lane::Files, this, read, [this, number = m_number](StoredActivities activities) {
        if (number != m_number) {
            finish(); // the list of the present number follows
            return;
        }
        if (activities.state == LogState::FavouritesUnknown) {
            finish(favouritesProblem());
            return;
        }
        setRows(std::move(activities.rows));
        finish(activities.state == LogState::Damaged ? tr("The log of this favourite cannot be read whole")
                                                     : QString());
    });
}

} // namespace zyn::qml
