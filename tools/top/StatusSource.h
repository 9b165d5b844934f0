// What the phone server tells of the phone's state.
#pragma once

#include "tools/top/PhoneState.h"
#include "utility/PHONE_MsgClient.h"

namespace zyn::tool {

/// Keeps the state up to date from the messages of the phone channel, for as long as it lives.
class StatusSource : public PHONE_MsgClient
{
public:
    /// @p state is not owned.
    explicit StatusSource(PhoneState& state);

    void receive(const QCString& message, const QByteArray& data) override;

private:
    /// Shows what @p signal brings, one number, truth or text.
    template<typename Argument>
    void follow(void (PHONE_MsgClient::*signal)(Argument), Item item);
    /// Shows, at @p item, @p event and when it came.
    void followEvent(void (PHONE_MsgClient::*signal)(), Item item, const char* event, bool isAlert = false);
    void followNames();
    void followCounters();

    PhoneState& m_state;
};

} // namespace zyn::tool
