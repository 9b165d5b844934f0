// Which calls of the log a verb is about.
#pragma once

#include "handset/recent_calls/RecentCalls.h"
#include "tools/zynphone/Command.h"

#include <span>
#include <vector>

namespace zyn::tool {

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

} // namespace zyn::tool
