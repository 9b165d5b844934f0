// The list of pointers of the exported interface. It owns its items only with setAutoDelete(true).
#pragma once

#include <QtCore/QList>

#include <utility>

/**
 * A list of pointers to T.
 *
 * A new list owns nothing. After setAutoDelete(true) the list owns its items: whatever remove(), removeFirst(),
 * removeLast(), clear() or the destructor takes out of the list is deleted; take() hands the item to the caller. A list
 * cannot be copied, as two lists would own the same items; it can be moved, and the source is left empty.
 *
 * Iterate with a range-for or the iterators, or with the list's own cursor:
 * `for (T* item = list.first(); item; item = list.next())`. first() and last() set the cursor, next() and prev() move
 * it; taking items out of the list before the cursor moves it with its item.
 */
template<typename T>
class QPtrList
{
public:
    using value_type = T*; ///< what a place of the list holds
    /// A place of the list, good until items come or go.
    using iterator = typename QList<T*>::iterator;
    /// The same for a list that is not changed through it.
    using const_iterator = typename QList<T*>::const_iterator;

    QPtrList() = default;
    QPtrList(const QPtrList&) = delete;
    QPtrList& operator=(const QPtrList&) = delete;
    /// Takes the items of @p other, and their ownership if it has that; @p other is left empty and owns nothing.
    QPtrList(QPtrList&& other) noexcept { swap(other); }
    /// The same from @p other, after this list has let go of its own items as clear() does.
    QPtrList& operator=(QPtrList&& other) noexcept
    {
        QPtrList moved(std::move(other));
        swap(moved);
        return *this;
    }
    ~QPtrList() { clear(); }

    /// Whether the list deletes the items that leave it; false for a new list.
    bool autoDelete() const { return m_autoDelete; }
    /// Has the list own its items from now on, or, with @p enable false, no longer own them.
    void setAutoDelete(bool enable) { m_autoDelete = enable; }

    /// How many items the list has.
    qsizetype count() const { return m_items.size(); }
    /// The same as count().
    qsizetype size() const { return m_items.size(); }
    /// Whether the list has no item.
    bool isEmpty() const { return m_items.isEmpty(); }

    /// The item at @p index, or null when the list has no such place. The cursor stays.
    T* at(qsizetype index) const { return contains(index) ? m_items.at(index) : nullptr; }
    /// The same as at().
    T* operator[](qsizetype index) const { return at(index); }

    /// @{ The cursor: each gives the item it now stands on, or null when it stands on none.
    T* first() { return moveCursor(0); }
    T* last() { return moveCursor(m_items.size() - 1); }
    T* next() { return m_cursor == kNowhere ? nullptr : moveCursor(m_cursor + 1); }
    T* prev() { return m_cursor == kNowhere ? nullptr : moveCursor(m_cursor - 1); }
    T* current() const { return at(m_cursor); }
    /// @}

    /// The first item, null in an empty list. The cursor stays.
    T* getFirst() const { return at(0); }
    /// The last item, null in an empty list. The cursor stays.
    T* getLast() const { return at(m_items.size() - 1); }

    /// Makes room for @p count items in all, so that append() need not make it bit by bit.
    void reserve(qsizetype count) { m_items.reserve(count); }
    /// Puts @p item behind the last one.
    void append(T* item) { m_items.append(item); }
    /// Puts @p item in front of the first one.
    void prepend(T* item) { insert(0, item); }
    /// Puts @p item at @p index, 0 to count(); false, and nothing inserted, for any other place.
    bool insert(qsizetype index, T* item)
    {
        if (index < 0 || index > m_items.size())
            return false;
        m_items.insert(index, item);
        if (m_cursor != kNowhere && index <= m_cursor)
            ++m_cursor;
        return true;
    }

    /// The place of @p item, compared as a pointer, or -1.
    qsizetype findRef(const T* item) const
    {
        for (qsizetype i = 0; i < m_items.size(); ++i) {
            if (m_items.at(i) == item)
                return i;
        }
        return kNowhere;
    }

    /// Takes the item at @p index out without deleting it; the caller owns it. Null when there is no such place.
    T* take(qsizetype index)
    {
        if (!contains(index))
            return nullptr;
        T* item = m_items.takeAt(index);
        if (index < m_cursor || m_cursor == m_items.size())
            --m_cursor;
        return item;
    }
    /// Takes the item at @p index out and, if the list owns its items, deletes it.
    bool remove(qsizetype index)
    {
        if (!contains(index))
            return false;
        dispose(take(index));
        return true;
    }
    /// Does so with @p item, compared as a pointer.
    bool removeRef(const T* item) { return remove(findRef(item)); }
    /// Does so with the first item; false in an empty list.
    bool removeFirst() { return remove(0); }
    /// Does so with the last item; false in an empty list.
    bool removeLast() { return remove(m_items.size() - 1); }
    /// Takes all items out and, if the list owns them, deletes them. The cursor is then unset.
    void clear()
    {
        m_cursor = kNowhere;
        // An item's destructor may look at the list: it finds it empty already.
        const QList<T*> items = std::exchange(m_items, {});
        for (T* item : items)
            dispose(item);
    }

    /// @{ The places from the first to behind the last, for range-for and algorithms.
    iterator begin() { return m_items.begin(); }
    iterator end() { return m_items.end(); }
    const_iterator begin() const { return m_items.cbegin(); }
    const_iterator end() const { return m_items.cend(); }
    const_iterator cbegin() const { return m_items.cbegin(); }
    const_iterator cend() const { return m_items.cend(); }
    const_iterator constBegin() const { return m_items.cbegin(); }
    const_iterator constEnd() const { return m_items.cend(); }
    /// @}

    /// Exchanges items, cursor and ownership with @p other.
    void swap(QPtrList& other) noexcept
    {
        m_items.swap(other.m_items);
        std::swap(m_cursor, other.m_cursor);
        std::swap(m_autoDelete, other.m_autoDelete);
    }

private:
    static constexpr qsizetype kNowhere = -1;

    bool contains(qsizetype index) const { return index >= 0 && index < m_items.size(); }
    T* moveCursor(qsizetype index)
    {
        m_cursor = contains(index) ? index : kNowhere;
        return current();
    }
    void dispose(T* item)
    {
        if (m_autoDelete)
            delete item;
    }

    QList<T*> m_items;
    qsizetype m_cursor = kNowhere;
    bool m_autoDelete = false;
};
