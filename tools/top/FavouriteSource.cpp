// The favourites and what of theirs is unread.
#include "tools/top/FavouriteSource.h"

#include "recentcall/utility/ActivityLog_ENG_RecordStore.h"
#include "recentcall/utility/RC_TopPals_AL_Interface.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/top/PhoneState.h"
#include "tools/zynphone/Counted.h"

#include <array>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Store = ActivityLog_ENG_RecordStore;
using Numbers = std::array<QString, Store::kFavourites>;

static_assert(int{static_cast<uint8_t>(Item::Favourite4)} - int{static_cast<uint8_t>(Item::Favourite0)} + 1
              == Store::kFavourites);

void show(PhoneState& state, Item item, const QString& number)
{
    TopPals_Missed_Details unread;
    unread.number = number;
    if (number.isEmpty())
        return state.forget(item);
    if (RC_TopPals_AL_Interface::instance()->getUnreadCount(unread) != 1)
        return state.set(item, number + u", no file"_s);
    const bool isRead = unread.missedCallCount == 0 && unread.unreadMsgCount == 0;
    state.set(item,
              u"%1, %2 missed, %3"_s.arg(number, QString::number(unread.missedCallCount),
                                         counted(unread.unreadMsgCount, "message")),
              !isRead);
}

} // namespace

void readFavourites(PhoneState& state)
{
    Numbers numbers;
    // The store would make the file of the favourites.
    if (DetailsFile::isAt(storeDirectoryPath() + '/' + kTopPalsDetailsName)) {
        // A store knows the favourites as they were when it was made.
        Store::destroy();
        Store::instance()->getCurrentTopPalsFileNames(numbers.data());
    }
    for (size_t place = 0; place < numbers.size(); ++place)
        show(state, static_cast<Item>(static_cast<size_t>(Item::Favourite0) + place), numbers.at(place));
}

} // namespace zyn::tool
