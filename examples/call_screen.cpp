// The call screen: shows that there is a call, that it is connected, and how the log has it when it is over.
//
// On a desk: zynphone run -- sh call_screen_test.sh call_screen
// or:        zyn-recentcalld & zyn-phoned & call_screen &
//            zynphone phone incoming 0301112222
#include <QtCore/QCoreApplication>

#include <recentcall/utility/RC_Interface.h>
#include <utility/PHONE_MsgClient.h>

#include "Screen.h"

namespace {

/// The phone announces each change of a call but not which call: number and outcome come from the log, afterwards.
class CallScreen
{
public:
    explicit CallScreen(Screen& screen)
        : m_screen(screen)
    {
        QObject::connect(&m_phone, &PHONE_MsgClient::signalVoiceCallStatChanged, &m_phone, [this] { change(); });
        QObject::connect(&m_phone, &PHONE_MsgClient::signalCurrentConnectedDuration, &m_phone,
                         [this](bool isConnected) { connected(isConnected); });
        isLogged(); // what was before is no news
        m_screen.show(QStringLiteral("no call"));
    }

private:
    void change()
    {
        const bool isOver = isLogged();
        if (isOver)
            m_screen.show(m_calls.first()->getPhoneNumber() + outcome(m_calls.first()->getCategory()));
        else if (!m_isCall)
            m_screen.show(QStringLiteral("a call"));
        m_isCall = !isOver;
    }

    void connected(bool isConnected)
    {
        if (isConnected)
            m_screen.show(QStringLiteral("connected"));
    }

    /// Whether the log has a call that it did not have before, which is then the first one.
    bool isLogged()
    {
        if (RC_Interface().getRecordList(m_calls, RC_CALL_CATEGORY_ALL, RC_CALL_TYPE_VOICE) != 0) {
            m_screen.show(QStringLiteral("the log cannot be read"));
            return false;
        }
        const int before = m_newest;
        m_newest = m_calls.isEmpty() ? kNone : m_calls.first()->getUID();
        return m_newest != before && m_newest != kNone;
    }

    static QString outcome(RC_CALL_CATEGORY_T category)
    {
        switch (category) {
        case RC_CALL_CATEGORY_MISSED:
            return QStringLiteral(" missed");
        case RC_CALL_CATEGORY_ANSWERED:
            return QStringLiteral(" answered");
        default:
            return QStringLiteral(" dialed");
        }
    }

    static constexpr int kNone = -1; ///< the log's own numbers begin with 0

    Screen& m_screen;
    PHONE_MsgClient m_phone;
    QPtrList<RC_RecordInterface> m_calls;
    int m_newest = kNone;
    bool m_isCall = false;
};

} // namespace

int main(int argc, char** argv)
{
    Screen screen;
    const QCoreApplication application(argc, argv);
    const CallScreen callScreen(screen);
    return QCoreApplication::exec();
}
