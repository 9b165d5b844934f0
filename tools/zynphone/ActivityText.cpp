// Entries of the activity log as the tool writes them.
#include "tools/zynphone/ActivityText.h"

#include "handset/common/Text.h"
#include "tools/zynphone/CallText.h"

namespace zyn::tool {
namespace {

using Entry = PHONE_ENG_ActivityLog;

QString startText(const Entry& entry)
{
    return localStart(entry);
}

QString durationText(const Entry& entry)
{
    return zyn::handset::durationText(entry.duration);
}

constexpr ActivityColumn kColumns[] = {
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

std::span<const ActivityColumn> activityColumns()
{
    return kColumns;
}

} // namespace zyn::tool
