// zynphone calls export: the log of recent calls as a file.
#include "tools/zynphone/ExportCommand.h"

#include "recentcall/utility/PlainBytes_p.h"
#include "tools/zynphone/CallFields.h"
#include "tools/zynphone/CallSelection.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Counted.h"
#include "tools/zynphone/RecordsFile.h"

using namespace Qt::StringLiterals;

namespace {

using namespace zyn::tool;

ExitCode exportCalls(const Invocation& call, Console& console)
{
    const QString path = call.arguments().isEmpty() ? QString(kStandardStream) : call.argument(0);
    const RecordFormat& format = formatFrom(call, path);
    std::vector<StoredField> fields = callSchema().fields;
    if (!call.isSet(u"all"_s))
        std::erase_if(fields, [](const StoredField& field) { return field.presence == StoredField::OfStore; });
    std::vector<QByteArray> records;
    for (const PHONE_ENG_RecentCall& record : fetchCalls(listFrom(call), typesFrom(call)))
        records.push_back(zyn::bytesOf(record).toByteArray());
    writeText(path, format.write(fields, records), console);
    if (path != kStandardStream)
        console.write(u"wrote %1\n"_s.arg(counted(static_cast<qsizetype>(records.size()), "call")));
    return Done;
}

} // namespace

namespace zyn::tool {

Command exportRow()
{
    return {
        .name = u"export"_s,
        .summary = u"Write calls to a file, newest first, with every byte of their records"_s,
        .details = u"\n'calls import' makes the same calls of it again.\n"_s,
        .arguments = {{u"FILE"_s, u"what it names is replaced; - (the default) is standard output"_s,
                       Argument::Optional}},
        .options = {formatOption(), listOption(), typeOption(),
                    flagOption(u"all"_s, u"write uid, slot and inUse too, which an import leaves to the service"_s)},
        .words = formatWords(selectionWords()),
        .run = exportCalls};
}

} // namespace zyn::tool
