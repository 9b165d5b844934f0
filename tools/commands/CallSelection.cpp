// Which calls of the log a verb is about.
#include "tools/commands/CallSelection.h"

#include "tools/zynphone/CallText.h"
#include "tools/zynphone/ServiceError.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr QLatin1String kAllTypes("all");

} // namespace

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

} // namespace zyn::tool
