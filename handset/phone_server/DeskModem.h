// The network of a desk, which somebody plays: calls that are placed go on by themselves.
#pragma once

#include "handset/phone_server/Modem.h"

#include <QtCore/QTimer>

#include <chrono>

namespace zyn::handset {

/// The delays of the network that is played.
struct CallPace
{
    std::chrono::milliseconds step; ///< from dialing to alerting, and from there to connected
    std::chrono::milliseconds talk; ///< until the other party of a placed call hangs up
};

/// Does at once what it is asked to. A placed call proceeds at its pace; one that has come waits for what happens to
/// it.
class DeskModem : public Modem
{
    Q_OBJECT

public:
    explicit DeskModem(CallPace pace);

    QString obstacle(const Request& request) const override;
    size_t callsAtOnce() const override { return 1; }
    void dial(int id, const Request& request) override;
    bool carryOut(int id, CallEvent event) override;
    void sendTone(int /*id*/, QChar /*key*/) override {}
    void setRadio(bool isOn) override;
    bool hasRadio() const override { return m_hasRadio; }
    void unlock(const Codes& codes, const Result& then) override;
    QJsonObject describe() const override;
    bool takesLanguage() const override { return true; }
    bool isPlayed() const override { return true; }

private:
    void goOn(CallEvent event);

    const CallPace m_pace;
    CallStateMachine m_course = CallStateMachine::placed(); ///< that of the placed call
    int m_placed = 0;                                       ///< its id
    bool m_hasRadio = true;
    QTimer m_next;
};

} // namespace zyn::handset
