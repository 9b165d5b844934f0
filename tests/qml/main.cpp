// Runs the tests of the QML module and of the window, which are written in QML, with a handset that they may break.
#include "tests/support/Tool.h"

#include <QtCore/QTemporaryDir>
#include <QtQml/QQmlEngine>
#include <QtQuickTest/quicktest.h>

#include <sys/stat.h>

namespace {

/// The handset of the tests: its services, and the tool. QML knows it as TestHandset, of ZynPhone.Testing.
class TestHandset : public QObject
{
    Q_OBJECT

public:
    ~TestHandset() override { stopAll(); }

    /// Starts @p service, for example "zyn-phoned", with the words of @p options, and waits until it serves.
    Q_INVOKABLE bool start(const QString& service, const QString& options = {})
    {
        ServiceProcess& process = m_services[service];
        return process.start(qPrintable(QStringLiteral(ZYN_PROGRAMS "/") + service), options);
    }
    /// Ends @p service in the way that a user ends it.
    Q_INVOKABLE void stop(const QString& service) { m_services.erase(service); }
    Q_INVOKABLE void kill(const QString& service)
    {
        m_services[service].stop(SIGKILL);
        m_services.erase(service);
    }
    /// Keeps @p service from answering until it is to go on.
    Q_INVOKABLE void pause(const QString& service) { m_services[service].tell(SIGSTOP); }
    Q_INVOKABLE void resume(const QString& service) { m_services[service].tell(SIGCONT); }
    Q_INVOKABLE void stopAll() { m_services.clear(); }

    /// What `zynphone` prints with the words of @p line, of which '' is an empty one and %20 a blank, and its exit
    /// code.
    Q_INVOKABLE QString tool(const QString& line) { return tool::run(tool::words(line)); }
    /// The same for many lines, which all are to succeed; the first that does not, and what it printed.
    Q_INVOKABLE QString tools(const QStringList& lines)
    {
        for (const QString& line : lines) {
            if (const QString output = tool(line); !output.endsWith(QLatin1String("exit 0")))
                return line + QStringLiteral(": ") + output;
        }
        return {};
    }

private:
    /// A service that is ended with this object.
    struct Service : ServiceProcess
    {
        ~Service()
        {
            tell(SIGCONT);
            stop();
        }
    };

    std::map<QString, Service> m_services;
};

/// What each file of tests gets.
class Setup : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void qmlEngineAvailable(QQmlEngine* engine) // NOLINT(readability-convert-member-functions-to-static): a slot
    {
        engine->addImportPath(QStringLiteral(ZYN_QML));
        engine->addImportPath(QStringLiteral(":/qt/qml"));
        qmlRegisterSingletonType<TestHandset>("ZynPhone.Testing", 1, 0, "TestHandset",
                                              [](QQmlEngine*, QJSEngine*) { return new TestHandset; });
    }
};

} // namespace

int main(int argc, char** argv)
{
    ::umask(S_IRWXG | S_IRWXO);
    const QTemporaryDir folder;
    qputenv("ZYN_APP_WRITE_PATH", folder.path().toLocal8Bit());
    qputenv("ZYN_LOCAL_APP_WRITE_PATH", folder.path().toLocal8Bit());
    qputenv("LC_ALL", "C.UTF-8");
    qputenv("TZ", "Europe/Berlin");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qputenv("QT_QUICK_BACKEND", "software");
    }
    Setup setup;
    return quick_test_main_with_setup(argc, argv, "qml", nullptr, &setup);
}

#include "main.moc"
