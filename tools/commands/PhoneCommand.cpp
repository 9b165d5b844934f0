// zynphone phone: plays the network and the other parties to a running phone server, and shows the calls of its line.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "handset/phone_server/PhoneControl.h"
#include "tools/commands/Candidates.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/PhoneConnection.h"
#include "tools/zynphone/Table.h"
#include "tools/zynphone/Text.h"
#include "utility/message/PhoneMessages_p.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTextStream>

#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

ExitCode sayToPhone(const Invocation& invocation, Console& /*console*/)
{
    QByteArray words;
    for (const QString& word : invocation.arguments()) {
        words += word.toUtf8();
        words += '\0';
    }
    if (static_cast<size_t>(words.size()) > phonecontrol::kLongestSaying)
        throw usageError(u"that is more than the phone server takes at once"_s);
    PhoneConnection().ask(phonecontrol::Say, phonecontrol::Done, words);
    return Done;
}

QJsonValue value(const QJsonObject& call, const char* key)
{
    return call.value(QLatin1String(key));
}

QString sinceText(const QJsonObject& call)
{
    const QString since = value(call, "since").toString();
    return handset::timeText(QDateTime::fromString(since, Qt::ISODateWithMs));
}

constexpr Column<QJsonObject> kOngoingColumns[] = {
    {"id", "ID", [](const QJsonObject& call) { return value(call, "id"); }},
    {"number", "NUMBER", [](const QJsonObject& call) { return value(call, "number"); }},
    {"name", "NAME", [](const QJsonObject& call) { return value(call, "name"); }},
    {"type", "TYPE", [](const QJsonObject& call) { return value(call, "type"); }},
    {"direction", "DIRECTION", [](const QJsonObject& call) { return value(call, "direction"); }},
    {"state", "STATE", [](const QJsonObject& call) { return value(call, "state"); }},
    {"since", "SINCE", [](const QJsonObject& call) { return value(call, "since"); }, sinceText},
};

/// The calls in @p json, an array of them.
QList<QJsonObject> ongoingCalls(const QByteArray& json)
{
    QList<QJsonObject> calls;
    for (const QJsonValue call : QJsonDocument::fromJson(json).array())
        calls += call.toObject();
    return calls;
}

/// Writes @p call as a line: an object, or words for people.
void showCall(Console& console, const QJsonObject& call, bool json)
{
    if (json)
        return console.write(QJsonDocument(call));
    QStringList words{sinceText(call)};
    for (const char* key : {"direction", "number", "name"})
        words += printable(value(call, key).toString());
    words.removeAll(QString());
    console.write(u"%1: %2\n"_s.arg(words.join(u' '), printable(value(call, "state").toString())));
}

/// Shows the calls, and each change, until the server ends or a signal comes.
ExitCode followCalls(PhoneConnection& control, Console& console, bool json, const TimeLimit& limit)
{
    const handset::TerminationSignals signalsThatEnd;
    for (const QJsonObject& call : ongoingCalls(control.ask(phonecontrol::FollowCalls, phonecontrol::Calls)))
        showCall(console, call, json);
    QSocketNotifier readable(control.descriptor(), QSocketNotifier::Read);
    QString error;
    QObject::connect(&readable, &QSocketNotifier::activated, &readable, [&] {
        try {
            showCall(console, QJsonDocument::fromJson(control.next(phonecontrol::CallChanged)).object(), json);
        } catch (const CommandError& reason) {
            error = reason.message();
            readable.setEnabled(false);
        }
        if (!error.isEmpty() || !console.isValid())
            QCoreApplication::quit();
    });
    limit.start();
    QCoreApplication::exec();
    if (!error.isEmpty())
        throw failure(error);
    return Done;
}

ExitCode showCalls(const Invocation& invocation, Console& console)
{
    const TimeLimit limit(invocation);
    const bool json = invocation.isSet(u"json"_s);
    const bool follows = invocation.isSet(u"follow"_s);
    if (limit.isSet() && !follows)
        throw usageError(u"--for is for --follow"_s);
    PhoneConnection control;
    if (follows)
        return followCalls(control, console, json, limit);
    const Table table(kOngoingColumns, ongoingCalls(control.ask(phonecontrol::ListCalls, phonecontrol::Calls)));
    if (json || !table.isEmpty())
        printTable(console, table, json);
    return Done;
}

