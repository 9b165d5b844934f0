// zynphone doctor: why nothing arrives.
#include "tools/commands/Commands.h"

#include "tools/doctor/Checks.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Table.h"
#include "tools/zynphone/Text.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct DoctorCheck
{
    const char* topic;
    Findings (*run)();
};

/// Ordered so that causes come before their effects.
constexpr DoctorCheck kChecks[] = {
    {"environment", checkEnvironment},
    {"channels", checkChannels},
    {"processes", checkProcesses},
    {"units", checkUnits},
    {"services", checkServices},
    {"modem", checkModem},
    {"store", checkStore},
    {"settings", checkSettings},
    {"switches", checkSwitches},
};

struct LevelWord
{
    const char* text;
    Colour colour;
};

/// By severity.
constexpr std::array<LevelWord, 3> kLevels{{{"ok", Colour::Green}, {"note", Colour::Yellow}, {"wrong", Colour::Red}}};
constexpr qsizetype kLevelWidth = 5;
constexpr qsizetype kTopicWidth = 11;

const LevelWord& levelWord(Severity severity)
{
    return kLevels.at(static_cast<size_t>(severity));
}

struct FindingRow
{
    const char* topic;
    Finding finding;
};

constexpr Column<FindingRow> kFindingColumns[] = {
    {"level", nullptr,
     [](const FindingRow& row) { return QJsonValue(QLatin1String(levelWord(row.finding.severity).text)); }},
    {"topic", nullptr, [](const FindingRow& row) { return QJsonValue(QLatin1String(row.topic)); }},
    {"subject", nullptr, [](const FindingRow& row) { return QJsonValue(row.finding.subject); }},
    {"text", nullptr, [](const FindingRow& row) { return QJsonValue(row.finding.text); }},
    {"remedy", nullptr,
     [](const FindingRow& row) {
         return row.finding.remedy.isEmpty() ? QJsonValue() : QJsonValue(row.finding.remedy);
     }},
};

QString lineOf(const FindingRow& row, bool inColour)
{
    const LevelWord& level = levelWord(row.finding.severity);
    const QString word = QString(QLatin1String(level.text)).leftJustified(kLevelWidth);
    QString line = u"%1  %2  %3: %4\n"_s.arg(inColour ? coloured(word, level.colour) : word,
                                             QString(QLatin1String(row.topic)).leftJustified(kTopicWidth),
                                             printable(row.finding.subject), printable(row.finding.text));
    if (!row.finding.remedy.isEmpty())
        line += QString(kLevelWidth + 2, u' ') + u"do: "_s + printable(row.finding.remedy) + u'\n';
    return line;
}

void printReport(const std::vector<FindingRow>& rows, qsizetype faults, Console& console)
{
    const bool inColour = console.isColourful();
    QString report;
    for (const FindingRow& row : rows)
        report += lineOf(row, inColour);
    console.write(report + (faults == 0 ? u"Nothing is wrong.\n"_s : u"%1 to mend.\n"_s.arg(counted(faults, "thing"))));
}

ExitCode examine(const Invocation& invocation, Console& console)
{
    std::vector<FindingRow> rows;
    for (const DoctorCheck& check : kChecks) {
        for (Finding& finding : check.run())
            rows.push_back({check.topic, std::move(finding)});
    }
    const auto faults =
        std::ranges::count_if(rows, [](const FindingRow& row) { return row.finding.severity == Severity::Wrong; });
    if (invocation.isSet(u"json"_s))
        console.write(QJsonDocument(Table(kFindingColumns, rows).json()));
    else
        printReport(rows, faults, console);
    return faults == 0 ? Done : Failed;
}

} // namespace

Command doctorCommand()
{
    return {.name = u"doctor"_s,
            .summary = u"Tell why nothing arrives, and what to do: exit code 0 when nothing is wrong, else 1"_s,
            .details = u"\nIt looks at the environment, the channels and who listens, your programs that use other\n"
                       "channels or other libraries, the units that start programs of another installation, the\n"
                       "services, the store, the settings and the feature switches, and changes nothing. Other users' "
                       "programs are not looked at.\n"
                       "The objects of --json have the fields %1;\nlevel is ok, note or wrong, and remedy null where "
                       "there is nothing to do.\n"_s.arg(fieldNames(kFindingColumns)),
            .options = {jsonOption()},
            .run = examine};
}

} // namespace zyn::tool
