// zyn-recentcalld: keeps the log of recent calls and answers its socket.
#include "handset/common/CommandLine.h"
#include "handset/common/Process.h"
#include "handset/common/TerminationSignals.h"
#include "handset/recentcall_service/RecentCallService.h"

#include <QtCore/QCoreApplication>

#include <cstdlib>

namespace handset = zyn::handset;

namespace {

constexpr int kDefaultPatience = 10'000;

} // namespace

int main(int argc, char** argv)
{
    handset::openStandardStreams();
    handset::ignoreBrokenPipes();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zyn-recentcalld"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZYN_VERSION));
    const handset::TerminationSignals terminationSignals;

    const QString patience = QStringLiteral("patience");
    handset::CommandLine commandLine(QStringLiteral("Keeps the log of recent calls and answers its socket,\n%1.\n"
                                                    "Ends on SIGTERM and SIGINT. Messages go to standard error.")
                                         .arg(handset::RecentCallService::socketPath()));
    commandLine.addTime(patience,
                        QStringLiteral("Drop a client that sends no whole command, or does not take its "
                                       "answer, for this many milliseconds (%1)."),
                        kDefaultPatience);
    if (!commandLine.parse())
        return handset::kUsageError;
    handset::RecentCallService service(commandLine.time(patience), handset::raiseClientLimit());
    if (!service.listen())
        return EXIT_FAILURE;
    commandLine.announce(handset::RecentCallService::socketPath());
    return QCoreApplication::exec();
}
