// The log of recent calls: what each command does to the store.
#pragma once

#include "recentcall/utility/RecentCall_Command_p.h"
#include "recentcall/utility/RecentCall_ENG_RecordStore.h"

#include <QtCore/QByteArray>

#include <array>
#include <optional>
#include <span>
#include <utility>

/**
 * The answered, missed and dialed calls, in a record store of its own.
 *
 * One process at a time may have one. What it is handed comes from clients and may hold anything. Lists are read from
 * their files at every operation but an add; a file that turns out missing or damaged is made anew first. What fails is
 * told in the log. To be used from one thread.
 *
 * It remembers whether the missed calls have changed, for whoever tells others of it.
 */
class CallLog
{
public:
    /// Makes the files that are missing or damaged, and reads the three lists.
    CallLog();

    /**
     * Adds a call, in place of the oldest one when its list is full. Slot and uid are the store's to give.
     *
     * False when the category names no list that keeps calls, or when the call could not be stored.
     */
    bool add(PHONE_ENG_RecentCall record);

    /// Deletes the call with the uid of @p record from the list of its category, wherever it lies.
    zyn::recentcall::Status remove(const PHONE_ENG_RecentCall& record);

    /// Lets the call with the uid of @p record in the list of its category count as read, as it does already when it
    /// was marked before.
    zyn::recentcall::Status markRead(const PHONE_ENG_RecentCall& record);

    /// Deletes the selected calls: Success also when there are none, Failure when one of them stays or when
    /// the category names no list.
    zyn::recentcall::Status removeAll(const zyn::recentcall::Selection& selection);

    /// The selected calls, newest first, as the data of an answer; nothing when the category names no list or
    /// a file cannot be had.
    std::optional<QByteArray> list(const zyn::recentcall::Selection& selection);

    /// Whether the missed calls on disk have changed since this was last asked.
    bool takeMissedChange() { return std::exchange(m_hasMissedChange, false); }

private:
    using Calls = QSortedList<PHONE_ENG_RecentCall>;
    using Lists = std::span<const RC_CALL_CATEGORY_T>;

    void open();
    bool makeSound(Lists lists);
    qsizetype& countOf(RC_CALL_CATEGORY_T category) { return m_counts[static_cast<size_t>(category)]; }
    Calls read(Lists lists);
    bool store(PHONE_ENG_RecentCall& record);
    bool erase(const PHONE_ENG_RecentCall& record);
    bool setRead(const PHONE_ENG_RecentCall& record);
    using Change = bool (CallLog::*)(const PHONE_ENG_RecentCall& stored);
    zyn::recentcall::Status changeStored(const PHONE_ENG_RecentCall& record, Change change);
    void noteChange(RC_CALL_CATEGORY_T category);
    void eraseOldest(RC_CALL_CATEGORY_T category);

    std::optional<RecentCall_ENG_RecordStore> m_store;
    /// How many calls each list holds, by category; counted anew whenever a list is read.
    std::array<qsizetype, RC_CALL_CATEGORY_DIALED + 1> m_counts{};
    bool m_hasMissedChange = false;
};
