// zynphone calls import: adds calls from a file to the log.
#include "tools/commands/Commands.h"

#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/interchange/RecordSchemas.h"
#include "tools/interchange/RecordsFile.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Text.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Call = PHONE_ENG_RecentCall;

Call importedCall(const QByteArray& record)
{
    return toPlain<Call>(std::as_bytes(std::span(record.constData(), static_cast<size_t>(record.size()))));
}

ExitCode importCalls(const Invocation& invocation, Console& console)
{
    const ReadRecords read = RecordsFile(invocation, callSchema(), invocation.argument(0)).read(console);
    std::vector<Call> calls;
    for (const QByteArray& record : read.records)
        calls.push_back(importedCall(record));
    sendCalls(calls);
    const QString sent = counted(static_cast<qsizetype>(calls.size()), "call");
    const auto left = read.problems.size();
    console.write(left == 0 ? u"sent %1\n"_s.arg(sent) : u"sent %1, left %2\n"_s.arg(sent).arg(left));
    return left == 0 ? Done : Failed;
}

} // namespace

Command importRow()
{
    return {
        .name = u"import"_s,
        .summary = u"Send the calls of a file to the recent-call service, which gives them new uids"_s,
        .details =
            u"\nIn the file they stand newest first. list, number and start must be there, the other fields may be:\n"
            "%1"
            "A call that cannot be read is told and left; then the exit code is 1. Of more calls than the lists\n"
            "hold, the newest stay.\n"_s.arg(RecordsFile::fieldList(callSchema())),
        .arguments = {{u"FILE"_s, u"as 'calls export' or 'calls list --json' writes it; - is standard input"_s}},
        .options = RecordsFile::importOptions(),
        .words = RecordsFile::words(),
        .run = importCalls};
}

} // namespace zyn::tool
