// The favourites, as a list.
#pragma once

#include "qml/module/CallLogReader.h"
#include "qml/module/FetchedListModel.h"
#include "qml/module/FileWatch.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace zyn::qml {

/// One of the five places.
struct FavouriteRow
{
    int place;          ///< 0 to 4
    QString number;     ///< empty when the place is free
    int missedCalls;    ///< -1 when it is not known
    int unreadMessages; ///< likewise
    QString dialNumber; ///< the whole number, as far as somebody knows it

    int key() const { return place; }
    bool operator==(const FavouriteRow&) const = default;
};

/**
 * The favourites: five rows, once they are loaded, of which any may be free.
 *
 *     ListView {
 *         model: FavouritesModel { id: favourites; onFailed: reason => problem.text = reason }
 *         delegate: Button {
 *             required property string dialNumber
 *             required property bool taken
 *             required property int missedCalls
 *             text: taken ? dialNumber + (missedCalls > 0 ? " (" + missedCalls + " missed)" : "") : "free"
 *             onClicked: PhoneCalls.dial(dialNumber)
 *         }
 *     }
 *     Button { onClicked: favourites.add("0301234567", "Ann") }
 *
 * Roles: `place` (0 to 4), `number` (text), `dialNumber` (text), `taken` (bool), `missedCalls` and `unreadMessages`
 * (what is unread of it; 0 in a free place, -1 when its file cannot be read).
 *
 * `number` is what the handset keeps: the last seven characters of the number with which somebody became a favourite,
 * or the whole of a shorter one. It names the favourite, with and without a prefix, also for ActivityLogModel.
 * `dialNumber` is the whole number that ends in it: the one that this object has announced, or else that of the newest
 * call in the log. Where neither knows it, it is `number`, which may be dialed within an area only; an application with
 * an address book looks there.
 *
 * The favourites belong to one process, zyn-favourites here. add(), replace() and remove() announce to it what is to
 * become true, and are done when it has become true: `busy` tells of it. When it has not after some seconds, failed()
 * says so. The files of the favourites are only read, and followed; a damaged one stays as it is.
 */
class FavouritesModel : public ZYN_LIST_OF(FavouriteRow)
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit FavouritesModel(QObject* parent = nullptr);

    /// @{ Announce a new favourite, another one in the place of that in @p row, and that the one in @p row is none any
    /// more. The numbers are those to dial, in whole; the owner may use the name.
    Q_INVOKABLE void add(const QString& number, const QString& name = {});
    Q_INVOKABLE void replace(int row, const QString& number, const QString& name = {});
    Q_INVOKABLE void remove(int row);
    /// @}

protected:
    void fetch() override;

private:
    /// What has been announced, and is not true yet.
    struct Change
    {
        int id;
        QString oldKey; ///< no favourite any more; empty when it is nobody's place
        QString newKey; ///< a favourite then; empty when nobody comes
        bool isLate;    ///< it had time enough
    };

    bool has(const QString& key) const;
    QString numberAt(int row);
    QString obstacle(const QString& oldNumber, const QString& number) const;
    void announce(const QString& oldNumber, const QString& number, const QString& name);
    void send(const QString& oldNumber, const QString& number, const QString& name);
    void setLate(int id);
    void noteCalls(const CallLogReader::Calls& calls);
    void show();
    void endChanges();
    void forgetAnnounced();

    FileWatch m_watch;
    CallLogReader m_callLog;
    std::vector<FavouriteRow> m_stored;       ///< as the files have them
    QHash<QString, QString> m_announcedUnder; ///< the whole numbers that were announced, under their keys
    QHash<QString, QString> m_calledUnder;    ///< those of the newest calls
    std::vector<Change> m_changes;
    int m_nextChange = 0;
};

} // namespace zyn::qml
