// Calls as command-line options and arguments describe them.
#include "tools/commands/CallOptions.h"

#include "recentcall/utility/RC_Interface.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/RecordText.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>

#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

constexpr qsizetype kNumberLimit = sizeof Call::phoneNumber - 1;
constexpr qsizetype kNameLimit = sizeof Call::displayName - 1;
constexpr qsizetype kSessionLimit = sizeof Call::pttSessionId - 1;

QDateTime startFrom(const Invocation& invocation)
{
    if (!invocation.isSet(u"at"_s))
        return QDateTime::currentDateTime();
    const QString text = invocation.value(u"at"_s);
    QDateTime start = QDateTime::fromString(text, Qt::ISODate);
    if (!start.isValid())
        throw usageError(u"'%1' is not a date and time like 2024-05-31T18:30:00"_s.arg(text));
    secondsOf(start, text);
    return start;
}

bool completedFrom(const Invocation& invocation, RC_CALL_CATEGORY_T list)
{
    const bool completed = invocation.isSet(u"completed"_s);
    const bool notCompleted = invocation.isSet(u"not-completed"_s);
    if (completed && notCompleted)
        throw usageError(u"--completed and --not-completed exclude each other"_s);
    return completed || (!notCompleted && list != RC_CALL_CATEGORY_MISSED);
}

void setSession(Call& record, const QString& session)
{
    if (!record.isPtt())
        throw usageError(u"--session is for the types ptt1 and ptt2"_s);
    const qsizetype size = session.toUtf8().size();
    if (size > kSessionLimit)
        throw usageError(u"the session id has %1 bytes; at most %2 fit"_s.arg(size).arg(kSessionLimit));
    record.setPttSessionID(session);
}

constexpr QLatin1String kAllTypes("all");

} // namespace

QString callNumber(const QString& text)
{
    if (text.isEmpty())
        throw usageError(u"the number is empty"_s);
    return latin1Field(text, u"number"_s, kNumberLimit);
}

QString callName(const QString& text)
{
    return latin1Field(text, u"name"_s, kNameLimit);
}

QString callNumberMeaning()
{
    return u"Latin-1, at most %1 characters"_s.arg(kNumberLimit);
}

QString callNameMeaning()
{
    return u"Latin-1, at most %1 characters"_s.arg(kNameLimit);
}

std::vector<Argument> callArguments()
{
    return {{u"LIST"_s, u"answered, missed or dialed"_s}, {u"NUMBER"_s, callNumberMeaning()}};
}

QList<QCommandLineOption> callOptions()
{
    return {
        valueOption(u"name"_s, u"NAME"_s, callNameMeaning()),
        valueOption(u"at"_s, u"DATETIME"_s,
                    u"start, ISO 8601, local unless it ends in Z or an offset; now by default"_s),
        valueOption(u"duration"_s, u"SECONDS"_s, u"0 by default"_s),
        valueOption(u"type"_s, u"TYPE"_s, u"voice (the default), ptt1 or ptt2"_s),
        valueOption(u"session"_s, u"ID"_s, u"of a ptt1 or ptt2 call, at most %1 bytes of UTF-8"_s.arg(kSessionLimit)),
        flagOption(u"read"_s, u"the user has seen it"_s),
        flagOption(u"completed"_s, u"the default of answered and dialed calls"_s),
        flagOption(u"not-completed"_s, u"the default of missed calls"_s)};
}

QMap<QString, QStringList> callWords()
{
    return {{u"LIST"_s, wordTexts(kLists)}, {u"TYPE"_s, wordTexts(kTypes)}};
}

PHONE_ENG_RecentCall callFrom(const Invocation& invocation)
{
    const RC_CALL_CATEGORY_T list = wordNamed(kLists, invocation.argument(0), u"list"_s).value;
    return callFrom(invocation, list, callNumber(invocation.argument(1)));
}

PHONE_ENG_RecentCall callFrom(const Invocation& invocation, RC_CALL_CATEGORY_T list, const QString& number)
{
    Call record;
    record.category = list;
    record.setPhoneNumber(number);
    record.setDisplayName(callName(invocation.value(u"name"_s)));
    record.setStartDateTime(startFrom(invocation));
    if (invocation.isSet(u"duration"_s))
        record.duration = wholeNumber(invocation.value(u"duration"_s), u"duration"_s, 0);
    if (invocation.isSet(u"type"_s))
        record.callType = wordNamed(kTypes, invocation.value(u"type"_s), u"type"_s).value;
    if (invocation.isSet(u"session"_s))
        setSession(record, invocation.value(u"session"_s));
    record.readFlags = invocation.isSet(u"read"_s) ? Call::kRead : 0;
    record.completed = completedFrom(invocation, record.category);
    return record;
}

QCommandLineOption listOption()
{
    return valueOption(u"list"_s, u"LIST"_s, u"answered, missed, dialed or all (the default)"_s);
}

QCommandLineOption typeOption()
{
    return valueOption(u"type"_s, u"TYPE"_s,
                       u"voice, ptt1, ptt2, the number of another type, or all those three (the default)"_s);
}

QMap<QString, QStringList> selectionWords()
{
    return {{u"LIST"_s, wordTexts(kListsOrAll)}, {u"TYPE"_s, wordTexts(kTypes) + QStringList{kAllTypes}}};
}

RC_CALL_CATEGORY_T listNamed(const QString& word)
{
    return wordNamed(kListsOrAll, word, u"list"_s).value;
}

RC_CALL_CATEGORY_T listFrom(const Invocation& invocation)
{
    return invocation.isSet(u"list"_s) ? listNamed(invocation.value(u"list"_s)) : RC_CALL_CATEGORY_ALL;
}

std::vector<RC_CALL_TYPE_T> typesFrom(const Invocation& invocation)
{
    const QString type = u"type"_s;
    if (!invocation.isSet(type) || invocation.value(type) == kAllTypes)
        return {handset::kCallTypes.begin(), handset::kCallTypes.end()};
    return {callTypeNamed(invocation.value(type), type)};
}

std::vector<PHONE_ENG_RecentCall> fetchCalls(RC_CALL_CATEGORY_T list, std::span<const RC_CALL_TYPE_T> types)
{
    auto calls = handset::fetchCalls(list, types);
    if (!calls)
        throw recentCallServiceError();
    return std::move(*calls);
}

void sendCalls(const std::vector<PHONE_ENG_RecentCall>& calls)
{
    size_t sent = 0;
    const auto state = [&] {
        return u"%1 of %2 sent"_s.arg(QString::number(sent), counted(std::ssize(calls), "call"));
    };
    const Progress progress(state);
    for (auto call = calls.crbegin(); call != calls.crend(); ++call) {
        if (RC_Interface().addRecord(RC_RecordInterfaceImpl(new PHONE_ENG_RecentCall(*call))) != 0)
            throw failure(recentCallServiceError().message() + u"; "_s
                          + (calls.size() == 1 ? u"the call is not logged"_s : state()));
        ++sent;
        QCoreApplication::processEvents();
    }
    // It acknowledges no call. One that has stopped would take them all the same.
    if (!calls.empty() && !handset::fetchCalls(RC_CALL_CATEGORY_ALL))
        throw failure(recentCallServiceError().message() + u"; what was sent is not logged yet"_s);
}

} // namespace zyn::tool
