// The store directory and the files in it.
#include "platform/posix/File_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/RecordFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Fault.h"
#include "tools/store/FileCheck.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Far above the size of every store file.
constexpr qsizetype kStoreFileLimit = qsizetype{1024} * 1024;

Finding damaged(const QByteArray& path, const QStringList& problems)
{
    const QString more = problems.size() > 1 ? u" (and %1 more)"_s.arg(problems.size() - 1) : QString();
    return wrong(QFile::decodeName(path), u"damaged: %1%2"_s.arg(problems.first(), more),
                 u"zynphone inspect --repair %1, which keeps a copy; zynphone inspect %2 shows the file"_s.arg(
                     shellWord(storeDirectoryPath()), shellWord(path)));
}

/// Checks a file with @p check.
Finding checkContents(const QByteArray& path, FileReport (*check)(const QString&, const QByteArray&))
{
    const std::optional<QByteArray> image = posix::readWhole(path, kStoreFileLimit);
    if (!image)
        return damaged(path, {u"it is too long"_s});
    const FileReport report = check(QFile::decodeName(path).section(u'/', -1), *image);
    if (!report.isValid())
        return damaged(path, report.findings.positionedTexts());
    return ok(QFile::decodeName(path), u"%1, %2 in use"_s.arg(report.kind, QString::number(report.usedSlots.count())));
}

Finding checkStoreFile(const QByteArray& path, const FileKind& kind)
{
    if (!exists(path))
        return note(QFile::decodeName(path), u"it does not exist yet; its owner makes it"_s);
    const std::optional<Finding> fault = fileFault(path, true);
    return fault ? *fault : checkContents(path, kind.check);
}

} // namespace

Findings checkStore()
{
    const QByteArray directory = storeDirectoryPath();
    if (!exists(directory))
        return {note(QFile::decodeName(directory), u"it does not exist yet; its owner makes it"_s)};
    if (const auto fault = writableDirectoryFault(directory))
        return {*fault};
    Findings findings{ok(QFile::decodeName(directory), u"files can be made in it"_s)};
    for (const RC_CALL_CATEGORY_T list : kRecordLists)
        findings.push_back(checkStoreFile(directory + recordFileName(list), kRecordFileKind));
    findings.push_back(checkStoreFile(directory + '/' + kTopPalsDetailsName, kFavouritesFileKind));
    for (const QString& name : QDir(QFile::decodeName(directory)).entryList(QDir::Files)) {
        if (isContactFileName(name))
            findings.push_back(checkStoreFile(directory + '/' + QFile::encodeName(name), kContactFileKind));
    }
    return findings;
}

} // namespace zyn::tool
