// Calls, and entries of the favourites, as text.
#include "tools/zynphone/RecordText.h"

#include "handset/common/Text.h"

#include <QtCore/QTimeZone>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;
using Entry = PHONE_ENG_ActivityLog;

template<typename Record>
QString startText(const Record& record)
{
    return localStart(record);
}

template<typename Record>
QString durationText(const Record& record)
{
    return handset::durationText(record.duration);
}

/// A session id is stored as UTF-8; the record's own getter reads it as Latin-1.
QString session(const Call& call)
{
    const auto length = static_cast<qsizetype>(qstrnlen(call.pttSessionId, sizeof call.pttSessionId));
    return call.isPtt() ? QString::fromUtf8(call.pttSessionId, length) : u""_s;
}

constexpr CallColumn kCallColumns[] = {
    {"slot", "SLOT", [](const Call& call) { return QJsonValue(call.slot); }},
    {"uid", "UID", [](const Call& call) { return QJsonValue(call.uid); }},
    {"list", "LIST", [](const Call& call) { return QJsonValue(categoryWord(call.category)); }},
    {"number", "NUMBER", [](const Call& call) { return QJsonValue(call.getPhoneNumber()); }},
    {"name", "NAME", [](const Call& call) { return QJsonValue(call.getDisplayName()); }},
    {"start", "START", [](const Call& call) { return QJsonValue(utcStart(call)); }, startText},
    {"duration", "DURATION", [](const Call& call) { return QJsonValue(call.duration); }, durationText},
    {"type", "TYPE", [](const Call& call) { return QJsonValue(wordFor(kTypes, call.callType)); }},
    {"session", nullptr, [](const Call& call) { return QJsonValue(session(call)); }},
    {"read", "READ", [](const Call& call) { return QJsonValue((call.readFlags & Call::kRead) != 0); }},
    {"completed", "COMPLETED", [](const Call& call) { return QJsonValue(call.completed != 0); }},
};

constexpr ActivityColumn kActivityColumns[] = {
    {"place", "PLACE", [](const Entry& entry) { return QJsonValue(entry.topPalsAvlPos); }},
    {"index", nullptr, [](const Entry& entry) { return QJsonValue(entry.topPalsAvlIndex); }},
    {"uid", nullptr, [](const Entry& entry) { return QJsonValue(entry.uid); }},
    {"list", "LIST", [](const Entry& entry) { return QJsonValue(categoryWord(entry.category)); }},
    {"number", nullptr, [](const Entry& entry) { return QJsonValue(entry.getPhoneNumber()); }},
    {"name", "NAME", [](const Entry& entry) { return QJsonValue(entry.getDisplayName()); }},
    {"start", "START", [](const Entry& entry) { return QJsonValue(utcStart(entry)); }, startText},
    {"duration", "DURATION", [](const Entry& entry) { return QJsonValue(entry.duration); }, durationText},
    {"type", nullptr, [](const Entry& entry) { return QJsonValue(wordFor(kTypes, entry.callType)); }},
    {"messageType", "MESSAGE TYPE", [](const Entry& entry) { return QJsonValue(entry.msgType); }},
    {"messageInfo", nullptr, [](const Entry& entry) { return QJsonValue(entry.msgInfo); }},
    {"message", "MESSAGE", [](const Entry& entry) { return QJsonValue(entry.getMsgString()); }},
    {"read", "READ", [](const Entry& entry) { return QJsonValue((entry.readFlags & Entry::kRead) != 0); }},
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
    return handset::timeText(call.getStartDateTime());
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
    return kCallColumns;
}

std::span<const ActivityColumn> activityColumns()
{
    return kActivityColumns;
}

} // namespace zyn::tool
