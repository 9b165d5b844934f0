// The services that the phone needs: which of them do not run, and those that this program runs.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <memory>
#include <vector>

namespace zyn::window {

/**
 * Starts the services that do not run, from the folder of this program, and ends those that it has started.
 *
 * A service that runs already, whoever has started it, is left alone. Until start() or check() is called, nothing is
 * known, and nothing is told to be wrong. Used in the thread of the user interface.
 */
class Services : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// Which services do not run, for people; empty when all do.
    Q_PROPERTY(QString fault READ fault NOTIFY faultChanged FINAL)

public:
    explicit Services(QObject* parent = nullptr);
    ~Services() override;

    QString fault() const { return m_fault; }

    /// Starts what does not run. Whether that serves is told by started(), or by the fault.
    Q_INVOKABLE void start();
    /// Looks again at what runs.
    Q_INVOKABLE void check();

    /// Waits at most @p patience until what start() has started serves.
    void waitUntilServed(std::chrono::milliseconds patience);

Q_SIGNALS:
    void faultChanged();
    /// A service that was started here serves.
    void started();

private:
    struct Service;

    void launch(Service& service);

    std::vector<std::unique_ptr<Service>> m_services;
    QString m_fault;
};

} // namespace zyn::window