/// What is known of the modem, a line for each fact.
ExitCode showModem(const Invocation& invocation, Console& console)
{
    const QJsonDocument answer =
        QJsonDocument::fromJson(PhoneConnection().ask(phonecontrol::AskModem, phonecontrol::ModemIs));
    if (invocation.isSet(u"json"_s)) {
        console.write(answer);
        return Done;
    }
    const QJsonObject modem = answer.object();
    QList<QStringList> rows;
    for (auto fact = modem.begin(); fact != modem.end(); ++fact) {
        const QString text = fact->isBool() ? (fact->toBool() ? u"yes"_s : u"no"_s) : fact->toVariant().toString();
        if (!text.isEmpty())
            rows += {fact.key(), printable(text)};
    }
    console.write(alignedLines(rows));
    return Done;
}

/// The next line of standard input, of which a terminal shows nothing.
QString secretLine(Console& console, const QString& prompt)
{
    termios shown{};
    const bool isTerminal = ::tcgetattr(STDIN_FILENO, &shown) == 0;
    if (isTerminal) {
        termios hidden = shown;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        console.write(prompt);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    const QString line = QTextStream(stdin).readLine(phonecontrol::kLongestCode + 1);
    if (isTerminal) {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
        console.write(u"\n"_s);
    }
    return line.trimmed();
}

ExitCode unlock(const Invocation& invocation, Console& console)
{
    PhoneConnection phone;
    const QStringList codes =
        invocation.arguments().isEmpty() ? QStringList(secretLine(console, u"PIN: "_s)) : invocation.arguments();
    QByteArray data;
    for (const QString& code : codes)
        data += code.toUtf8() + '\0';
    phone.ask(phonecontrol::Unlock, phonecontrol::Done, data);
    return Done;
}

handset::Candidates events(const QStringList& /*arguments*/)
{
    handset::Candidates found;
    for (const phonecontrol::LineEvent& event : phonecontrol::kLineEvents)
        found += {QLatin1String(event.name), QLatin1String(event.meaning)};
    for (const PhoneMessage& message : phoneMessages()) {
        if (message.isStatus())
            found += {QLatin1String(message.word), u"status message"_s};
    }
    return found;
}

/// Who may call.
handset::Candidates callers(const QStringList& arguments)
{
    const bool isNumber = arguments == QStringList{QLatin1String(phonecontrol::kIncoming.name)};
    return isNumber ? callNumbers(arguments) : handset::Candidates();
}

QString eventDetails()
{
    QList<QStringList> rows;
    for (const phonecontrol::LineEvent& event : phonecontrol::kLineEvents)
        rows += {u" "_s, u"%1 %2"_s.arg(QLatin1String(event.name), QLatin1String(event.values)).trimmed(),
                 QLatin1String(event.meaning)};
    return u"\nAn event is one of\n"_s + alignedLines(rows)
           + u"or a status message with its values, as a script of zyn-phoned has it;\n"
             "'zynphone status' lists them. What cannot happen now is a failure.\n"
             "For example: zynphone phone incoming 0301112222 Dora\n"_s;
}

} // namespace

Command phoneCommand()
{
    Command calls{.name = u"calls"_s,
                  .summary = u"List the calls of the line: the number, and the state since when"_s,
                  .details = u"\nWith --follow each change is a line. The objects of --json, one for each line "
                             "then, have\nthe fields %1.\n"_s.arg(fieldNames(kOngoingColumns)),
                  .options = {jsonOption(), flagOption(u"follow"_s, u"go on with each change, until a signal comes"_s),
                              TimeLimit::option(u"end --follow after that time"_s)},
                  .run = showCalls};
    Command modem{.name = u"modem"_s,
                  .summary = u"Show what is known of the modem: service, SIM card, PIN, network"_s,
                  .options = {jsonOption()},
                  .run = showModem};
    Command unlocking{.name = u"unlock"_s,
                      .summary = u"Give the SIM card the PIN, or the PUK and a new PIN, that it asks for"_s,
                      .details = u"\nWithout a code, the PIN is read from standard input, where nobody sees it.\n"_s,
                      .arguments = {{u"PIN|PUK"_s, u"the PIN, or the PUK"_s, Argument::Optional},
                                    {u"NEW-PIN"_s, u"behind the PUK, what is to be the PIN"_s, Argument::Optional}},
                      .run = unlock};
    return {.name = u"phone"_s,
            .summary = u"Play the network and the other parties to a running phone server"_s,
            .details = eventDetails(),
            .verbs = {std::move(calls), std::move(modem), std::move(unlocking)},
            .arguments = {{u"EVENT"_s, u"what happens"_s}, {u"VALUE"_s, u"the event's values"_s, Argument::Any}},
            .sources = {{u"EVENT"_s, events}, {u"VALUE"_s, callers}},
            .run = sayToPhone};
}

} // namespace zyn::tool
