// Handles the requests of the phone channel and of the push-to-talk channel.
#pragma once

#include "platform/QCopChannel.h"
#include "utility/PHONE_Msg.h"

#include <cstdint>

namespace zyn::handset {

class PhoneLine;

/// Listens to the phone channel and answers each request with status messages.
class PhoneRequests : public PHONE_Msg
{
    Q_OBJECT

public:
    explicit PhoneRequests(PhoneLine& line);

    void receive(const QCString& message, const QByteArray& data) override;

private:
    struct Request;
    static const Request kRequests[];

    void setRadioMode(int32_t on);
    void setLanguage(int32_t language);
    void resetTotalDuration(int32_t kind);
    void reportTotals(int32_t unused);

    PhoneLine& m_line;
};

/// Listens to the push-to-talk channel; starts calls to the first party of a request, and ends them.
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
