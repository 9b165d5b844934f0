// The Java runtime's client of the phone server.
#pragma once

#include "utility/PHONE_VoiceCallConnection_p.h"

#include <QtCore/QObject>

/// The connection of the Java runtime, of which a process has one at most.
class JavaPrivateData : public QObject
{
    Q_OBJECT

public:
    using Callback = void (*)(char);

    /// @param socket    connected and registered; the client owns it
    /// @param callback  called with the low 8 bits of each reply's code; it may delete the client
    JavaPrivateData(int socket, Callback callback);
    ~JavaPrivateData() override;

    zyn::VoiceCallConnection& connection() { return m_connection; }

public Q_SLOTS:
    /// Reads one reply; called when @p socket, which is the client's, has something to read.
    void ReadData(int socket);

private:
    zyn::VoiceCallConnection m_connection;
    Callback m_callback;
};
