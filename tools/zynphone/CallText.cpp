// Calls as the tool reads and writes them: the words of their lists and types, and the columns of their
// tables.
#include "tools/zynphone/CallText.h"

#include <QtCore/QTimeZone>

using namespace Qt::StringLiterals;

namespace {

using Call = PHONE_ENG_RecentCall;
using zyn::tool::CallColumn;

constexpr qint64 kSecondsPerMinute = 60;
constexpr qint64 kSecondsPerHour = 3600;

/// h:mm:ss; a record may hold any number.
QString durationText(const Call& call)
{
    const qint64 seconds = std::abs(qint64{call.duration});
    return u"%1%2:%3:%4"_s.arg(call.duration < 0 ? "-"_L1 : ""_L1)
        .arg(seconds / kSecondsPerHour)
        .arg(seconds % kSecondsPerHour / kSecondsPerMinute, 2, 10, QLatin1Char('0'))
        .arg(seconds % kSecondsPerMinute, 2, 10, QLatin1Char('0'));
}

QString localStart(const Call& call)
{
    return call.getStartDateTime().toString(Qt::ISODate);
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
    {"start", "START",
     [](const Call& call) { return QJsonValue(call.getStartDateTime().toUTC().toString(Qt::ISODate)); }, localStart},
    {"duration", "DURATION", [](const Call& call) { return QJsonValue(call.duration); }, durationText},
    {"type", "TYPE", [](const Call& call) { return QJsonValue(zyn::tool::wordFor(zyn::tool::kTypes, call.callType)); }},
    {"session", nullptr, [](const Call& call) { return QJsonValue(session(call)); }},
    {"read", "READ", [](const Call& call) { return QJsonValue((call.readFlags & Call::kRead) != 0); }},
    {"completed", "COMPLETED", [](const Call& call) { return QJsonValue(call.completed != 0); }},
};

} // namespace

namespace zyn::tool {

QString categoryWord(RC_CALL_CATEGORY_T category)
{
    return wordFor(kCategories, category);
}

RC_CALL_TYPE_T callTypeNamed(const QString& text, const QString& what)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber ? static_cast<RC_CALL_TYPE_T>(number) : wordNamed(kTypes, text, what).value;
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
