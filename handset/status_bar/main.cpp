// zyn-statusbar: plays the status bar in a terminal.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/status_bar/StatusBar.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/message/Message_p.h"

#include <cstdlib>

using namespace Qt::StringLiterals;
namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    handset::TerminalApplication application(argc, argv, u"zyn-statusbar"_s);
    handset::Output& output = application.output;

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
    handset::Application::exec();
    PHONE_AsyncMsgReceiver::destruction();
    return output.exitCode();
}
