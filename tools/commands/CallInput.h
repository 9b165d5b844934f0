// A new call, as a command line describes it.
#pragma once

#include "recentcall/utility/PHONE_ENG_RecentCall.h"
#include "tools/zynphone/Command.h"

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

} // namespace zyn::tool
