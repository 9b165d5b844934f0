// zynphone settings: the recent-call settings, as the library reads them.
#include "tools/commands/Commands.h"

#include "recentcall/utility/RecentCall_Setup.h"
#include "tools/doctor/KnownSettings.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/RecordText.h"

#include <array>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Setup = RecentCall_Setup*;

constexpr Column<Setup> kSettings[] = {
    {"maxAnswered", "answered calls kept",
     [](const Setup& setup) { return QJsonValue(setup->getMaxRecordSize(RC_CALL_CATEGORY_ANSWERED)); }},
    {"maxMissed", "missed calls kept",
     [](const Setup& setup) { return QJsonValue(setup->getMaxRecordSize(RC_CALL_CATEGORY_MISSED)); }},
    {"maxDialed", "dialed calls kept",
     [](const Setup& setup) { return QJsonValue(setup->getMaxRecordSize(RC_CALL_CATEGORY_DIALED)); }},
    {"maxFrequent", "frequent calls shown", [](const Setup& setup) { return QJsonValue(setup->getMaxFrequent()); }},
    {"idleSendView", "view from idle Send",
     [](const Setup& setup) { return QJsonValue(categoryWord(setup->getIdleSendView())); }},
    {"twoLineView", "two-line view", [](const Setup& setup) { return QJsonValue(setup->getTwoLineView()); }},
    {"maxFavouriteItems", "activities kept for a favourite",
     [](const Setup& setup) { return QJsonValue(qint64{setup->getMaxTopPalsAvlItems()}); }},
    {"fixedDialingSwitch", "fixed dialing switched on",
     [](const Setup& setup) { return QJsonValue(setup->isFixedDialFlexOn()); }},
    {"fixedDialingAvailable", "fixed dialing available",
     [](const Setup& setup) { return QJsonValue(setup->isFixedDialingAvailable()); }},
};

ExitCode showSettings(const Invocation& invocation, Console& console)
{
    printSheet(console, Table(kSettings, std::array{RecentCall_Setup::instance()}), invocation.isSet(u"json"_s));
    return Done;
}

} // namespace

Command settingsCommand()
{
    Command show{.name = u"show"_s,
                 .summary = u"Show what the library reads from the settings"_s,
                 .details =
                     u"\nThe object of --json has the fields %1.\n\nThe values in the settings files may be:\n%2"_s.arg(
                         fieldNames(kSettings), valuesHelp(phoneSettings())),
                 .options = {jsonOption()},
                 .run = showSettings};
    return {.name = u"settings"_s, .summary = u"The recent-call settings"_s, .verbs = {std::move(show)}};
}

} // namespace zyn::tool
