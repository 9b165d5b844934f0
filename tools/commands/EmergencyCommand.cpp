// zynphone emergency: which numbers the library treats as emergency numbers, and why.
#include "tools/commands/Commands.h"

#include "platform/HandsetState_p.h"
#include "platform/UTIL_PhoneStatus.h"
#include "platform/posix/File_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/commands/Candidates.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"

#include <QtCore/QJsonObject>

#include <cerrno>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// A control code, and the state that currently allows or forbids it.
struct Code
{
    QString text;
    const handset::State& state;
    int value; ///< of the state
    bool isAllowed;
};

std::vector<Code> controlCodes()
{
    const int keypad = UTIL_GetKeypadLockStatus();
    const int card = UTIL_GetSimCardStatus();
    std::vector<Code> codes{
        {QLatin1String(emergency::kImeiCode), handset::kKeypadLock, keypad, isKeypadUnlocked(keypad)}};
    for (const char* code : emergency::kPinCodes)
        codes.push_back({QLatin1String(code), handset::kSimCard, card, isSimCardReady(card)});
    return codes;
}

/// The verdict on a typed text, and its reasons.
struct Verdict
{
    QString typed;
    bool isAccepted;
    QStringList becomes;         ///< the numbers and allowed codes that begin with it
    std::vector<Code> forbidden; ///< the forbidden codes that begin with it
};

Verdict verdictOn(const QString& typed, const QStringList& numbers)
{
    Verdict verdict{typed, PHONE_IsEmergencyCallInput(typed), {}, {}};
    for (const Code& code : controlCodes()) {
        if (!code.text.startsWith(typed))
            continue;
        if (code.isAllowed)
            verdict.becomes += code.text;
        else
            verdict.forbidden.push_back(code);
    }
    for (const QString& number : numbers) {
        if (number.startsWith(typed))
            verdict.becomes += number;
    }
    return verdict;
}

QJsonValue forbiddenJson(const Verdict& verdict)
{
    QJsonArray codes;
    for (const Code& code : verdict.forbidden)
        codes +=
            QJsonObject{{u"code"_s, code.text}, {u"state"_s, QLatin1String(code.state.name)}, {u"value"_s, code.value}};
    return codes;
}

QString forbiddenText(const Verdict& verdict)
{
    QStringList codes;
    for (const Code& code : verdict.forbidden)
        codes += u"%1 (%2 is %3)"_s.arg(code.text, QLatin1String(code.state.name)).arg(code.value);
    return codes.join(u", "_s);
}

constexpr Column<Verdict> kVerdictColumns[] = {
    {"typed", "TYPED", [](const Verdict& verdict) { return QJsonValue(verdict.typed); }},
    {"accepted", "ACCEPTED", [](const Verdict& verdict) { return QJsonValue(verdict.isAccepted); }},
    {"mayBecome", "MAY BECOME",
     [](const Verdict& verdict) { return QJsonValue(QJsonArray::fromStringList(verdict.becomes)); },
     [](const Verdict& verdict) { return printable(verdict.becomes.join(u", "_s)); }},
    {"forbidden", "FORBIDDEN", forbiddenJson, forbiddenText},
};

constexpr Column<QString> kNumberColumns[] = {
    {"number", "NUMBER", [](const QString& number) { return QJsonValue(number); }},
};

/// Says why no number is an emergency number, where that is for want of a list.
void noteMissingList(Console& console)
{
    if (posix::openForReading(emergency::kListFile).isValid())
        return;
    const int error = errno;
    const QLatin1String path(emergency::kListFile);
    console.writeError(error == ENOENT
                           ? u"zynphone: there is no list of emergency numbers, %1"_s.arg(path)
                           : u"zynphone: cannot read %1: %2"_s.arg(path, QString::fromLocal8Bit(std::strerror(error))));
}

