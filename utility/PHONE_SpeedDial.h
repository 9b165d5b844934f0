// The nine numbers of speed dial.
#pragma once

#include "platform/ZynExport.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/**
 * The speed-dial table: nine numbers under the indices 1 to 9, in the settings that all applications share.
 *
 * Numbers are taken as they come, without a check or a limit; an entry is free when it is empty. An index outside 1 to
 * 9 can be read and written as well, but is not part of the table.
 */
class ZYN_EXPORT PHONE_SpeedDial
{
public:
    PHONE_SpeedDial();
    ~PHONE_SpeedDial();

    /// The number under @p index; empty when there is none or the settings cannot be read.
    QString getTurboDialing(int index);
    /// Stores @p number under @p index; an empty one frees the entry. @return whether it was stored
    bool setTurboDialing(int index, QString const& number);
    /// The lowest free index from 1 to 9; -1 when none is free.
    int getFirstAvailableTurboDialingIndex();
    /// Stores the first nine of @p numbers from index 1 on; what a shorter list does not reach stays. @return whether
    /// all of them were stored
    bool setTurboDialing(QStringList const& numbers);
    /// Replaces what @p numbers holds by the nine numbers in the order of their indices, empty ones included.
    void getTurboDialingList(QStringList& numbers);
};

/// The number under @p index, as PHONE_SpeedDial::getTurboDialing() tells it.
ZYN_EXPORT QString Phone_GetTurboDialingByIndex(int index);
