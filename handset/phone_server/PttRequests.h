// Carries out the requests for push-to-talk calls.
#pragma once

#include "platform/QCopChannel.h"

namespace zyn::handset {

class PhoneLine;

/// Listens to the push-to-talk channel, and starts and ends push-to-talk calls; the first party is the one
/// that is called.
class PttRequests : public QCopChannel
{
    Q_OBJECT

public:
    explicit PttRequests(PhoneLine& line);

    void receive(const QCString& message, const QByteArray& data) override;

private:
    void makeCall(const QByteArray& data);
    void dropCall();

    PhoneLine& m_line;
};

} // namespace zyn::handset
