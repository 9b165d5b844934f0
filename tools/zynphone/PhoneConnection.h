// A connection to the phone server's control socket.
#pragma once

#include "handset/phone_server/PhoneControl.h"
#include "platform/posix/UniqueFd_p.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace zyn::tool {

/// A connection to the phone server's control socket.
class PhoneConnection
{
public:
    /// Throws a failure if there is no server.
    PhoneConnection();

    /// Asks for @p command, and returns the data of the answer @p expected. Throws a failure with the server's reason
    /// if it refuses, or if it does not answer.
    QByteArray ask(phonecontrol::Command command, phonecontrol::Reply expected, const QByteArray& data = {});
    /// The next answer, which must be @p expected.
    QByteArray next(phonecontrol::Reply expected);
    int descriptor() const { return m_socket.get(); }

private:
    const QString m_path = QLatin1String(phonecontrol::kSocketPath);
    posix::UniqueFd m_socket;
};

} // namespace zyn::tool
