// The settings of recent calls, and of placing calls.
#pragma once

#include "qml/module/FileWatch.h"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <functional>

namespace zyn::qml {

/**
 * The settings of recent calls, and the prefix of dialed numbers.
 *
 *     Label { text: qsTr("Keeps %1 missed calls").arg(RecentCallSettings.maxMissed) }
 *     Switch { checked: RecentCallSettings.prepend; onToggled: RecentCallSettings.prepend = checked }
 *
 * Until `loaded` is true, numbers and fixedDialing are -1 and the switches off. Changes by other processes are
 * followed. A switch changes when it has been stored; when it could not be, it stays, its change signal is emitted
 * nevertheless, so that controls show it again, and failed() says why.
 */
class RecentCallSettings : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    /// @{ How many calls each list, all of them together, and a view of frequent calls keep.
    Q_PROPERTY(int maxAnswered READ maxAnswered NOTIFY changed FINAL)
    Q_PROPERTY(int maxMissed READ maxMissed NOTIFY changed FINAL)
    Q_PROPERTY(int maxDialed READ maxDialed NOTIFY changed FINAL)
    Q_PROPERTY(int maxTotal READ maxTotal NOTIFY changed FINAL)
    Q_PROPERTY(int maxFrequent READ maxFrequent NOTIFY changed FINAL)
    /// @}
    /// The list that Send opens on the idle screen, as a category of RecentCallsModel; 5 is the view of frequent calls.
    Q_PROPERTY(int idleSendView READ idleSendView NOTIFY changed FINAL)
    /// How many calls and messages are logged of a favourite.
    Q_PROPERTY(int maxActivities READ maxActivities NOTIFY changed FINAL)
    /// Whether only fixed numbers may be dialed: 0 or 1, -1 when it is not known.
    Q_PROPERTY(int fixedDialing READ fixedDialing NOTIFY changed FINAL)
    /// Whether calls are shown on two lines.
    Q_PROPERTY(bool twoLineView READ twoLineView WRITE setTwoLineView NOTIFY twoLineViewChanged FINAL)
    /// Whether a prefix is put in front of dialed numbers.
    Q_PROPERTY(bool prepend READ prepend WRITE setPrepend NOTIFY prependChanged FINAL)
    /// Whether the settings have been read.
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY loadedChanged FINAL)
    /// Why the last request failed, for people; empty when it succeeded.
    Q_PROPERTY(QString error READ error NOTIFY errorChanged FINAL)

public:
    explicit RecentCallSettings(QObject* parent = nullptr);

    int maxAnswered() const { return m_values.maxAnswered; }
    int maxMissed() const { return m_values.maxMissed; }
    int maxDialed() const { return m_values.maxDialed; }
    int maxTotal() const { return m_values.maxTotal; }
    int maxFrequent() const { return m_values.maxFrequent; }
    int idleSendView() const { return m_values.idleSendView; }
    int maxActivities() const { return m_values.maxActivities; }
    int fixedDialing() const { return m_values.fixedDialing; }
    bool twoLineView() const { return m_values.twoLineView; }
    bool prepend() const { return m_values.prepend; }
    bool isLoaded() const { return m_isLoaded; }
    QString error() const { return m_error; }

    void setTwoLineView(bool on);
    void setPrepend(bool on);

    /// Reads the settings again.
    Q_INVOKABLE void reload();

Q_SIGNALS:
    void changed();
    void twoLineViewChanged();
    void prependChanged();
    void loadedChanged();
    void errorChanged();
    /// A request has failed: @p reason tells people why.
    void failed(const QString& reason);

private:
    /// What is stored; -1 for what is not known.
    struct Values
    {
        int maxAnswered = -1;
        int maxMissed = -1;
        int maxDialed = -1;
        int maxTotal = -1;
        int maxFrequent = -1;
        int idleSendView = -1;
        int maxActivities = -1;
        int fixedDialing = -1;
        bool twoLineView = false;
        bool prepend = false;

        bool operator==(const Values&) const = default;
    };
    static Values read();

    void show(const Values& values);
    void finish(const QString& error);
    void store(const std::function<bool()>& write, bool Values::*value, bool on,
               void (RecentCallSettings::*valueChanged)());

    FileWatch m_watch;
    Values m_values;
    bool m_isLoaded = false;
    QString m_error;
};

} // namespace zyn::qml
