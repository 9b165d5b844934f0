// A handset of its own: the services, running, in a place where nobody else meets them.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace zyn::tool {

/// A process that ends at the latest with this one, with the usual signals and descriptors.
class ChildProcess : public QProcess
{
public:
    /// @param prepare  called in the new process before it runs the program
    explicit ChildProcess(std::function<void()> prepare = {});
};

/**
 * The recent-call service, the favourites' owner and the phone server, from the folder of this program, with all their
 * files in one folder. The destructor ends them.
 *
 * Made in a private place, see enterPrivatePlace().
 */
class PrivateHandset : public QObject
{
    Q_OBJECT

public:
    /// @param folder  exists; the files and the logs of the services, their settings and their channels go there
    explicit PrivateHandset(const QString& folder);
    ~PrivateHandset() override;

    /// Starts the services and waits until they serve. Throws a CommandError if one does not.
    /// @param script  for the phone server, empty for none
    void start(const QString& script);

    /// The last lines that each service has written.
    QStringList logLines() const;

Q_SIGNALS:
    /// A service has ended by itself; @p text is a line that says so.
    void serviceEnded(const QString& text);

private:
    struct Service
    {
        QString name;
        std::unique_ptr<ChildProcess> process;
    };

    void startService(const QString& name, const QStringList& options);
    QString logPath(const QString& service) const;

    const QString m_folder;
    std::vector<Service> m_services;
};

} // namespace zyn::tool
