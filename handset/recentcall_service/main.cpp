// zyn-recentcalld: keeps the log of recent calls and answers its socket.
#include "handset/common/Log.h"
#include "handset/common/Process.h"
#include "handset/common/TerminationSignals.h"
#include "handset/recentcall_service/RecentCallService.h"
#include "platform/posix/File_p.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

using namespace std::chrono_literals;
namespace handset = zyn::handset;

namespace {

constexpr int kUsageError = 2;
constexpr int kDefaultPatience = 10'000;
/// Descriptors that are not for clients: the store's files, the loop's own, the listening socket.
constexpr int kReservedDescriptors = 32;

struct Options
{
    std::chrono::milliseconds patience{kDefaultPatience};
    int readyFd = -1; ///< -1: none
};

std::optional<int> number(const QString& text, int minimum)
{
    bool isNumber = false;
    const int value = text.toInt(&isNumber);
    return isNumber && value >= minimum ? std::optional(value) : std::nullopt;
}

std::nullopt_t usageError(const QString& text)
{
    handset::log(text);
    return std::nullopt;
}

std::optional<Options> parseOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Keeps the log of recent calls and answers its socket,\n%1.\n"
                       "Ends on SIGTERM and SIGINT. Messages go to standard error, the library's trace text "
                       "to standard output.")
            .arg(RecentCallService::socketPath()));
    const QCommandLineOption readyFd(
        QStringLiteral("ready-fd"),
        QStringLiteral("Write \"ready\" and a line end to this open descriptor as soon as "
                       "clients are served, and close it unless it is a standard stream."),
        QStringLiteral("number"));
    const QCommandLineOption patience(
        QStringLiteral("patience"),
        QStringLiteral("Drop a client that sends no whole command, or does not take its "
                       "answer, for this many milliseconds (%1).")
            .arg(kDefaultPatience),
        QStringLiteral("milliseconds"));
    parser.addOptions({readyFd, patience});
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(help))
        parser.showHelp();
    if (parser.isSet(version))
        parser.showVersion();
    if (!parser.positionalArguments().isEmpty())
        return usageError(
            QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().constFirst()));

    Options options;
    if (parser.isSet(patience)) {
        const auto value = number(parser.value(patience), 1);
        if (!value)
            return usageError(QStringLiteral("--patience is a number of milliseconds, 1 or more"));
        options.patience = std::chrono::milliseconds(*value);
    }
    if (parser.isSet(readyFd)) {
        const auto value = number(parser.value(readyFd), 0);
        if (!value || ::fcntl(*value, F_GETFD) < 0)
            return usageError(QStringLiteral("--ready-fd is the number of an open descriptor"));
        options.readyFd = *value;
    }
    return options;
}

void announce(int readyFd)
{
    handset::log(QStringLiteral("listening on %1").arg(RecentCallService::socketPath()));
    if (readyFd < 0)
        return;
    if (::write(readyFd, "ready\n", 6) != 6)
        handset::log(QStringLiteral("nobody reads descriptor %1").arg(readyFd));
    if (readyFd > STDERR_FILENO)
        ::close(readyFd);
}

} // namespace

int main(int argc, char** argv)
{
    handset::openStandardStreams();
    handset::ignoreBrokenPipes();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zyn-recentcalld"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZYN_VERSION));
    const handset::TerminationSignals terminationSignals;
    const auto options = parseOptions(application.arguments());
    if (!options)
        return kUsageError;
    RecentCallService service(options->patience,
                              std::max(1, handset::raiseDescriptorLimit() - kReservedDescriptors));
    if (!service.listen())
        return EXIT_FAILURE;
    announce(options->readyFd);
    return QCoreApplication::exec();
}
