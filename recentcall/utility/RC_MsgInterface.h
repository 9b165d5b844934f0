// The recent-call screens, for applications.
#pragma once

#include "platform/ZynExport.h"
#include "recentcall/utility/RC_Types.h"
#include "recentcall/utility/RecentCall_Msg.h"

#include <QtCore/QObject>
#include <QtCore/QString>

class RecentCall_MsgClient;

/**
 * Opens, pages and hides the recent-call screens, and hands back the number that the user picks there.
 *
 * Connect to rcFinished(), then call requestShowUI(). Use it in the thread of the event loop that receives the
 * channel's messages; the first instance() also makes the RecentCall_MsgClient of the process. Requests and messages
 * print debug lines: see platform/QuietTrace.h.
 *
 * The order of the virtual operations is part of the interface: a caller that loads the library at run time gets the
 * object from RC_CreateMsgInterface() and calls them through it, without any other symbol.
 */
class ZYN_EXPORT RC_MsgInterface : public QObject
{
    Q_OBJECT

public:
    /// The shared object, created by the first call. The library owns it.
    static RC_MsgInterface* instance();
    /// Deletes the object, with its connections; the next instance() creates another.
    static void destruction();

    ~RC_MsgInterface() override;

    /**
     * Asks for @p page of the screens. Always true, whether or not the screens run.
     *
     * Every call connects anew to the picker: after n calls, one closing of it emits rcFinished() n times.
     */
    bool requestShowUI(RC_PAGE_ID_T page);
    /// Asks for the details of the call at @p index of @p category, counted as the screens count. Always true, whether
    /// or not the screens run.
    bool showRecordDetail(int index, RC_CALL_CATEGORY_T category);
    /// Asks the screens to hide; false when the request could not be sent.
    bool hideUI();

    /// The same as requestShowUI().
    virtual bool dlopenrequestShowUI(RC_PAGE_ID_T page);
    /// The same as hideUI().
    virtual bool dlopenHideUI();

Q_SIGNALS:
    /// The screens' number picker has closed; @p number is null when none was selected.
    void rcFinished(bool selected, const QString& number);

private Q_SLOTS:
    void slotExitPicker(bool selected, const QString& number);

private:
    RC_MsgInterface();
};

/// RC_MsgInterface::instance(), under a symbol name that a run-time loader can find.
extern "C" ZYN_EXPORT RC_MsgInterface* RC_CreateMsgInterface();
