// A connection to the phone server's control socket.
#include "tools/zynphone/PhoneConnection.h"

#include "platform/CommandFrame_p.h"
#include "platform/Socket_Command.h"
#include "platform/posix/UnixSocket_p.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QFile>

#include <cstring>
#include <memory>

using namespace Qt::StringLiterals;

namespace zyn::tool {

PhoneConnection::PhoneConnection()
    : m_socket(posix::connectUnix(QFile::encodeName(m_path), kCommandTimeout))
{
    if (!m_socket.isValid() || !posix::isPeerTrusted(m_socket.get()))
        throw serviceError(u"phone server"_s, m_path);
}

QByteArray PhoneConnection::ask(phonecontrol::Command command, phonecontrol::Reply expected, const QByteArray& data)
{
    UTIL_CommandBody body;
    body.commandId = command;
    body.dataLength = static_cast<int>(data.size());
    body.AllocateDataBuffer();
    std::memcpy(commandData(body).data(), data.constData(), commandData(body).size());
    if (Socket_WriteCommand(m_socket.get(), &body) < 0)
        throw serviceError(u"phone server"_s, m_path);
    return next(expected);
}

QByteArray PhoneConnection::next(phonecontrol::Reply expected)
{
    const std::unique_ptr<UTIL_CommandBody> reply(Socket_ReadCommand(m_socket.get()));
    if (!reply && posix::waitUntilClosed(m_socket.get(), posix::Clock::now()))
        throw failure(u"the phone server closed the connection"_s);
    if (!reply)
        throw noAnswerError(u"phone server"_s, m_path);
    const std::span<std::byte> bytes = commandData(*reply);
    QByteArray data(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
    if (reply->commandId == phonecontrol::Refused)
        throw failure(QString::fromUtf8(data));
    if (reply->commandId != expected)
        throw failure(u"the phone server at %1 gave an answer that no phone server gives"_s.arg(m_path));
    return data;
}

} // namespace zyn::tool
