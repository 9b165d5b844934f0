// One client of the recent-call service's socket.
#include "handset/recentcall_service/ServiceConnection.h"

#include "handset/common/Log.h"
#include "recentcall/utility/RecentCall_Msg.h"
#include "utility/PHONE_CommandSocket_p.h"

#include <iterator>

using namespace Qt::StringLiterals;

namespace zyn::handset {

namespace rc = recentcall;

void announceMissedCalls()
{
    if (!RecentCall_Msg::send(RecentCall_Msg::RECENTCALL_MSG_MISSEDCALL_UPDATE_S))
        log(u"a change of the missed calls could not be announced"_s);
}

const CommandRow<ServiceConnection> ServiceConnection::kCommands[] = {
    {kGreetingCommand, sizeof(int32_t), &ServiceConnection::greet},
    {rc::ListRecords, sizeof(rc::Selection), &ServiceConnection::list},
    {rc::AddRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::add},
    {rc::DeleteRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::remove},
    {rc::DeleteAll, sizeof(rc::Selection), &ServiceConnection::removeAll},
    {rc::MarkRead, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::markRead},
};

bool ServiceConnection::admits(const CommandFrameHeader& header)
{
    const CommandRow<ServiceConnection>* command = rowFor(kCommands, header);
    if (!command) {
        refuse(u"sent an invalid command"_s);
        return false;
    }
    const bool isGreeting = command == std::begin(kCommands);
    if (isGreeting == m_isGreeted) {
        refuse(m_isGreeted ? u"sent a second greeting"_s : u"sent a command before its greeting"_s);
        return false;
    }
    return true;
}

void ServiceConnection::execute(const CommandFrameHeader& header, Data data)
{
    (this->*rowFor(kCommands, header)->execute)(data);
    if (m_calls.fetchMissedChange())
        announceMissedCalls();
}

void ServiceConnection::greet(Data data)
{
    m_isGreeted = toPlain<int32_t>(data) == 0;
    if (!m_isGreeted)
        refuse(u"sent an unknown greeting"_s);
}

void ServiceConnection::list(Data data)
{
    const auto records = m_calls.list(toPlain<rc::Selection>(data));
    send(records ? rc::Success : rc::Failure, records.value_or(QByteArray()));
}

} // namespace zyn::handset
