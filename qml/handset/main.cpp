// zyn-handset: the handset on a screen.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/common/Log.h"
#include "qml/handset/Language.h"
#include "qml/handset/Services.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlApplicationEngine>
#include <QtQml/QQmlExtensionPlugin>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iterator>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

Q_IMPORT_QML_PLUGIN(ZynPhone_HandsetPlugin)

namespace handset = zyn::handset;
namespace window = zyn::window;

namespace {

const QString kPrivate = u"private"_s;
const QString kNoServices = u"no-services"_s;
const QString kTheme = u"theme"_s;
const QString kLanguage = u"language"_s;
const QString kPage = u"page"_s;

const QStringList kThemes{u"light"_s, u"dark"_s};
const QStringList kPages{u"idle"_s, u"recents"_s, u"dialer"_s, u"favourites"_s, u"pushToTalk"_s};

/// How long the window waits for the services that it starts, so that its lists are there when it appears.
constexpr std::chrono::seconds kPatience{5};

QString describe()
{
    return u"Shows the handset in a window: status, dialer, calls, recent calls, favourites and settings; and\n"
           "beside it a panel that plays the network, which is a drawer where the window is narrow.\n"
           "Starts the services that do not run, zyn-recentcalld, zyn-favourites and zyn-phoned, and ends\n"
           "those with the window. Options of Qt are given by its environment, such as QT_QPA_PLATFORM.\n"
           "\n"
           "Keys: digits are dialed, Enter presses, Tab goes on, Escape goes back; Alt+A answers, Alt+H\n"
           "hangs up, Alt+N shows the network."_s;
}

void addOptions(handset::CommandLine& commandLine)
{
    commandLine.add(QCommandLineOption(kPrivate, u"Have a handset of its own, as zynphone run gives it: with services, "
                                                 "calls and settings that nobody else meets."_s));
    commandLine.add(QCommandLineOption(kNoServices, u"Start no services: others do."_s));
    commandLine.add(QCommandLineOption(kTheme, u"Be light or dark, whatever the system is."_s, u"theme"_s), kThemes);
    commandLine.add(QCommandLineOption(kLanguage, u"Speak this language, such as de, not the system's."_s, u"code"_s));
    commandLine.add(QCommandLineOption(kPage,
                                       u"Begin with this screen: idle, recents, dialer, favourites or "
                                       "pushToTalk (idle)."_s,
                                       u"screen"_s, kPages.first()),
                    kPages);
}

/// Whether the option @p name, if it is given, has one of @p words; else that is logged.
bool isOneOf(const handset::CommandLine& commandLine, const QString& name, const QStringList& words)
{
    if (!commandLine.isSet(name) || words.contains(commandLine.value(name)))
        return true;
    handset::log(u"--%1 must be one of %2"_s.arg(name, words.join(u", "_s)));
    return false;
}

/// Whether there is something to show a window on; Qt itself would end the program with a crash.
bool hasScreen()
{
    constexpr const char* kNames[] = {"WAYLAND_DISPLAY", "DISPLAY", "QT_QPA_PLATFORM"};
    return std::any_of(std::begin(kNames), std::end(kNames),
                       [](const char* name) { return !qEnvironmentVariableIsEmpty(name); });
}

/// Becomes the tool that runs this program in a handset of its own; returns only if that fails.
int runPrivately(const handset::Output& output)
{
    const QDir folder(QCoreApplication::applicationDirPath());
    QStringList words{folder.filePath(u"zynphone"_s), u"run"_s, u"--"_s, QCoreApplication::applicationFilePath()};
    for (const QString& word : QCoreApplication::arguments().mid(1)) {
        if (word != u"--"_s + kPrivate)
            words += word;
    }
    std::vector<QByteArray> texts;
    std::vector<char*> arguments;
    arguments.reserve(static_cast<size_t>(words.size()) + 1);
    for (const QString& word : words)
        texts.push_back(QFile::encodeName(word));
    for (QByteArray& text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);
    // The tool gets the standard output that this program was started with.
    ::dup2(output.descriptor(), STDOUT_FILENO);
    ::execv(arguments.front(), arguments.data());
    handset::log(u"cannot run %1"_s.arg(words.first()));
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    handset::Output output;
    handset::CommandLine commandLine(describe(), &output);
    addOptions(commandLine);
    {
        // Help and mistakes need no screen.
        const handset::Application application(argc, argv, u"zyn-handset"_s);
        if (!commandLine.parse() || !isOneOf(commandLine, kTheme, kThemes) || !isOneOf(commandLine, kPage, kPages))
            return handset::kUsageError;
        if (!hasScreen()) {
            handset::log(u"there is no screen: WAYLAND_DISPLAY, DISPLAY or QT_QPA_PLATFORM names one"_s);
            return EXIT_FAILURE;
        }
        if (commandLine.isSet(kPrivate))
            return runPrivately(output);
    }
    ::umask(S_IRWXG | S_IRWXO);
    const QGuiApplication application(argc, argv);
    const handset::TerminationSignals signalsThatEnd;
    const window::Language language(commandLine.value(kLanguage));

    window::Services services;
    QQmlApplicationEngine engine;
    const QString folder = QCoreApplication::applicationDirPath();
    engine.addImportPath(folder + u"/" ZYN_QML_FROM_PROGRAMS ""_s);
    engine.addImportPath(folder + u"/../qml"_s);
    engine.addImportPath(u":/qt/qml"_s);
    if (!commandLine.isSet(kNoServices)) {
        services.start();
        services.waitUntilServed(kPatience);
    }
    engine.setInitialProperties({{kTheme, commandLine.value(kTheme)},
                                 {kPage, commandLine.value(kPage)},
                                 {u"services"_s, QVariant::fromValue(&services)}});
    engine.load(QUrl(u"qrc:/qt/qml/ZynPhone/Handset/Main.qml"_s));
    if (engine.rootObjects().isEmpty()) {
        handset::log(u"the window cannot be made: is the QML module ZynPhone installed?"_s);
        return EXIT_FAILURE;
    }
    commandLine.announce(QGuiApplication::platformName());
    return QGuiApplication::exec();
}
