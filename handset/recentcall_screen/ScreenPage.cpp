// The pages of the recent-call screens, and their text.
#include "handset/recentcall_screen/ScreenPage.h"

#include "handset/common/Text.h"
#include "handset/recent_calls/RecentCalls.h"

using namespace Qt::StringLiterals;

namespace zyn::handset {
namespace {

using Call = PHONE_ENG_RecentCall;

QString listText(const Call& call)
{
    const ScreenPage* const page = pageListing(call.category);
    return page ? QString(QLatin1String(page->name)) : QString::number(call.category);
}

constexpr struct
{
    const char* title;
    QString (*text)(const Call& call);
} kColumns[] = {
    {"NEW", [](const Call& call) { return isUnread(call) ? u"*"_s : QString(); }},
    {"LIST", listText},
    {"NUMBER", [](const Call& call) { return printable(call.getPhoneNumber()); }},
    {"NAME", [](const Call& call) { return printable(call.getDisplayName()); }},
    {"TIME", [](const Call& call) { return timeText(call.getStartDateTime()); }},
    {"DURATION", [](const Call& call) { return durationText(call.duration); }},
};

} // namespace

QString pageText(const ScreenPage& page, const std::vector<Call>& calls)
{
    QString title = u"%1: %2, %3 unread\n"_s.arg(QLatin1String(page.name), counted(std::ssize(calls), "call"))
                        .arg(std::ranges::count_if(calls, isUnread));
    if (calls.empty())
        return title;
    QStringList titles{u"ROW"_s};
    for (const auto& column : kColumns)
        titles += QLatin1String(column.title);
    QList<QStringList> rows{titles};
    for (const Call& call : calls) {
        QStringList row{QString::number(rows.size() - 1)};
        for (const auto& column : kColumns)
            row += column.text(call);
        rows += row;
    }
    return title + alignedLines(rows);
}

QString detailText(const ScreenPage& page, int index, const Call& call)
{
    QList<QStringList> lines;
    for (const auto& column : kColumns)
        lines += {QLatin1String(column.title), column.text(call)};
    return u"%1, row %2\n"_s.arg(QLatin1String(page.name)).arg(index) + alignedLines(lines);
}

} // namespace zyn::handset
