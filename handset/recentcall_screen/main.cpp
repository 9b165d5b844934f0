// zyn-recents: plays the recent-call screens in a terminal.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/common/Log.h"
#include "handset/recentcall_screen/RecentScreen.h"

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

const QString kPick = u"pick"_s;
const QString kPickNone = u"none"_s;

QString description()
{
    QStringList pages;
    for (const ScreenPage& page : kScreenPages)
        pages += u"%1 %2"_s.arg(page.page).arg(QLatin1String(page.name));
    return u"Plays the recent-call screens: shows what others ask for on the channel\n"
           "/ZYN/recentcall, marks the missed calls that it has shown as read,\n"
           "and answers the number picker with the number of the row that is typed,\n"
           "or with none for an empty line or at the end of the input.\n"
           "Pages: %1. Rows are counted from 0.\n"
           "Ends on SIGTERM and SIGINT, and when the handset is switched off."_s.arg(pages.join(u", "_s));
}

/// The answer of --pick: a row, or an empty text for "none"; nothing if the option is not given.
std::optional<QString> unattendedAnswer(const CommandLine& commandLine)
{
    if (!commandLine.isSet(kPick))
        return std::nullopt;
    const QString value = commandLine.value(kPick);
    return value == kPickNone ? QString() : value;
}

bool isAnswer(const QString& text)
{
    bool isNumber = false;
    return text.isEmpty() || (text.toInt(&isNumber) >= 0 && isNumber);
}

} // namespace
} // namespace zyn::handset

namespace handset = zyn::handset;

int main(int argc, char** argv)
{
    handset::TerminalApplication application(argc, argv, u"zyn-recents"_s);
    handset::Output& output = application.output;

    handset::CommandLine commandLine(handset::description(), &output);
    commandLine.add(QCommandLineOption(handset::kPick,
                                       u"Answer the number picker with the number of this row, or with none."_s,
                                       u"row|none"_s),
                    {handset::kPickNone});
    if (!commandLine.parse())
        return handset::kUsageError;
    const std::optional<QString> answer = handset::unattendedAnswer(commandLine);
    if (answer && !handset::isAnswer(*answer)) {
        handset::log(u"--pick is the number of a row, 0 or more, or none"_s);
        return handset::kUsageError;
    }

    handset::NumberPicker picker(output, answer);
    handset::RecentScreen screen(output, picker);
    RecentCall_MsgClient& client = *RecentCall_MsgClient::instance();
    if (!client.isListening())
        return EXIT_FAILURE;
    screen.follow(client);
    QObject::connect(&client, &RecentCall_MsgClient::signalPowerOff, &application, &handset::Application::quit);
    commandLine.announce(QString::fromUtf8(client.channel()));
    handset::Application::exec();
    picker.close();
    RecentCall_MsgClient::destruction();
    return output.exitCode();
}
