// The calls of the line, and requests to place, answer and end them.
#pragma once

#include "qml/module/FetchedListModel.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <cstdint>
#include <memory>

namespace zyn::qml {

class CallsModel;
class PhoneControlClient;

/**
 * The calls of the phone server's line.
 *
 *     ListView {
 *         model: PhoneCalls.calls
 *         delegate: Button {
 *             required property int callId
 *             required property string number
 *             text: number
 *             onClicked: PhoneCalls.answer(callId)
 *         }
 *     }
 *     Button { text: qsTr("Call"); onClicked: PhoneCalls.dial("0301112222", "Dora") }
 *
 * A call that is over shows its last state, Ended, Missed or Failed, and leaves the list right behind that: a delegate
 * gets its change, and callOver() tells of it. Nothing here waits for the phone server, which may come and go.
 */
class PhoneCalls : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /**
     * The calls on the line; a list with the roles `callId`, `number`, `name`, `type` ("voice" or "ptt"), `direction`
     * (Direction), `state` (State) and `since` (when it came to that state). Its `error` tells why it is not known.
     */
    Q_PROPERTY(zyn::qml::FetchedListModel* calls READ calls CONSTANT FINAL)
    /// Whether the phone server tells its calls.
    Q_PROPERTY(bool available READ isAvailable NOTIFY availableChanged FINAL)
    /// Whether somebody calls, and waits for an answer.
    Q_PROPERTY(bool ringing READ isRinging NOTIFY ringingChanged FINAL)

public:
    /// Who calls.
    enum Direction : uint8_t { Incoming, Outgoing };
    Q_ENUM(Direction)

    /// What a call has come to.
    enum State : uint8_t {
        Dialing,   ///< the network looks for the other party
        Alerting,  ///< the other party's telephone rings
        Ringing,   ///< somebody calls, and this telephone rings
        Waiting,   ///< somebody calls while there is another call
        Connected, ///< the parties talk
        Held,      ///< the other party waits
        Ended,     ///< over: either side has hung up
        Missed,    ///< over: nobody answered
        Failed,    ///< over: the network did not put it through
    };
    Q_ENUM(State)

    explicit PhoneCalls(QObject* parent = nullptr);
    ~PhoneCalls() override;

    FetchedListModel* calls() const;
    bool isAvailable() const;
    bool isRinging() const { return m_isRinging; }

    /**
     * @{ Asks for a call to @p number: as the settings have it, as it is, or with the prefix in front. @p name is shown
     * instead of the number. False, with failed(), unless the number is 1 to 41 characters of Latin-1. Whether there
     * will be a call, the list tells.
     */
    Q_INVOKABLE bool dial(const QString& number, const QString& name = {});
    Q_INVOKABLE bool dialDirectly(const QString& number);
    Q_INVOKABLE bool dialPrepended(const QString& number);
    /// @}
    /// Asks to end the call that is talked on, or placed.
    Q_INVOKABLE void hangUp();
    /// Answers the call @p callId, or with 0 the one that rings. failed() tells that it did not happen, and why.
    Q_INVOKABLE void answer(int callId = 0);
    /// Ends or rejects the call @p callId, likewise.
    Q_INVOKABLE void end(int callId);

Q_SIGNALS:
    void availableChanged();
    void ringingChanged();
    /// The call @p callId has left the list; @p state is its last.
    void callOver(int callId, const QString& number, const QString& name, int state);
    /// A request was refused: @p reason tells people why.
    void failed(const QString& reason);

private:
    QByteArray dialable(const QString& number);
    void say(const QStringList& words);
    void noteRinging();

    const std::shared_ptr<PhoneControlClient> m_client;
    CallsModel* const m_calls; ///< a child of this object
    bool m_isRinging = false;
};

} // namespace zyn::qml
