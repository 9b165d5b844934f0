// Runs the tests of the QML module and of the window, which are written in QML, with a handset that they may break.
#include "handset/phone_server/PhoneControl.h"
#include "platform/CommandFrame_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RC_Interface.h"
#include "tests/support/Tool.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuickTest/quicktest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace {

/// The environment variable that names the folder of the handset's files.
constexpr char kFolder[] = "ZYN_APP_WRITE_PATH";

/// Plays a phone server that sends what no phone server sends: to each client the same, as soon as it comes.
class PlayedPhoneServer
{
public:
    /// @param sent      what a client gets
    /// @param hangsUp   whether its connection is closed behind that
    PlayedPhoneServer(QByteArray sent, bool hangsUp)
        : m_sent(std::move(sent))
        , m_hangsUp(hangsUp)
        , m_listener(zyn::posix::listenUnix(QFile::encodeName(zyn::phonecontrol::socketPath()), S_IRUSR | S_IWUSR))
        , m_readable(m_listener.get(), QSocketNotifier::Read)
    {
        QObject::connect(&m_readable, &QSocketNotifier::activated, &m_readable, [this] { serve(); });
    }
    ~PlayedPhoneServer() { QFile::remove(QLatin1String(zyn::phonecontrol::kSocketPath)); }

    bool isListening() const { return m_listener.isValid(); }

private:
    void serve()
    {
        using namespace zyn::posix;
        UniqueFd client = acceptConnection(m_listener.get());
        const std::span sent(m_sent.constData(), static_cast<size_t>(m_sent.size()));
        sendAll(client.get(), std::as_bytes(sent), {}, Clock::now() + std::chrono::milliseconds(role::kTimeout));
        if (!m_hangsUp)
            m_clients.push_back(std::move(client));
    }

    const QByteArray m_sent;
    const bool m_hangsUp;
    const zyn::posix::UniqueFd m_listener;
    QSocketNotifier m_readable;
    std::vector<zyn::posix::UniqueFd> m_clients;
};

/// The handset of the tests: its services, and the tool. QML knows it as TestHandset, of ZynPhone.Testing.
class TestHandset : public QObject
{
    Q_OBJECT
    /// The source tree.
    Q_PROPERTY(QString source READ source CONSTANT)
    /// The folder of the module ZynPhone.
    Q_PROPERTY(QString module READ module CONSTANT)

public:
    ~TestHandset() override { stopAll(); }

    static QString source() { return QStringLiteral(ZYN_SOURCE_DIR); }
    static QString module() { return QStringLiteral(ZYN_QML "/ZynPhone"); }

