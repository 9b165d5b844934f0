// The base of the module's lists, which are fetched beside the thread of the user interface.
#pragma once

#include <QtCore/QAbstractListModel>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace zyn::qml {

/**
 * A list that is fetched, and fetched again when it has changed.
 *
 * While a fetch waits, the list stays as it is; a fetch that fails changes nothing but `error`. All is used from the
 * thread of the user interface.
 */
class FetchedListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ANONYMOUS
    /// How many rows there are.
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
    /// Whether a request is on its way.
    Q_PROPERTY(bool busy READ isBusy NOTIFY busyChanged FINAL)
    /// Whether the list has been fetched at least once: until then it is empty because nothing is known.
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY loadedChanged FINAL)
    /// Why the last request failed, for people; empty when it succeeded.
    Q_PROPERTY(QString error READ error NOTIFY errorChanged FINAL)

public:
    explicit FetchedListModel(QObject* parent = nullptr);

    int count() const { return rowCount({}); }
    bool isBusy() const { return m_pending > 0; }
    bool isLoaded() const { return m_isLoaded; }
    QString error() const { return m_error; }

    /// Fetches the list again. Calls in one turn of the event loop are one request.
    Q_INVOKABLE void reload();

Q_SIGNALS:
    void countChanged();
    void busyChanged();
    void loadedChanged();
    void errorChanged();
    /// A request has failed: @p reason tells people why.
    void failed(const QString& reason);

protected:
    /// Sends the request for the list, which ends in begin() and finish().
    virtual void fetch() = 0;

    /// A request begins.
    void begin();
    /// A request has ended, successfully if @p error is empty.
    void finish(const QString& error = {});
    /// A request has ended as the one before did: there is nothing to tell.
    void finishAsBefore();
    /// The list is known from now on.
    void setLoaded();
    /// Nothing is known of the list any more.
    void setUnloaded();

private:
    int m_pending = 0;
    bool m_isQueued = false;
    bool m_isLoaded = false;
    QString m_error;
};

/// A role of a list of @p Row: the name by which QML knows it, and its value.
template<typename Row>
struct ListRole
{
    const char* name;
    QVariant (*value)(const Row& row);
};

/// A FetchedListModel of @p Row, whose role n is Qt::UserRole + n of a table. A row has a `key()`, unique in the list,
/// and an operator ==.
template<typename Row>
class FetchedRows : public FetchedListModel
{
public:
    /// @param roles  lives as long as the program
    explicit FetchedRows(std::span<const ListRole<Row>> roles, QObject* parent)
        : FetchedListModel(parent)
        , m_roles(roles)
    {}

    int rowCount(const QModelIndex& parent) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }

    QVariant data(const QModelIndex& index, int role) const override
    {
        const int column = role - Qt::UserRole;
        const bool isThere = checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)
                             && column >= 0 && column < std::ssize(m_roles);
        return isThere ? m_roles[static_cast<size_t>(column)].value(rowAt(index.row())) : QVariant();
    }

    QHash<int, QByteArray> roleNames() const override
    {
        QHash<int, QByteArray> names;
        for (const ListRole<Row>& role : m_roles)
            names.insert(Qt::UserRole + static_cast<int>(names.size()), role.name);
        return names;
    }

protected:
    const std::vector<Row>& rows() const { return m_rows; }
    /// The row @p index; null when there is none, as QML may name any.
    const Row* find(int index) const { return index >= 0 && index < rowCount({}) ? &rowAt(index) : nullptr; }

    /// The list is @p rows now. Rows that were there already stay where the views have them.
    void setRows(std::vector<Row> rows) { become(std::move(rows), true); }
    /// The list is another one from now on, of which nothing is known yet.
    void forgetRows() { become({}, false); }

private:
    /// What the list is to be.
    struct Target
    {
        std::vector<Row> rows;
        bool isKnown;
    };

    const Row& rowAt(int index) const { return m_rows[static_cast<size_t>(index)]; }

    /// Makes the list one of @p rows. What is told of a row may make somebody ask for another list: that comes next.
    void become(std::vector<Row> rows, bool isKnown)
    {
        m_next = Target{std::move(rows), isKnown};
        if (m_isChanging)
            return;
        m_isChanging = true;
        while (m_next) {
            Target target = *std::exchange(m_next, std::nullopt);
            merge(std::move(target.rows));
            if (target.isKnown)
                setLoaded();
            else
                setUnloaded();
        }
        m_isChanging = false;
    }

    void merge(std::vector<Row> rows)
    {
        const int before = rowCount({});
        const auto isGone = [&rows](const Row& row) {
            return std::none_of(rows.begin(), rows.end(), [&](const Row& other) { return other.key() == row.key(); });
        };
        for (int index = before - 1; index >= 0; --index) {
            if (isGone(rowAt(index)))
                drop(index);
        }
        for (int index = 0; index < std::ssize(rows); ++index)
            place(index, std::move(rows[static_cast<size_t>(index)]));
        // A file that was tampered with may hold a key twice, and has lost one of its rows.
        while (m_rows.size() > rows.size())
            drop(rowCount({}) - 1);
        if (rowCount({}) != before)
            Q_EMIT countChanged();
    }

    void drop(int index)
    {
        beginRemoveRows({}, index, index);
        m_rows.erase(m_rows.begin() + index);
        endRemoveRows();
    }

    /// Makes @p row the one at @p index; those above it are in their places.
    void place(int index, Row row)
    {
        const auto at = m_rows.begin() + index;
        const auto old = std::find_if(at, m_rows.end(), [&row](const Row& other) { return other.key() == row.key(); });
        if (old == m_rows.end()) {
            beginInsertRows({}, index, index);
            m_rows.insert(at, std::move(row));
            endInsertRows();
            return;
        }
        if (old != at) {
            const int from = static_cast<int>(old - m_rows.begin());
            beginMoveRows({}, from, from, {}, index);
            std::rotate(at, old, old + 1);
            endMoveRows();
        }
        Row& placed = m_rows[static_cast<size_t>(index)];
        if (!(placed == row)) {
            placed = std::move(row);
            const QModelIndex changed = this->index(index);
            Q_EMIT dataChanged(changed, changed);
        }
    }

    const std::span<const ListRole<Row>> m_roles;
    std::vector<Row> m_rows;
    std::optional<Target> m_next;
    bool m_isChanging = false;
};

/// @def ZYN_LIST_OF
/// The base of a list of @p Row. Qt's tools know no templates: they are told the base that QML knows, by its whole
/// name, so that the types of the lists have what that has.
#ifdef Q_MOC_RUN
#    define ZYN_LIST_OF(Row) zyn::qml::FetchedListModel
#else
#    define ZYN_LIST_OF(Row) FetchedRows<Row>
#endif

} // namespace zyn::qml
