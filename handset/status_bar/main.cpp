// zyn-statusbar: plays the status bar in a terminal.
#include "handset/common/CommandLine.h"
#include "handset/common/TerminalProgram.h"
#include "handset/status_bar/StatusBar.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/message/Message_p.h"

#include <QtCore/QCoreApplication>

#include <cstdlib>

using namespace Qt::StringLiterals;
namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    handset::TerminalProgram program(argc, argv, u"zyn-statusbar"_s, QStringLiteral(ZYN_VERSION));
    handset::Output& output = program.output;

    handset::CommandLine commandLine(u"Plays the status bar: shows a line for each phone status that the relay passes "
                                     "on, as it comes.\nNumbers are the phone server's own.\nEnds on SIGTERM and "
                                     "SIGINT."_s,
                                     &output);
    if (!commandLine.parse())
        return handset::kUsageError;

    PHONE_AsyncMsgReceiver& relay = *PHONE_AsyncMsgReceiver::instance();
    if (!relay.findChild<PHONE_MsgClient*>()->isListening())
        return EXIT_FAILURE;
    handset::showStatus(relay, output);
    commandLine.announce(QLatin1String(zyn::kPhoneChannel));
    QCoreApplication::exec();
    PHONE_AsyncMsgReceiver::destruction();
    return output.exitCode();
}
