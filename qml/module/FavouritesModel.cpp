// The favourites, as a list.
#include "qml/module/FavouritesModel.h"

#include "qml/module/HandsetFiles.h"
#include "qml/module/Lanes.h"
#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"

#include <QtCore/QStringList>
#include <QtCore/QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace zyn::qml {
namespace {

/// The owner of the favourites may wait 5 seconds for the call log before it changes them.
constexpr auto kPatience = 7s;

constexpr qsizetype kLongestFavourite = sizeof PHONE_ENG_RecentCall::phoneNumber - 1;

constexpr ListRole<FavouriteRow> kFavouriteRoles[] = {
    {"place", [](const FavouriteRow& row) { return QVariant(row.place); }},
    {"number", [](const FavouriteRow& row) { return QVariant(row.number); }},
    {"dialNumber", [](const FavouriteRow& row) { return QVariant(row.dialNumber); }},
    {"taken", [](const FavouriteRow& row) { return QVariant(!row.number.isEmpty()); }},
    {"missedCalls", [](const FavouriteRow& row) { return QVariant(row.missedCalls); }},
    {"unreadMessages", [](const FavouriteRow& row) { return QVariant(row.unreadMessages); }},
};

struct StoredFavourites
{
    bool areKnown = true;
    std::vector<FavouriteRow> rows;
    QStringList files;
};

FavouriteRow readFavourite(int place, const QString& number)
{
    if (number.isEmpty())
        return {place, number, 0, 0, {}};
    TopPals_Missed_Details unread{.number = number};
    // Under a longer number, it would be counted in another's file.
    const bool isCounted =
        favouriteKey(number) == number && RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) == 1;
    return isCounted ? FavouriteRow{place, number, unread.missedCallCount, unread.unreadMsgCount, {}}
                     : FavouriteRow{place, number, -1, -1, {}};
}

/// Reads the favourites, on the lane of the files. To ask the store makes the file of the favourites, over a damaged
/// one: it is asked when there is a valid one.
StoredFavourites readFavourites()
{
    StoredFavourites result{.areKnown = true, .rows = {}, .files = {favouritesFile()}};
    std::array<QString, ActivityLog_ENG_RecordStore::kFavourites> numbers;
    switch (checkFavouritesFile()) {
    case FavouritesFile::Damaged:
        result.areKnown = false;
        return result;
    case FavouritesFile::Missing:
        break;
    case FavouritesFile::Valid:
        ActivityLog_ENG_RecordStore::destroy(); // it keeps what it has read
        ActivityLog_ENG_RecordStore::instance()->getCurrentTopPalsFileNames(numbers.data());
        break;
    }
    for (const QString& number : numbers) {
        result.rows.push_back(readFavourite(static_cast<int>(result.rows.size()), number));
        result.files += favouriteFiles(number);
    }
    return result;
}

bool isNumberOfCalls(const QString& number)
{
    return !number.isEmpty() && number.size() <= kLongestFavourite && std::ranges::all_of(number, [](QChar character) {
        return character.unicode() <= 0xFF && character.isPrint();
    });
}

} // namespace

FavouritesModel::FavouritesModel(QObject* parent)
    : FetchedRows(kFavouriteRoles, parent)
    , m_callLog([] {}, [this](const CallSelection&, const CallLogReader::Calls& calls) { noteCalls(calls); })
{
    const auto readCalls = [this] { m_callLog.read({}); };
    connect(&m_callLog, &CallLogReader::outdated, this, readCalls);
    readCalls();
    connect(&m_watch, &FileWatch::changed, this, &FavouritesModel::reload);
    m_watch.setFiles({favouritesFile()});
    reload();
}

void FavouritesModel::fetch()
{
    begin();
    runBeside(Lane::Files, this, readFavourites, [this](StoredFavourites favourites) {
        if (favourites.areKnown) {
            m_stored = std::move(favourites.rows);
            show();
            if (m_watch.setFiles(favourites.files))
                reload();
        }
        finish(favourites.areKnown ? QString() : favouritesProblem());
        endChanges();
        forgetAnnounced();
    });
}

void FavouritesModel::add(const QString& number, const QString& name)
{
    announce({}, number, name);
}

void FavouritesModel::replace(int row, const QString& number, const QString& name)
{
    if (const QString old = numberAt(row); !old.isEmpty())
        announce(old, number, name);
}