ExitCode showTyping(const Invocation& invocation, Console& console)
{
    const QString text = invocation.value(u"typing"_s);
    if (text.isEmpty())
        throw usageError(u"the text is empty"_s);
    const QStringList numbers = emergency::readList();
    std::vector<Verdict> verdicts;
    for (qsizetype keys = 1; keys <= text.size(); ++keys) {
        if (!text.at(keys - 1).isHighSurrogate())
            verdicts.push_back(verdictOn(text.left(keys), numbers));
    }
    printTable(console, Table(kVerdictColumns, verdicts), invocation.isSet(u"json"_s));
    noteMissingList(console);
    return Done;
}

ExitCode checkNumber(const QString& number, Console& console, bool json)
{
    QByteArray bytes = callNumber(number).toLatin1();
    const bool isEmergency = PHONE_IsEmergencyCall(bytes.data());
    if (json)
        console.write(QJsonDocument(QJsonObject{{u"number"_s, number}, {u"emergency"_s, isEmergency}}));
    else
        console.write(u"%1 is %2 emergency number\n"_s.arg(printable(number), isEmergency ? u"an"_s : u"no"_s));
    noteMissingList(console);
    return Done;
}

ExitCode answer(const Invocation& invocation, Console& console)
{
    const bool typing = invocation.isSet(u"typing"_s);
    if (typing && !invocation.arguments().isEmpty())
        throw usageError(u"--typing takes no NUMBER"_s);
    if (!typing && invocation.arguments().isEmpty())
        throw usageError(u"missing argument NUMBER"_s);
    return typing ? showTyping(invocation, console)
                  : checkNumber(invocation.argument(0), console, invocation.isSet(u"json"_s));
}

ExitCode listNumbers(const Invocation& invocation, Console& console)
{
    printTable(console, Table(kNumberColumns, emergency::readList()), invocation.isSet(u"json"_s));
    noteMissingList(console);
    return Done;
}

ExitCode writeNumbers(const Invocation& invocation, Console& /*console*/)
{
    QStringList numbers;
    for (const QString& number : invocation.arguments())
        numbers += callNumber(number);
    if (numbers.size() > emergency::kRecordLimit)
        throw usageError(u"%1 numbers; at most %2 are written"_s.arg(numbers.size()).arg(emergency::kRecordLimit));
    if (!emergency::writeList(numbers))
        throw failure(u"cannot write %1"_s.arg(QLatin1String(emergency::kListFile)));
    return Done;
}

} // namespace

Command emergencyCommand()
{
    Command list{.name = u"list"_s,
                 .summary = u"List the emergency numbers"_s,
                 .details = u"\nThe objects of --json have the field %1.\n"_s.arg(fieldNames(kNumberColumns)),
                 .options = {jsonOption()},
                 .run = listNumbers};
    Command write{.name = u"write"_s,
                  .summary = u"Replace the list of emergency numbers, as the handset does"_s,
                  .arguments = {{u"NUMBER"_s, callNumberMeaning(), Argument::Many}},
                  .sources = {{u"NUMBER"_s, callNumbers}},
                  .run = writeNumbers};
    return {.name = u"emergency"_s,
            .summary = u"Show whether a number is an emergency number, or what a text being typed may become"_s,
            .details = u"\nFor a text the verdict after each key is shown, the emergency numbers and allowed control "
                       "codes that it\nmay become, and the control codes that a state of the handset forbids. The "
                       "objects of --json have the\nfields %1; those of forbidden code, state and value.\nThe object "
                       "for a number has the fields number and emergency.\n"_s.arg(fieldNames(kVerdictColumns)),
            .verbs = {std::move(list), std::move(write)},
            .arguments = {{u"NUMBER"_s, callNumberMeaning(), Argument::Optional}},
            .options = {valueOption(u"typing"_s, u"TEXT"_s, u"the text, typed key by key"_s), jsonOption()},
            .sources = {{u"NUMBER"_s, callNumbers}},
            .run = answer};
}

} // namespace zyn::tool
