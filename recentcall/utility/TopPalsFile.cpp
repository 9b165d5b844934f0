// The files of the activity log: their names, and how they are checked, made and removed.
#include "recentcall/utility/TopPalsFile_p.h"

#include "platform/posix/Place_p.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cstdio>

namespace zyn {
namespace {

/// The lines about the two kinds of files differ in these texts.
struct FileKind
{
    const char* checker;
    const char* creator;
    const char* enter;
    const char* cannotOpen;
};

constexpr FileKind kDetails = {"checkTopPalsDetailsFile", "createTopPalsDetailsFile", "ENTER: createTopPalsDetailsFile",
                               " createTopPalsDetailsFile:"};
constexpr FileKind kContact = {"checkTopPalsFile", "createActivityLogTopPalsFile",
                               "  ENTER: createActivityLogTopPalsFile", "  ENTER:"};

bool check(const FileKind& kind, const QString& fileName, qint64 size)
{
    std::printf("TP5_AVL: RC Store: ENTER: %s(), cr_fileName=%s\n", kind.checker, fileName.toLatin1().constData());
    const bool isValid = zyn::isStoreFile(QFile::encodeName(fileName), size);
    std::printf("TP5_AVL: RC Store: %s(), returns = %d\n", kind.checker, isValid);
    return isValid;
}

bool create(const FileKind& kind, const QString& fileName, const QByteArray& contents)
{
    std::printf("TP5_AVL:RC Store:%s(), cr_fileName=%s\n", kind.enter, fileName.toLatin1().constData());
    const zyn::CreateResult result = zyn::createStoreFile(QFile::encodeName(fileName), contents);
    switch (result) {
    case zyn::CreateResult::Done:
        break;
    case zyn::CreateResult::CannotOpen:
        std::printf("TP5_AVL:RC Store:%s file.open(IO_Raw|IO_WriteOnly) == FAILURE\n", kind.cannotOpen);
        break;
    case zyn::CreateResult::CannotWriteHeader:
        std::printf("TP5_AVL:RC Store:%s: file.writeBlock((char *)fileHeader) == FAILURE\n", kind.creator);
        break;
    case zyn::CreateResult::CannotWriteData:
        std::printf("TP5_AVL:RC Store:%s: file.writeBlock((char *)&data) == FAILURE\n", kind.creator);
        break;
    }
    std::printf("TP5_AVL:RC Store:  EXIT: %s(), cr_fileName=%s\n", kind.creator, fileName.toLatin1().constData());
    return result == zyn::CreateResult::Done;
}

/// A header and @p count times @p item.
QByteArray freshFile(QByteArrayView item, int count)
{
    return zyn::bytesOf(zyn::StoreFileHeader{}).toByteArray() + item.toByteArray().repeated(count);
}

} // namespace

QString topPalsPath(const QString& name)
{
    if (name.isEmpty())
        std::printf("TP5_AVL:RC Store: getStoreFileName(): cr_phoneNumber.isEmpty() == TRUE\n");
    if (name.isEmpty() || isForeignName(name))
        return {};
    return storePath(name);
}

QString contactPath(const QString& number)
{
    return number == QLatin1String(kTopPalsDetailsName) ? QString() : topPalsPath(number);
}

bool checkTopPalsDetailsFile(const QString& fileName)
{
    return check(kDetails, fileName, kTopPalsDetailsSize);
}

bool checkTopPalsFile(const QString& fileName, int slots)
{
    return check(kContact, fileName, contactFileSize(slots));
}

bool createTopPalsDetailsFile(const QString& fileName)
{
    const TopPalNumberDetail free;
    return create(kDetails, fileName, freshFile(bytesOf(free), ActivityLog_ENG_RecordStore::kFavourites));
}

bool createActivityLogTopPalsFile(const QString& fileName, int slots)
{
    const PHONE_ENG_ActivityLog blank;
    return create(kContact, fileName, freshFile(contactRecordBytes(blank), slots));
}

bool removeTopPalsAvlFile(const QString& number, int slots)
{
    const QString path = contactPath(number);
    const bool isRemoved = checkTopPalsFile(path, slots) && posix::removeFile(QFile::encodeName(path));
    std::printf("TP5_AVL: RC Store: EXIT: removeTopPalsAvlFile()\n");
    return isRemoved;
}

} // namespace zyn
