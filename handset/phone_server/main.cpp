// zyn-phoned: the phone server and the phone application, on a desk or on a real modem.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/common/Log.h"
#include "handset/phone_server/DeskModem.h"
#include "handset/phone_server/ModemPlugin.h"
#include "handset/phone_server/PhoneServer.h"
#include "handset/phone_server/Script.h"
#include "utility/PHONE_VoiceCallProtocol_p.h"

#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace handset = zyn::handset;

namespace {

constexpr int kDefaultStep = 300;
constexpr int kDefaultTimeout = 10'000;

const QString kStep = u"step"_s;
const QString kTalk = u"talk"_s;
const QString kPrefix = u"prefix"_s;
const QString kTimeout = u"patience"_s;
const QString kScript = u"script"_s;
const QString kModem = u"modem"_s;
const QString kDesk = u"desk"_s;
const QString kStandardInput = u"-"_s;

const QStringList kModems{kDesk, u"auto"_s, u"ofono"_s, u"modemmanager"_s};

QString description()
{
    return u"Plays the phone server and the phone application: places the calls that others ask "
           "for, over the socket\n%1\nand over the message channels, reports their course, and "
           "hands them to the recent-call service.\nEnds on SIGTERM and SIGINT. Messages go to "
           "standard error.\n\n%2"_s.arg(QLatin1String(zyn::voicecall::kSocketDirectory) + u'/'
                                             + QLatin1String(zyn::voicecall::kSocketName),
                                         handset::scriptHelp());
}

void addOptions(handset::CommandLine& commandLine)
{
    commandLine.addTime(kStep,
                        u"Milliseconds until a placed call reaches its next state "
                        "(%1)."_s,
                        kDefaultStep);
    commandLine.addTime(kTalk, u"Milliseconds until the other party of a placed call hangs up "
                               "milliseconds (as --step)."_s);
    commandLine.addTime(kTimeout,
                        u"Drop a client that does not register, finish a command or take its "
                        "replies for this many milliseconds (%1)."_s,
                        kDefaultTimeout);
    commandLine.add(QCommandLineOption(kPrefix,
                                       u"Put this in front of numbers to be dialed with a prefix, but of no "
                                       "emergency number (0)."_s,
                                       u"number"_s, u"0"_s));
    commandLine.add(QCommandLineOption(kModem,
                                       u"Who makes the calls: desk, where somebody plays the network; ofono or "
                                       "modemmanager, the telephony of that service; or auto, whichever of them is "
                                       "there (desk)."_s,
                                       u"who"_s, kDesk),
                    kModems);
    commandLine.add(QCommandLineOption(kScript,
                                       u"Make happen what this file says, as soon as clients are served; - for "
                                       "what standard input says, line by line as it comes."_s,
                                       u"file"_s));
}

/// The script named on the command line, or an empty one; nothing if it is invalid.
std::optional<handset::Script> scriptOf(const handset::CommandLine& commandLine)
{
    const QString path = commandLine.value(kScript);
    return !commandLine.isSet(kScript) || path == kStandardInput ? handset::Script() : handset::readScript(path);
}

/// What the command line says makes the calls; null, which is logged, if there is no such thing.
std::unique_ptr<handset::Modem> modemOf(const handset::CommandLine& commandLine, handset::PhoneStatus& status)
{
    const QString name = commandLine.value(kModem);
    if (name != kDesk)
        return handset::loadModem(name, status);
    const auto step = commandLine.time(kStep);
    return std::make_unique<handset::DeskModem>(
        handset::CallPace{step, commandLine.isSet(kTalk) ? commandLine.time(kTalk) : step});
}

bool hasModem(const handset::CommandLine& commandLine)
{
    if (kModems.contains(commandLine.value(kModem)))
        return true;
    handset::log(u"--modem must be one of %1"_s.arg(kModems.join(u", "_s)));
    return false;
}

bool hasPrefix(const handset::CommandLine& commandLine)
{
    if (handset::isDialable(commandLine.value(kPrefix)))
        return true;
    handset::log(u"--prefix must be a number to dial"_s);
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    const handset::Application application(argc, argv, u"zyn-phoned"_s);

    handset::CommandLine commandLine(description());
    addOptions(commandLine);
    if (!commandLine.parse() || !hasPrefix(commandLine) || !hasModem(commandLine))
        return handset::kUsageError;
    const auto script = scriptOf(commandLine);
    if (!script)
        return handset::kUsageError;

    handset::PhoneStatus status;
    const std::unique_ptr<handset::Modem> modem = modemOf(commandLine, status);
    if (!modem)
        return EXIT_FAILURE;
    handset::PhoneServer server(*modem, status, commandLine.value(kPrefix), commandLine.time(kTimeout),
                                handset::raiseClientLimit());
    if (!server.listen())
        return EXIT_FAILURE;
    handset::ScriptPlayer player(*script, server.line());
    handset::ScriptInput input(server.line());
    commandLine.announce(zyn::voicecall::socketPath());
    modem->start();
    player.start();
    if (commandLine.value(kScript) == kStandardInput)
        input.start();
    const int exitCode = handset::Application::exec();
    player.stop();
    input.stop();
    server.close();
    return exitCode;
}
