// The recent-call screens, for applications.
#include "recentcall/utility/RC_MsgInterface.h"

#include "recentcall/utility/RecentCall_MsgClient.h"

#include <QtCore/QPointer>

#include <cstdio>
#include <utility>

namespace {

/// Not ended with the process: by then the channels may be gone.
RC_MsgInterface* s_msgInterface = nullptr;

QPointer<RecentCall_MsgClient> s_client;

/// The client of the process; the next one once that is destroyed.
RecentCall_MsgClient* client()
{
    if (!s_client)
        s_client = RecentCall_MsgClient::instance();
    return s_client;
}

bool askForPage(RC_MsgInterface* asking, void (RC_MsgInterface::*pickerExit)(bool, const QString&), RC_PAGE_ID_T page)
{
    QObject::connect(client(), &RecentCall_MsgClient::signalExitPicker, asking, pickerExit);
    RecentCall_Msg::requestShowPage(page);
    return true;
}

} // namespace

RC_MsgInterface* RC_MsgInterface::instance()
{
    if (!s_msgInterface)
        s_msgInterface = new RC_MsgInterface;
    client();
    return s_msgInterface;
}

void RC_MsgInterface::destruction()
{
    delete std::exchange(s_msgInterface, nullptr);
}

RC_MsgInterface::RC_MsgInterface() = default;

RC_MsgInterface::~RC_MsgInterface() = default;

bool RC_MsgInterface::requestShowUI(RC_PAGE_ID_T page)
{
    std::printf("go to page:%d", page);
    return askForPage(this, &RC_MsgInterface::slotExitPicker, page);
}

bool RC_MsgInterface::dlopenrequestShowUI(RC_PAGE_ID_T page)
{
    std::printf("dlopen go to page:%d", page);
    return askForPage(this, &RC_MsgInterface::slotExitPicker, page);
}

bool RC_MsgInterface::showRecordDetail(int index, RC_CALL_CATEGORY_T category)
{
    std::printf("go to detail %d", index);
    RecentCall_Msg::showRecordDetail(index, category);
    return true;
}

bool RC_MsgInterface::hideUI()
{
    return RecentCall_Msg::requestHideUI();
}

bool RC_MsgInterface::dlopenHideUI()
{
    return RecentCall_Msg::requestHideUI();
}

void RC_MsgInterface::slotExitPicker(bool selected, const QString& number)
{
    std::printf("emit singal  rcFinished:%d,%s", selected ? 1 : 0, number.toLatin1().constData());
    Q_EMIT rcFinished(selected, number);
}

RC_MsgInterface* RC_CreateMsgInterface()
{
    std::printf("about to create RC_MsgInterface");
    RC_MsgInterface* const interface = RC_MsgInterface::instance();
    std::printf("created RC_MsgInterface");
    return interface;
}
