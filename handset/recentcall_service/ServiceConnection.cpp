// One client of the recent-call service.
#include "handset/recentcall_service/ServiceConnection.h"

#include "handset/recentcall_service/Announcement.h"
#include "recentcall/utility/PlainBytes_p.h"
#include "utility/PHONE_CommandSocket_p.h"

#include <iterator>

namespace zyn::handset {

namespace rc = zyn::recentcall;
using zyn::CommandFrameHeader;
using zyn::toPlain;
const CommandRow<ServiceConnection> ServiceConnection::kCommands[] = {
    {zyn::kGreetingCommand, sizeof(int32_t), &ServiceConnection::greet},
    {rc::ListRecords, sizeof(rc::Selection), &ServiceConnection::list},
    {rc::AddRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::add},
    {rc::DeleteRecord, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::remove},
    {rc::DeleteAll, sizeof(rc::Selection), &ServiceConnection::removeAll},
    {rc::MarkRead, sizeof(PHONE_ENG_RecentCall), &ServiceConnection::markRead},
};

ServiceConnection::ServiceConnection(zyn::posix::UniqueFd socket, CallLog& calls, std::chrono::milliseconds patience)
    : CommandConnection(std::move(socket), sizeof(PHONE_ENG_RecentCall), patience)
    , m_calls(calls)
{}

bool ServiceConnection::admits(const CommandFrameHeader& header)
{
    const CommandRow<ServiceConnection>* command = rowFor(kCommands, header);
    if (!command) {
        refuse(QStringLiteral("sent what is no command"));
        return false;
    }
    const bool isGreeting = command == std::begin(kCommands);
    if (isGreeting == m_isGreeted) {
        refuse(m_isGreeted ? QStringLiteral("sent a second greeting")
                           : QStringLiteral("sent a command before its greeting"));
        return false;
    }
    return true;
}

void ServiceConnection::carryOut(const CommandFrameHeader& header, std::span<const std::byte> data)
{
    (this->*rowFor(kCommands, header)->carryOut)(data);
    if (m_calls.takeMissedChange())
        announceMissedCalls();
}

void ServiceConnection::greet(std::span<const std::byte> data)
{
    m_isGreeted = toPlain<int32_t>(data) == 0;
    if (!m_isGreeted)
        refuse(QStringLiteral("sent a greeting of another kind"));
}

void ServiceConnection::list(std::span<const std::byte> data)
{
    const auto records = m_calls.list(toPlain<rc::Selection>(data));
    send(records ? rc::Success : rc::Failure, records.value_or(QByteArray()));
}

void ServiceConnection::add(std::span<const std::byte> data)
{
    m_calls.add(toPlain<PHONE_ENG_RecentCall>(data));
}

void ServiceConnection::remove(std::span<const std::byte> data)
{
    send(m_calls.remove(toPlain<PHONE_ENG_RecentCall>(data)));
}

void ServiceConnection::removeAll(std::span<const std::byte> data)
{
    send(m_calls.removeAll(toPlain<rc::Selection>(data)));
}

void ServiceConnection::markRead(std::span<const std::byte> data)
{
    send(m_calls.markRead(toPlain<PHONE_ENG_RecentCall>(data)));
}

} // namespace zyn::handset
