// The store directory and the files in it.
#include "platform/posix/File_p.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/RecordFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"
#include "tools/zynphone/RecordFileCheck.h"
#include "tools/zynphone/doctor/Checks.h"
#include "tools/zynphone/doctor/Fault.h"

#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

using namespace zyn;
using namespace zyn::tool;

/// Far above the size of every file of the store.
constexpr qsizetype kSizeLimit = qsizetype{1024} * 1024;

Finding damaged(const QByteArray& path, const QStringList& problems)
{
    const QString more = problems.size() > 1 ? u" (and %1 more)"_s.arg(problems.size() - 1) : QString();
    return wrong(QFile::decodeName(path), u"damaged: %1%2"_s.arg(problems.first(), more),
                 u"look at it with zynphone inspect %1 and keep a copy; one without a valid header or size is "
                 "replaced by an empty one"_s.arg(shellWord(path)));
}

Finding checkRecords(const QByteArray& path)
{
    const std::optional<QByteArray> image = posix::readWhole(path, kSizeLimit);
    if (!image)
        return damaged(path, {u"it is too long"_s});
    const FileFindings findings = checkRecordFile(QFile::decodeName(path).section(u'/', -1), *image);
    if (!findings.isSound())
        return damaged(path, findings.problems);
    return ok(QFile::decodeName(path), u"%1 %2"_s.arg(findings.usedSlots.count()).arg(findings.kind));
}

Finding checkFavourites(const QByteArray& path)
{
    if (!isStoreFile(path, kTopPalsDetailsSize))
        return damaged(path, {u"its header or its size is not that of the favourites' file"_s});
    return ok(QFile::decodeName(path), u"the favourites"_s);
}

Finding checkFile(const QByteArray& path, Finding (*check)(const QByteArray&))
{
    if (!exists(path))
        return note(QFile::decodeName(path), u"it does not exist yet; its owner makes it"_s);
    const std::optional<Fault> fault = fileFault(path, true);
    return fault ? wrong(path, *fault) : check(path);
}

} // namespace

namespace zyn::tool {

Findings checkStore()
{
    const QByteArray directory = storeDirectoryPath();
    if (!exists(directory))
        return {note(QFile::decodeName(directory), u"it does not exist yet; its owner makes it"_s)};
    if (const auto fault = writableDirectoryFault(directory))
        return {wrong(directory, *fault)};
    Findings findings{ok(QFile::decodeName(directory), u"files can be made in it"_s)};
    for (const RC_CALL_CATEGORY_T list : kRecordLists)
        findings.push_back(checkFile(directory + recordFileName(list), checkRecords));
    findings.push_back(checkFile(directory + '/' + kTopPalsDetailsName, checkFavourites));
    return findings;
}

} // namespace zyn::tool
