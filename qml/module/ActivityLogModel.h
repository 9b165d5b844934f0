// What is logged of a favourite, as a list.
#pragma once

#include "qml/module/FetchedListModel.h"
#include "qml/module/FileWatch.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <tuple>

namespace zyn::qml {

/// A call or a message of a favourite.
struct ActivityRow
{
    int32_t index;    ///< given by the owner of the log
    int32_t position; ///< of the entry in its file, as that says
    int twin;         ///< tells apart what a damaged file has twice
    int32_t callId;
    QString number;
    QString name;
    QDateTime start;
    int32_t duration;
    int32_t category;
    int32_t callType;
    bool isCompleted;
    bool isRead;
    bool isMessage;
    QString message;

    std::tuple<int32_t, int32_t, int> key() const { return {index, position, twin}; }
    bool operator==(const ActivityRow&) const = default;
};

/**
 * The latest calls and messages of a favourite, newest first.
 *
 *     ListView {
 *         model: ActivityLogModel { number: favourite.number }
 *         delegate: Label {
 *             required property date start
 *             required property bool isMessage
 *             required property string message
 *             text: start.toLocaleString() + " " + (isMessage ? message : "call")
 *         }
 *     }
 *
 * Roles: `callId` (int), `number` (text: the favourite's name in the log), `name` (text), `start` (date), `duration`
 * (seconds), `category` and `callType` (the numbers of RecentCallsModel), `completed`, `isRead`, `isMessage` (bool),
 * `message` (text, of a message).
 *
 * The list is empty for a number that is no favourite's. What the owner of the favourites writes is followed. When a
 * file is damaged, `error` says so, and the entries that can be read are shown. Never more than the newest 1000.
 */
class ActivityLogModel : public ZYN_LIST_OF(ActivityRow)
{
    Q_OBJECT
    QML_ELEMENT
    /// Any number that ends as the favourite's does, such as FavouritesModel's.
    Q_PROPERTY(QString number READ number WRITE setNumber NOTIFY numberChanged FINAL)

public:
    explicit ActivityLogModel(QObject* parent = nullptr);

    QString number() const { return m_number; }
    /// Empties the list until that of @p number is fetched.
    void setNumber(const QString& number);

Q_SIGNALS:
    void numberChanged();

protected:
    void fetch() override;

private:
    FileWatch m_watch;
    QString m_number;
};

} // namespace zyn::qml
