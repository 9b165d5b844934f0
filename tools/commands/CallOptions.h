// A call, or several, as a command line describes them.
#pragma once

#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/zynphone/Command.h"

#include <span>
#include <vector>

namespace zyn::tool {

/// @{ The number or the name of a call; a usage error when it is empty (the number) or more than the fields
/// of a call hold, as the meanings below say for the help.
QString callNumber(const QString& text);
QString callName(const QString& text);
QString callNumberMeaning();
QString callNameMeaning();
/// @}

/// @{ What callFrom() reads.
std::vector<Argument> callArguments();
QList<QCommandLineOption> callOptions();
QMap<QString, QStringList> callWords();
/// @}

/// The call that @p call describes. A text that its field does not hold whole is a usage error, never cut.
PHONE_ENG_RecentCall callFrom(const Invocation& invocation);
/// The call of @p list and @p number whose other fields the options describe.
PHONE_ENG_RecentCall callFrom(const Invocation& invocation, RC_CALL_CATEGORY_T list, const QString& number);

/// @{ The options --list and --type, and the words that they and an argument LIST may be.
QCommandLineOption listOption();
QCommandLineOption typeOption();
QMap<QString, QStringList> selectionWords();
/// @}

/// The list, or all of them, that @p word names.
RC_CALL_CATEGORY_T listNamed(const QString& word);
/// The list that --list names; all of them when it is not set.
RC_CALL_CATEGORY_T listFrom(const Invocation& invocation);

/// The call types that --type selects: the three that have a word, unless it names one by its word or number.
std::vector<RC_CALL_TYPE_T> typesFrom(const Invocation& invocation);

/// The calls of @p types in @p list, newest first; throws when the recent-call service does not answer.
std::vector<PHONE_ENG_RecentCall> fetchCalls(RC_CALL_CATEGORY_T list,
                                             std::span<const RC_CALL_TYPE_T> types = handset::kCallTypes);

/// Sends the service @p calls, which stand newest first: the oldest at first, so that the newest are those that stay
/// when a list is full. Shows how far it has come when it takes its time.
void sendCalls(const std::vector<PHONE_ENG_RecentCall>& calls);

} // namespace zyn::tool
