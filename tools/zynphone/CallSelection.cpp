// Which calls of the log a verb is about.
#include "tools/zynphone/CallSelection.h"

#include "recentcall/utility/RC_Interface.h"
#include "tools/zynphone/CallText.h"
#include "tools/zynphone/ServiceError.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Call = PHONE_ENG_RecentCall;

constexpr QLatin1String kAllTypes("all");

} // namespace

namespace zyn::tool {

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

RC_CALL_CATEGORY_T listFrom(const Invocation& call)
{
    return call.isSet(u"list"_s) ? listNamed(call.value(u"list"_s)) : RC_CALL_CATEGORY_ALL;
}

const std::vector<RC_CALL_TYPE_T>& knownTypes()
{
    static const std::vector<RC_CALL_TYPE_T> types{RC_CALL_TYPE_VOICE, RC_CALL_TYPE_PTT1, RC_CALL_TYPE_PTT2};
    return types;
}

std::vector<RC_CALL_TYPE_T> typesFrom(const Invocation& call)
{
    const QString type = u"type"_s;
    if (!call.isSet(type) || call.value(type) == kAllTypes)
        return knownTypes();
    return {callTypeNamed(call.value(type), type)};
}

std::vector<Call> fetchCalls(RC_CALL_CATEGORY_T list, const std::vector<RC_CALL_TYPE_T>& types)
{
    std::vector<Call> calls;
    for (const RC_CALL_TYPE_T type : types) {
        QPtrList<RC_RecordInterface> records;
        if (RC_Interface().getRecordList(records, list, type) != 0)
            throw recentCallServiceError();
        for (const RC_RecordInterface* record : records)
            calls.push_back(*static_cast<const RC_RecordInterfaceImpl*>(record)->getData());
    }
    std::ranges::stable_sort(calls, [](const Call& left, const Call& right) { return left < right; });
    return calls;
}

} // namespace zyn::tool
