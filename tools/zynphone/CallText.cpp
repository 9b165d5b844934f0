// Calls as the tool reads and writes them: the words of their lists and types, and the columns of their
// tables.
#include "tools/zynphone/CallText.h"

#include "handset/common/Text.h"

#include <QtCore/QTimeZone>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;
using zyn::tool::CallColumn;

QString durationText(const Call& call)
{
    return zyn::handset::durationText(call.duration);
}

/// A session id is stored as UTF-8; the record's own getter reads it as Latin-1.
QString session(const Call& call)
{
    const auto length = static_cast<qsizetype>(qstrnlen(call.pttSessionId, sizeof call.pttSessionId));
    return call.isPtt() ? QString::fromUtf8(call.pttSessionId, length) : u""_s;
}

constexpr CallColumn kColumns[] = {
    {"slot", "SLOT", [](const Call& call) { return QJsonValue(call.slot); }},
    {"uid", "UID", [](const Call& call) { return QJsonValue(call.uid); }},
    {"list", "LIST", [](const Call& call) { return QJsonValue(zyn::tool::categoryWord(call.category)); }},
    {"number", "NUMBER", [](const Call& call) { return QJsonValue(call.getPhoneNumber()); }},
    {"name", "NAME", [](const Call& call) { return QJsonValue(call.getDisplayName()); }},
    {"start", "START", [](const Call& call) { return QJsonValue(zyn::tool::utcStart(call)); }, zyn::tool::localStart},
    {"duration", "DURATION", [](const Call& call) { return QJsonValue(call.duration); }, durationText},
    {"type", "TYPE", [](const Call& call) { return QJsonValue(zyn::tool::wordFor(zyn::tool::kTypes, call.callType)); }},
    {"session", nullptr, [](const Call& call) { return QJsonValue(session(call)); }},
    {"read", "READ", [](const Call& call) { return QJsonValue((call.readFlags & Call::kRead) != 0); }},
    {"completed", "COMPLETED", [](const Call& call) { return QJsonValue(call.completed != 0); }},
};

} // namespace

QString categoryWord(RC_CALL_CATEGORY_T category)
{
    return wordFor(kCategories, category);
}

QString utcStart(const PHONE_ENG_RecentCall& call)
{
    return call.getStartDateTime().toUTC().toString(Qt::ISODate);
}

QString localStart(const PHONE_ENG_RecentCall& call)
{
    return call.getStartDateTime().toString(Qt::ISODate);
}

RC_CALL_TYPE_T callTypeNamed(const QString& text, const QString& what)
{
    const std::optional<int> number = handset::wholeNumber(text);
    return number ? static_cast<RC_CALL_TYPE_T>(*number) : wordNamed(kTypes, text, what).value;
}

std::span<const CallColumn> callColumns()
{
    return slotColumns().subspan(1);
}

std::span<const CallColumn> slotColumns()
{
    return kColumns;
}

} // namespace zyn::tool
