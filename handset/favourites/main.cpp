// zyn-favourites: owns the favourites and logs their calls.
#include "handset/common/CommandLine.h"
#include "handset/common/Log.h"
#include "handset/common/Process.h"
#include "handset/common/TerminationSignals.h"
#include "handset/favourites/ActivityLogLock.h"
#include "handset/favourites/FavouritesOwner.h"
#include "utility/PHONE_ChannelMessages_p.h"

#include <QtCore/QCoreApplication>

#include <cstdlib>

namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    handset::openStandardStreams();
    handset::ignoreBrokenPipes();
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("zyn-favourites"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZYN_VERSION));
    const handset::TerminationSignals terminationSignals;

    const QString channel = QLatin1String(zyn::kActivityLogChannel);
    handset::CommandLine commandLine(
        QStringLiteral(
            "Owns the favourites: registers and drops them as announced on the message channel\n%1, and logs "
            "their calls.\nEnds on SIGTERM and SIGINT. Messages go to standard error.")
            .arg(channel));
    if (!commandLine.parse())
        return handset::kUsageError;
    zyn::favourites::ActivityLogLock lock;
    if (!lock.take()) {
        handset::log(lock.problem());
        return EXIT_FAILURE;
    }
    handset::FavouritesOwner owner;
    if (!owner.isListening())
        return EXIT_FAILURE;
    commandLine.announce(channel);
    return QCoreApplication::exec();
}
