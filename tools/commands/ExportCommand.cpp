// zynphone calls export: the log of recent calls as a file.
#include "tools/commands/Commands.h"

#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/commands/CallOptions.h"
#include "tools/interchange/RecordSchemas.h"
#include "tools/interchange/RecordsFile.h"

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

ExitCode exportCalls(const Invocation& invocation, Console& console)
{
    const RecordsFile file(invocation, callSchema(), invocation.argument(0));
    std::vector<QByteArray> records;
    for (const PHONE_ENG_RecentCall& record : fetchCalls(listFrom(invocation), typesFrom(invocation)))
        records.push_back(bytesOf(record).toByteArray());
    file.write(records, console);
    return Done;
}

QMap<QString, QStringList> allWords()
{
    QMap<QString, QStringList> words = selectionWords();
    words.insert(RecordsFile::words());
    return words;
}

} // namespace

Command exportRow()
{
    return {
        .name = u"export"_s,
        .summary = u"Write calls to a file, newest first, with every byte of their records"_s,
        .details =
            u"\nOnly --all writes uid, slot and inUse. 'calls import' makes the same calls again of the others.\n"_s,
        .arguments = {{u"FILE"_s, u"is replaced; - (the default) is standard output"_s, Argument::Optional}},
        .options = RecordsFile::exportOptions() + QList{listOption(), typeOption()},
        .words = allWords(),
        .run = exportCalls};
}

} // namespace zyn::tool
