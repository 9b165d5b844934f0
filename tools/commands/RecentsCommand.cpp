// zynphone recents: the recent-call screens.
#include "tools/commands/Commands.h"

#include "handset/common/TerminationSignals.h"
#include "handset/recentcall_screen/ScreenPage.h"
#include "recentcall/utility/RC_MsgInterface.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/RecentCall_MsgClient.h"
#include "tools/commands/Candidates.h"
#include "tools/commands/MessageSending.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/RecordText.h"
#include "tools/zynphone/Table.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QScopeGuard>

#include <functional>
#include <optional>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using handset::kPickerPage;
using handset::kScreenPages;
using handset::ScreenPage;

QString sendOnlyDetails()
{
    return u"\nThe screens do not say what becomes of it.\n"_s + sendingDetails();
}

ExitCode sendToScreens(Console& console, const std::function<bool()>& send)
{
    return sendOn(kRecentCallChannel, console, [&send] {
        if (!send())
            throw failure(u"cannot send on %1"_s.arg(QLatin1String(kRecentCallChannel)));
    });
}

RC_CALL_CATEGORY_T categoryFrom(const QString& word)
{
    return wordNamed(kCategories, word, u"list"_s).value;
}

/// The page of that name, or any number: the screens decide which numbers are pages.
RC_PAGE_ID_T pageFrom(const QString& word)
{
    for (const ScreenPage& page : kScreenPages) {
        if (word == QLatin1String(page.name))
            return page.page;
    }
    return static_cast<RC_PAGE_ID_T>(wholeNumber(word, u"page"_s));
}

ExitCode showList(const Invocation& invocation, Console& console)
{
    const RC_CALL_CATEGORY_T category = categoryFrom(invocation.argument(0));
    return sendToScreens(console, [category] { return RecentCall_Msg::requestShowUI(category); });
}

ExitCode showPage(const Invocation& invocation, Console& console)
{
    const RC_PAGE_ID_T page = pageFrom(invocation.argument(0));
    return sendToScreens(console, [page] { return RecentCall_Msg::requestShowPage(page); });
}

ExitCode showDetail(const Invocation& invocation, Console& console)
{
    const int index = wholeNumber(invocation.argument(1), u"INDEX"_s);
    const RC_CALL_CATEGORY_T category = categoryFrom(invocation.argument(0));
    return sendToScreens(console, [=] { return RecentCall_Msg::showRecordDetail(index, category); });
}

ExitCode hide(const Invocation& /*invocation*/, Console& console)
{
    return sendToScreens(console, [] { return RecentCall_Msg::requestHideUI(); });
}

ExitCode pick(const Invocation& invocation, Console& console)
{
    const TimeLimit limit(invocation, u"timeout"_s);
    requireChannel(kRecentCallChannel, u"listen on"_s);
    const handset::TerminationSignals signalsThatEnd;
    RC_MsgInterface* const screens = RC_MsgInterface::instance();
    const auto destroy = qScopeGuard([] {
        RC_MsgInterface::destruction();
        RecentCall_MsgClient::destruction();
    });
    std::optional<QString> answer; // empty if nothing was picked
    QObject::connect(screens, &RC_MsgInterface::rcFinished, screens, [&answer](bool selected, const QString& number) {
        // More may arrive in the turn of the event loop that ends it.
        if (!answer)
            answer = selected ? number : QString();
        QCoreApplication::quit();
    });
    screens->requestShowUI(kPickerPage);
    limit.start();
    QCoreApplication::exec();
    if (!answer && signalsThatEnd.hasCome())
        throw CommandError(Interrupted, u"interrupted; no number was picked"_s);
    if (!answer)
        throw failure(u"the screens did not answer"_s);
    if (answer->isEmpty())
        throw CommandError(NothingPicked, u"no number was picked"_s);
    printValue(console, printable(*answer), {{u"number"_s, *answer}}, invocation.isSet(u"json"_s));
    return Done;
}

QStringList pageNames()
{
    QStringList names;
    for (const ScreenPage& page : kScreenPages)
        names += QLatin1String(page.name);
    return names;
}

QMap<QString, QStringList> listWords()
{
    return {{u"LIST"_s, wordTexts(kCategories)}};
}

const Argument kListArgument{u"LIST"_s, u"answered, missed, dialed, all, extra or none"_s};

Command showScreenRow()
{
    return {.name = u"show"_s,
            .summary = u"Ask for the calls of a list"_s,
            .details = sendOnlyDetails(),
            .arguments = {kListArgument},
            .words = listWords(),
            .run = showList};
}

Command pageRow()
{
    return {.name = u"page"_s,
            .summary = u"Ask for a page"_s,
            .details = sendOnlyDetails(),
            .arguments = {{u"PAGE"_s, u"%1, or any number"_s.arg(pageNames().join(u", "_s))}},
            .words = {{u"PAGE"_s, pageNames()}},
            .run = showPage};
}

Command detailRow()
{
    return {.name = u"detail"_s,
            .summary = u"Ask for the details of one call"_s,
            .details = sendOnlyDetails(),
            .arguments = {kListArgument, {u"INDEX"_s, u"of the call in the list, newest first, from 0"_s}},
            .words = listWords(),
            .sources = {{u"INDEX"_s, callIndices}},
            .run = showDetail};
}

Command pickRow()
{
    return {.name = u"pick"_s,
            .summary = u"Ask for the number picker, and show the number that is picked"_s,
            .details =
                u"\nWithout --timeout it waits for as long as nobody answers. The exit code is %1 when none was\n"
                u"picked, 1 when there was no answer before the time was over, and %2 when a signal came first.\n"
                u"The object of --json has the field number.\n"_s.arg(int{NothingPicked})
                    .arg(int{Interrupted}),
            .options = {jsonOption(), valueOption(u"timeout"_s, u"SECONDS"_s, u"wait no longer for the answer"_s)},
            .run = pick};
}

} // namespace

Command recentsCommand()
{
    return {.name = u"recents"_s,
            .summary = u"The recent-call screens"_s,
            .verbs = {
                showScreenRow(),
                pageRow(),
                detailRow(),
                {.name = u"hide"_s, .summary = u"Ask the screens to hide"_s, .details = sendOnlyDetails(), .run = hide},
                pickRow()}};
}

} // namespace zyn::tool
