// The entries in a contact's file.
#pragma once

#include "platform/QSortedList.h"
#include "recentcall/utility/PHONE_ENG_ActivityLog.h"

#include <vector>

namespace zyn {

// All but usedSlots() write what they do to standard output.

/// Writes @p record into its slot of the file of its number.
bool modifyTopPalsAvlItem(const PHONE_ENG_ActivityLog& record, int slots);

/// Empties slot @p pos of the open file @p fd.
bool removeTopPalsAvlFileItem(int fd, int pos, int slots);

/// Orders @p list newest first, as a selection sort does, and keeps as many records as a file has slots.
void sortOnTimeStamp(QSortedList<PHONE_ENG_ActivityLog>& list, int slots);

/// The slots that are in use in the file of @p number, by their place in it: of those that it holds whole, however many
/// slots a file should have. None when its header is wrong.
std::vector<int> usedSlots(const QString& number);

} // namespace zyn
