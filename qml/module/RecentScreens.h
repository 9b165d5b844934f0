// The recent-call screens: for those who ask for them, and for those who are them.
#pragma once

#include "recentcall/utility/RC_Types.h"
#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

namespace zyn::qml {

/**
 * The recent-call screens, which may belong to another application, and their number picker.
 *
 * Who asks for them:
 *
 *     Button { onClicked: RecentScreens.pickNumber() }
 *     Connections { target: RecentScreens; function onFinished(picked, number) { if (picked) field.text = number } }
 *
 * Who is them, and hears what this application asks for as well:
 *
 *     Connections {
 *         target: RecentScreens
 *         function onPageRequested(page) { stack.show(page) }
 *         function onHideRequested() { RecentScreens.reportDismissed(); stack.clear() }
 *     }
 *
 * Requests are messages: when no screens run, nothing follows, and a picker that was asked for of screens that end
 * without a word closes with the next one.
 */
class RecentScreens : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// The pages. That of a list has the number of its category.
    enum Page : int {
        AnsweredPage = RC_CALL_CATEGORY_ANSWERED,
        MissedPage = RC_CALL_CATEGORY_MISSED,
        DialedPage = RC_CALL_CATEGORY_DIALED,
        AllPage = RC_CALL_CATEGORY_ALL,
        PickerPage = 5, ///< the number picker
    };
    Q_ENUM(Page)

    explicit RecentScreens(QObject* parent = nullptr);

    /// Asks for @p page, which is passed on as it is.
    Q_INVOKABLE void open(int page);
    /// Asks for the details of the call at @p index, from 0, of the list @p category, newest first.
    Q_INVOKABLE void showDetails(int index, int category);
    /// Asks the screens to hide; false when the request could not be sent.
    Q_INVOKABLE bool hide();
    /// Opens the number picker. finished() follows when that closes.
    Q_INVOKABLE void pickNumber();

    /// Tells whoever waits for the picker that the user has picked @p number, or, with an empty one, none; false when
    /// that could not be sent.
    Q_INVOKABLE bool reportPicked(const QString& number);
    /// Tells whoever waits for the picker that it has closed without a number; false when that could not be sent.
    Q_INVOKABLE bool reportDismissed();

Q_SIGNALS:
    /// The picker has closed: once for each pickNumber() before, and never when only others have opened it. @p number
    /// is empty when none was @p selected. Pickers that are open at the same time are one, which closes once for all.
    void finished(bool selected, const QString& number);

    /// @{ What is asked of the screens. Numbers that mean nothing are not passed on.
    void pageRequested(int page);                   ///< show @p page, a Page
    void detailsRequested(int index, int category); ///< show the call at @p index, from 0, of the list @p category
    void hideRequested();                           ///< hide
    /// @}

private:
    void finish(bool selected, const QString& number);
    void requestPage(int page);
    void requestList(RC_CALL_CATEGORY_T category);
    void requestDetails(RC_CALL_CATEGORY_T category, int index);

    int m_picks = 0; ///< pickers that this application waits for
};

} // namespace zyn::qml
