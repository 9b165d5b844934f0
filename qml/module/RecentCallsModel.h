// The log of recent calls as a list.
#pragma once

#include "qml/module/CallLogReader.h"
#include "qml/module/FetchedListModel.h"

#include <functional>
#include <utility>
#include <vector>

namespace zyn::qml {

/// A call in the list.
struct CallRow
{
    PHONE_ENG_RecentCall call; ///< as the service has it

    std::pair<int, int> key() const { return {call.uid, call.category}; }
    /// Whether all is the same, not only the call.
    bool operator==(const CallRow& other) const;
};

/**
 * The calls of one list of the recent-call service, or of all three, newest first.
 *
 *     ListView {
 *         model: RecentCallsModel { category: RecentCallsModel.Missed; onFailed: reason => toast.show(reason) }
 *         delegate: Text { required property string number; required property date start; text: number + " " + start }
 *     }
 *
 * The list follows the log: what this process does to it, what is announced of missed calls, and calls that have ended.
 * When another process deletes answered or dialed calls, nobody is told: see reload(). While the service does not
 * answer, the rows stay, `error` says what is wrong, and the list is read again when the service is back. A change that
 * the service does not make is a failure each time; that the list cannot be read is one when it begins.
 *
 * | Role           | Content                                                                   |
 * |----------------|---------------------------------------------------------------------------|
 * | `callId`       | int: the number by which the log knows the call, the greater the newer    |
 * | `number`       | text: the other party's; empty when it is not known                       |
 * | `name`         | text: the other party's; empty when it is not known                       |
 * | `start`        | date: when the call began                                                 |
 * | `duration`     | int: seconds                                                              |
 * | `category`     | int: the list that the call is in, never All                              |
 * | `callType`     | int: a CallType, or the number of another type                            |
 * | `completed`    | bool: whether the call was completed                                      |
 * | `isRead`       | bool: whether the user has seen the call                                  |
 * | `strictRead`   | bool: the mark for strict read, whose meaning is that of who stored it    |
 * | `pttPartyType` | int: of a push-to-talk call, as it was stored; -1 for others              |
 * | `pttIdType`    | int: of a push-to-talk call, as it was stored; 0 for others               |
 * | `pttSession`   | text: the session of a push-to-talk call; empty for others                |
 */
class RecentCallsModel : public ZYN_LIST_OF(CallRow)
{
    Q_OBJECT
    QML_ELEMENT
    /// Which list is shown: All at first. When it changes, the rows go at once, and those of the new list come. A
    /// number that is no Category is refused.
    Q_PROPERTY(Category category READ category WRITE setCategory NOTIFY categoryChanged FINAL)
    /// Which calls of it: AnyType at first. The number of a type without a name is as good.
    Q_PROPERTY(CallType callType READ callType WRITE setCallType NOTIFY callTypeChanged FINAL)
    /// The number dialed last, of any type; empty without one. It is read without the service.
    Q_PROPERTY(QString lastDialed READ lastDialed NOTIFY lastDialedChanged FINAL)

public:
    /// The lists.
    enum Category : int {
        Answered = RC_CALL_CATEGORY_ANSWERED,
        Missed = RC_CALL_CATEGORY_MISSED,
        Dialed = RC_CALL_CATEGORY_DIALED,
        All = RC_CALL_CATEGORY_ALL, ///< the three together
    };
    Q_ENUM(Category)

    /// The kinds of calls.
    enum CallType : int {
        AnyType = 0, ///< the three that follow
        Voice = RC_CALL_TYPE_VOICE,
        PushToTalk = RC_CALL_TYPE_PTT1,
        PushToTalkGroup = RC_CALL_TYPE_PTT2,
    };
    Q_ENUM(CallType)

    explicit RecentCallsModel(QObject* parent = nullptr);

    Category category() const { return static_cast<Category>(m_selection.category); }
    void setCategory(Category category);
    CallType callType() const { return static_cast<CallType>(m_selection.callType); }
    void setCallType(CallType callType);
    QString lastDialed() const { return m_lastDialed; }

    /// Deletes the call in @p row. A call that is gone already is no failure; a row that is not there is ignored.
    Q_INVOKABLE void remove(int row);
    /// Deletes all calls of the category and the type that are shown, those that came meanwhile among them.
    Q_INVOKABLE void clear();
    /// Marks the call in @p row as read: seen by the user.
    Q_INVOKABLE void markRead(int row);
    /// Marks the calls that the list has now as read.
    Q_INVOKABLE void markAllRead();
    /// Reads `lastDialed` again, as it is when the log has changed.
    Q_INVOKABLE void refreshLastDialed();

Q_SIGNALS:
    void categoryChanged();
    void callTypeChanged();
    void lastDialedChanged();

protected:
    void fetch() override { m_reader.read(m_selection); }

private:
    void select(const CallSelection& selection);
    void take(const CallSelection& selection, const CallLogReader::Calls& calls);
    void change(std::function<int()> request);

    CallSelection m_selection;
    CallLogReader m_reader;
    QString m_lastDialed;
};

} // namespace zyn::qml
