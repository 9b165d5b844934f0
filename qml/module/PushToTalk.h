// Requests for push-to-talk calls.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtQml/qqmlregistration.h>

namespace zyn::qml {

/**
 * Asks the push-to-talk application for calls.
 *
 *     Button { text: qsTr("Talk to all"); onClicked: PushToTalk.call(["0301112222", "0303334444"]) }
 *
 * No result tells whether anybody got a request; PhoneCalls has the call if the phone server makes it.
 */
class PushToTalk : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    explicit PushToTalk(QObject* parent = nullptr);

    /// Asks for a call to all of @p numbers. False, with failed(), unless there are 1 to 25, none of them empty.
    Q_INVOKABLE bool call(const QStringList& numbers);
    /// Asks to end the call.
    Q_INVOKABLE void drop();

Q_SIGNALS:
    /// A request was refused: @p reason tells people why.
    void failed(const QString& reason);
};

} // namespace zyn::qml
