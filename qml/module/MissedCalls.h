// The missed calls in numbers.
#pragma once

#include "qml/module/CallLogReader.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariant>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace zyn::qml {

/**
 * How many missed calls there are, and how many of them the user has not seen.
 *
 *     Badge { visible: MissedCalls.unread > 0; text: MissedCalls.unread }
 *     Label { text: MissedCalls.last ? MissedCalls.last.number : "" }
 *
 * It follows the log as RecentCallsModel does. While the service does not answer, what was true stays.
 */
class MissedCalls : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// How many missed calls the log has; -1 until that is known.
    Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
    /// How many of them the user has not seen; -1 until that is known.
    Q_PROPERTY(int unread READ unread NOTIFY unreadChanged FINAL)
    /// The newest of them: its `number`, `name` and `start`. Undefined without one.
    Q_PROPERTY(QVariant last READ last NOTIFY lastChanged FINAL)
    /// Whether all this is known.
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY loadedChanged FINAL)
    /// Why the service's last answer is missing, for people; empty when it answered.
    Q_PROPERTY(QString error READ error NOTIFY errorChanged FINAL)

public:
    explicit MissedCalls(QObject* parent = nullptr);

    int count() const { return m_facts.count; }
    int unread() const { return m_facts.unread; }
    QVariant last() const { return m_facts.last; }
    bool isLoaded() const { return m_facts.count >= 0; }
    QString error() const { return m_error; }

    /// Counts the calls again.
    Q_INVOKABLE void reload();

Q_SIGNALS:
    void countChanged();
    void unreadChanged();
    void lastChanged();
    void loadedChanged();
    void errorChanged();

private:
    struct Facts
    {
        int count = -1;
        int unread = -1;
        QVariant last;
    };

    void take(const CallLogReader::Calls& calls);
    static Facts factsOf(const std::vector<PHONE_ENG_RecentCall>& calls);

    CallLogReader m_reader;
    Facts m_facts;
    QString m_error;
};

} // namespace zyn::qml