void FavouritesModel::remove(int row)
{
    if (const QString old = numberAt(row); !old.isEmpty())
        send(old, {}, {});
}

/// The favourite in @p row; where there is none, that is told, and it is empty.
QString FavouritesModel::numberAt(int row)
{
    const FavouriteRow* const favourite = find(row);
    if (favourite && !favourite->number.isEmpty())
        return favourite->number;
    begin();
    finish(tr("There is no favourite in this place"));
    return {};
}

bool FavouritesModel::has(const QString& key) const
{
    return std::ranges::any_of(m_stored, [&key](const FavouriteRow& row) { return row.number == key; });
}

/// Why @p number cannot come, for @p oldNumber if that is not empty; empty when it can.
QString FavouritesModel::obstacle(const QString& oldNumber, const QString& number) const
{
    if (!isNumberOfCalls(number))
        return tr("This is not a number of a call");
    if (has(favouriteKey(number)))
        return tr("%1 is a favourite already").arg(favouriteKey(number));
    if (oldNumber.isEmpty() && isLoaded() && !has({}))
        return tr("All places are taken");
    return {};
}

void FavouritesModel::announce(const QString& oldNumber, const QString& number, const QString& name)
{
    if (const QString problem = obstacle(oldNumber, number); !problem.isEmpty()) {
        begin();
        finish(problem);
        return;
    }
    send(oldNumber, number, name);
}

/// Announces a change, and waits for it. What is announced on the lane's thread is on its way at once: that has no
/// event loop which would collect it.
void FavouritesModel::send(const QString& oldNumber, const QString& number, const QString& name)
{
    begin();
    const int id = m_nextChange++;
    m_changes.push_back({id, oldNumber, favouriteKey(number), false});
    m_announcedUnder.insert(favouriteKey(number), number);
    const TopPals_Details_T details{.name = name, .number = number, .imageLocation = {}};
    const auto announcement = [oldNumber, details] {
        return RC_TopPals_AL_Interface::instance()->modifyTopPalsContactDetails(oldNumber, details);
    };
    runBeside(Lane::Files, this, announcement, [this, id](bool isSent) {
        if (isSent)
            QTimer::singleShot(kPatience, this, [this, id] { setLate(id); });
        else
            setLate(id);
    });
}

/// Takes from @p calls, newest first, what is dialed to reach those who called or were called.
void FavouritesModel::noteCalls(const CallLogReader::Calls& calls)
{
    if (!calls)
        return; // what was called before stays
    m_calledUnder.clear();
    for (const PHONE_ENG_RecentCall& call : *calls) {
        const QString number = call.getPhoneNumber();
        if (QString& known = m_calledUnder[favouriteKey(number)]; known.isEmpty())
            known = number;
    }
    if (isLoaded())
        show();
}

/// Shows what is stored, with the numbers to dial.
void FavouritesModel::show()
{
    std::vector<FavouriteRow> shown = m_stored;
    for (FavouriteRow& row : shown)
        row.dialNumber = m_announcedUnder.value(row.number, m_calledUnder.value(row.number, row.number));
    setRows(std::move(shown));
}

/// The change @p id should have become true by now: that is looked at once more.
void FavouritesModel::setLate(int id)
{
    const auto change = std::ranges::find(m_changes, id, &Change::id);
    if (change == m_changes.end())
        return;
    change->isLate = true;
    fetch();
}

/// Ends the changes that have become true, and those that should have.
void FavouritesModel::endChanges()
{
    std::vector<QString> outcomes;
    std::erase_if(m_changes, [&](const Change& change) {
        const bool isTrue = (change.newKey.isEmpty() || has(change.newKey))
                            && (change.oldKey.isEmpty() || change.oldKey == change.newKey || !has(change.oldKey));
        if (isTrue)
            outcomes.emplace_back();
        else if (change.isLate)
            outcomes.push_back(tr("The favourites have not changed: start zyn-favourites, to which they belong, or see "
                                  "what it says"));
        return isTrue || change.isLate;
    });
    for (const QString& outcome : outcomes)
        finish(outcome);
}

/// Forgets the whole numbers of those who are no favourites and are to become none: who comes under their key later may
/// have another.
void FavouritesModel::forgetAnnounced()
{
    m_announcedUnder.removeIf([this](const QHash<QString, QString>::iterator& announced) {
        return !has(announced.key())
               && std::ranges::find(m_changes, announced.key(), &Change::newKey) == m_changes.end();
    });
}

} // namespace zyn::qml
