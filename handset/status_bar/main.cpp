// zyn-statusbar: plays the status bar in a terminal.
#include "handset/common/CommandLine.h"
#include "handset/common/TerminalProgram.h"
#include "handset/status_bar/StatusBar.h"
#include "utility/PHONE_AsyncMsgReceiver.h"
#include "utility/PHONE_MsgName_p.h"

#include <QtCore/QCoreApplication>

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

    handset::showStatus(*PHONE_AsyncMsgReceiver::instance(), output);
    commandLine.announce(QLatin1String(zyn::kPhoneChannel));
    const int code = QCoreApplication::exec();
    PHONE_AsyncMsgReceiver::destruction();
    return code;
}
