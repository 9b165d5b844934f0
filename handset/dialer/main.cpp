// zyn-dialer: plays the dialer in a terminal.
#include "handset/common/Application.h"
#include "handset/common/CommandLine.h"
#include "handset/dialer/Dialer.h"
#include "handset/dialer/KeyInput.h"

using namespace Qt::StringLiterals;
namespace handset = zyn::handset;

namespace {

const QString kType = u"type"_s;

} // namespace

int main(int argc, char** argv)
{
    handset::TerminalApplication application(argc, argv, u"zyn-dialer"_s);
    handset::Output& output = application.output;

    handset::CommandLine commandLine(
        u"Plays the dialer: tells after each key whether the text may become an emergency call or a control\ncode, and "
        "asks the phone application for the call. While the keypad is locked (handset state\nkeypad-lock not 0) or no "
        "SIM "
        "card is ready (sim-card neither 0 nor 3), keys that lead to neither are\nrefused.\n%1\nEnds at the end of "
        "the input, on SIGTERM and on SIGINT."_s.arg(handset::Dialer::help()),
        &output);
    commandLine.add(
        QCommandLineOption(kType, u"Press these keys instead of those of standard input, and end."_s, u"keys"_s));
    if (!commandLine.parse())
        return handset::kUsageError;

    handset::Dialer dialer(output);
    if (commandLine.isSet(kType)) {
        const QByteArray keys = commandLine.value(kType).toLatin1();
        handset::KeyDecoder decoder(false);
        for (const char byte : keys) {
            for (const QByteArray& key : decoder.decode(byte))
                dialer.press(key);
        }
        dialer.press(decoder.finish());
        return output.exitCode();
    }
    const handset::KeyInput input;
    QObject::connect(&input, &handset::KeyInput::pressed, &application,
                     [&](const QByteArray& key) { dialer.press(key); });
    QObject::connect(&input, &handset::KeyInput::ended, &application, &handset::Application::quit,
                     Qt::QueuedConnection);
    commandLine.announce(u"standard input"_s);
    handset::Application::exec();
    return output.exitCode();
}
