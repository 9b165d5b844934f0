// Calls as command-line options and arguments describe them.
#pragma once

#include "handset/recent_calls/RecentCalls.h"
#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/zynphone/Command.h"

#include <span>
#include <vector>

namespace zyn::tool {

/// @{ The number or the name of a call. A usage error if it is longer than the field, or if the number is empty.
QString callNumber(const QString& text);
QString callName(const QString& text);
QString callNumberMeaning();
QString callNameMeaning();
/// @}

/// @{ The options and arguments of callFrom().
std::vector<Argument> callArguments();
QList<QCommandLineOption> callOptions();
QMap<QString, QStringList> callWords();
/// @}

/// The call that @p call describes. A text that does not fit its field is a usage error.
PHONE_ENG_RecentCall callFrom(const Invocation& invocation);
/// A call of @p list and @p number, with the other fields from the options.
PHONE_ENG_RecentCall callFrom(const Invocation& invocation, RC_CALL_CATEGORY_T list, const QString& number);

/// @{ The options --list and --type, and the words for them and for an argument LIST.
QCommandLineOption listOption();
QCommandLineOption typeOption();
QMap<QString, QStringList> selectionWords();
/// @}

/// The list, or all lists, named by @p word.
RC_CALL_CATEGORY_T listNamed(const QString& word);
/// The list named by --list; all lists by default.
RC_CALL_CATEGORY_T listFrom(const Invocation& invocation);

/// The call types selected by --type, by word or number; by default the three that have a word.
std::vector<RC_CALL_TYPE_T> typesFrom(const Invocation& invocation);

/// The calls of @p types in @p list, newest first. Throws if the recent-call service does not answer.
std::vector<PHONE_ENG_RecentCall> fetchCalls(RC_CALL_CATEGORY_T list,
                                             std::span<const RC_CALL_TYPE_T> types = handset::kCallTypes);

/// Sends @p calls, ordered newest first, to the service. The oldest is sent first, so that a full list keeps the
/// newest. Shows progress if it takes long.
void sendCalls(const std::vector<PHONE_ENG_RecentCall>& calls);

} // namespace zyn::tool