    /// The names of the files in @p folder.
    Q_INVOKABLE QStringList filesIn(const QString& folder) { return QDir(folder).entryList(QDir::Files); }
    /// What the file @p path holds.
    Q_INVOKABLE QString text(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

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

    /// The environment variable @p name.
    Q_INVOKABLE QString variable(const QString& name) { return qEnvironmentVariable(qPrintable(name)); }

    /// Adds calls that begin now to the log, each a list of its category, its number and, if it is no voice call, its
    /// type.
    Q_INVOKABLE bool addCalls(const QVariantList& calls)
    {
        return std::ranges::all_of(calls, [](const QVariant& call) {
            const QVariantList parts = call.toList();
            RC_RecordInterfaceImpl record(parts.value(1).toString(), QDateTime::currentDateTime(), 0);
            record.setCategory(RC_CALL_CATEGORY_T{parts.value(0).toInt()});
            record.setCallType(RC_CALL_TYPE_T{parts.value(2, int{RC_CALL_TYPE_VOICE}).toInt()});
            return RC_Interface().addRecord(record) == 0;
        });
    }
    /// Deletes the calls of all lists and of the types that have names.
    Q_INVOKABLE bool clearCalls()
    {
        constexpr RC_CALL_TYPE_T kTypes[] = {RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};
        return std::ranges::all_of(kTypes, [](RC_CALL_TYPE_T type) {
            return RC_Interface().deleteRecordAll(RC_CALL_CATEGORY_ALL, type) == 0;
        });
    }
    /// Adds a push-to-talk call of a group with what no command of the tool sets, and the mark for strict read.
    Q_INVOKABLE bool addPttCall(int list, const QString& number, const QDateTime& start, int partyType, int idType)
    {
        RC_RecordInterfaceImpl record(number, start, 0);
        record.setCallType(RC_CALL_TYPE_PTT2);
        record.setCategory(RC_CALL_CATEGORY_T{list});
        record.setCompletedStatus(true);
        record.setPttPartyType(RC_PTT_PARTY_TYPE_T{partyType});
        record.setPttIDType(RC_PTT_ID_T{idType});
        record.getData()->readFlags = PHONE_ENG_RecentCall::kStrictRead;
        return RC_Interface().addRecord(record) == 0;
    }

    /// Makes the object of @p source in an engine of its own, and ends that when the object's `done` is true.
    Q_INVOKABLE bool runElsewhere(const QString& source)
    {
        QQmlEngine engine;
        engine.addImportPath(QStringLiteral(ZYN_QML));
        QQmlComponent component(&engine);
        component.setData(source.toUtf8(), {});
        const std::unique_ptr<QObject> object(component.create());
        return object && QTest::qWaitFor([&object] { return object->property("done").toBool(); }, role::kTimeout);
    }

    /// @{ A file below the folder of the handset's files, for example "setup/zyn_app4.cfg". Its folder is made as
    /// needed.
    Q_INVOKABLE bool writeBytes(const QString& name, const QString& latin1)
    {
        QFile file(path(name));
        QDir().mkpath(QFileInfo(file).path());
        return file.open(QIODevice::WriteOnly) && file.write(latin1.toLatin1()) == latin1.size();
    }
    /// Writes it in UTF-8, and gives its URL; none when that fails.
    Q_INVOKABLE QUrl write(const QString& name, const QString& text)
    {
        return writeBytes(name, QString::fromLatin1(text.toUtf8())) ? QUrl::fromLocalFile(path(name)) : QUrl();
    }
    /// Makes a folder where a file is expected.
    Q_INVOKABLE bool block(const QString& name) { return remove(name) && QDir().mkpath(path(name)); }
    /// Removes a file, or a folder with all that is in it.
    Q_INVOKABLE bool remove(const QString& name)
    {
        return QFileInfo(path(name)).isDir() ? QDir(path(name)).removeRecursively()
                                             : !exists(name) || QFile::remove(path(name));
    }
    Q_INVOKABLE bool move(const QString& from, const QString& to) { return QFile::rename(path(from), path(to)); }
    Q_INVOKABLE bool exists(const QString& name) { return QFileInfo::exists(path(name)); }
    Q_INVOKABLE double size(const QString& name) { return static_cast<double>(QFileInfo(path(name)).size()); }
    /// @}

    /// How often something happens in or to @p folder in @p time milliseconds.
    Q_INVOKABLE int changesOf(const QString& folder, int time)
    {
        int count = 0;
        const QFileSystemWatcher watcher({folder});
        connect(&watcher, &QFileSystemWatcher::directoryChanged, this, [&count] { ++count; });
        QTest::qWait(time);
        return count;
    }

    /// Plays a phone server that sends @p frames to each client. A frame has a `code` and `data`, and a `length` if
    /// that is to lie.
    Q_INVOKABLE bool playPhone(const QVariantList& frames, bool hangsUp)
    {
        QByteArray sent;
        for (const QVariant& frame : frames) {
            const QVariantMap parts = frame.toMap();
            const QByteArray data = parts.value(QStringLiteral("data")).toString().toUtf8();
            const int length = parts.value(QStringLiteral("length"), int(data.size())).toInt();
            const auto header = zyn::CommandFrameHeader{parts.value(QStringLiteral("code")).toInt(), length}.encode();
            sent += QByteArray(reinterpret_cast<const char*>(header.data()), header.size()) + data;
        }
        m_played = std::make_unique<PlayedPhoneServer>(sent, hangsUp);
        return m_played->isListening();
    }
    Q_INVOKABLE void stopPlaying() { m_played.reset(); }

private:
    static QString path(const QString& name) { return qEnvironmentVariable(kFolder) + QLatin1Char('/') + name; }

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
    std::unique_ptr<PlayedPhoneServer> m_played;
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
    qputenv(kFolder, folder.path().toLocal8Bit());
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
