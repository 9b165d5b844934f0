// The files of the activity log: the places of the favourites, and the entries of each contact.
#include "recentcall/utility/store/ActivityLogFile_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/PathAt_p.h"
#include "utility/FixedText_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cstdio>
#include <span>

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

template<typename File>
bool check(const FileKind& kind, const QString& fileName, int slots)
{
    std::printf("TP5_AVL: RC Store: ENTER: %s(), cr_fileName=%s\n", kind.checker, fileName.toLatin1().constData());
    const bool isValid = File::isAt(QFile::encodeName(fileName), slots);
    std::printf("TP5_AVL: RC Store: %s(), returns = %d\n", kind.checker, isValid);
    return isValid;
}

template<typename File>
bool create(const FileKind& kind, const QString& fileName, int slots)
{
    std::printf("TP5_AVL:RC Store:%s(), cr_fileName=%s\n", kind.enter, fileName.toLatin1().constData());
    const CreateResult result = File::create(QFile::encodeName(fileName), slots);
    switch (result) {
    case CreateResult::Done:
        break;
    case CreateResult::CannotOpen:
        std::printf("TP5_AVL:RC Store:%s file.open(IO_Raw|IO_WriteOnly) == FAILURE\n", kind.cannotOpen);
        break;
    case CreateResult::CannotWriteHeader:
        std::printf("TP5_AVL:RC Store:%s: file.writeBlock((char *)fileHeader) == FAILURE\n", kind.creator);
        break;
    case CreateResult::CannotWriteData:
        std::printf("TP5_AVL:RC Store:%s: file.writeBlock((char *)&data) == FAILURE\n", kind.creator);
        break;
    }
    std::printf("TP5_AVL:RC Store:  EXIT: %s(), cr_fileName=%s\n", kind.creator, fileName.toLatin1().constData());
    return result == CreateResult::Done;
}

bool isDialed(char c)
{
    return (c >= '0' && c <= '9') || c == '+';
}

QString detailsPath()
{
    return topPalsPath(QString::fromLatin1(kTopPalsDetailsName));
}

/// Reads the places that the file holds whole; whether these are all.
bool load(TopPalsDetails& places, const QString& path)
{
    const posix::UniqueFd file = posix::openTrusted(QFile::encodeName(path));
    if (!file.isValid()) {
        std::printf("TP5_AVL: RC Store:initTopPalNumberDetails(): FAIL: cannot open file %s\n",
                    path.toLatin1().constData());
        return false;
    }
    StoreFileHeader header{0, 0};
    posix::readAt(file.get(), std::as_writable_bytes(std::span(&header, 1)), 0);
    if (!header.isValid())
        return false;
    TopPalsDetails stored;
    const ssize_t length = posix::readAt(file.get(), std::as_writable_bytes(std::span(stored)),
                                         static_cast<off_t>(DetailsFile::offset(0)));
    if (length < 0) {
        std::printf("TP5_AVL: RC Store:initTopPalNumberDetails():FAIL: file.status()==IO_Ok\n");
        return false;
    }
    const auto whole = static_cast<size_t>(length) / sizeof(TopPalNumberDetail);
    for (size_t i = 0; i < whole; ++i) {
        places[i].nthFileItem = stored[i].nthFileItem;
        storeText(places[i].phoneNumber, QByteArray(stored[i].phoneNumber, sizeof stored[i].phoneNumber));
    }
    return whole == places.size();
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

QByteArray contactFile(Trace& trace, QLatin1String number)
{
    // What numbers are made of names no other file, and in a path of ASCII nothing needs a conversion.
    std::array<char, sizeof(PHONE_ENG_RecentCall::phoneNumber) + 1> name = {'/'};
    if (!number.isEmpty() && number.size() < qsizetype{name.size()} && std::ranges::all_of(number, isDialed)) {
        const auto* const end = std::ranges::copy(number, name.begin() + 1).out;
        QByteArray path = storeFilePath(QByteArrayView(name.begin(), end));
        if (isAscii(path))
            return path;
    }
    trace.flush();
    return QFile::encodeName(contactPath(number));
}

QByteArray contactFile(Trace& trace, const QString& number)
{
    const QByteArray latin1 = number.toLatin1();
    if (QLatin1String(latin1) == number)
        return contactFile(trace, QLatin1String(latin1));
    trace.flush();
    return QFile::encodeName(contactPath(number));
}

QByteArray shownPath(const QByteArray& path)
{
    return isAscii(path) ? path : QFile::decodeName(path).toLatin1();
}

bool checkTopPalsDetailsFile(const QString& fileName)
{
    return check<DetailsFile>(kDetails, fileName, DetailsFile::kMaxSlots);
}

bool checkTopPalsFile(const QString& fileName, int slots)
{
    return check<ContactFile>(kContact, fileName, slots);
}

bool createTopPalsDetailsFile(const QString& fileName)
{
    return create<DetailsFile>(kDetails, fileName, DetailsFile::kMaxSlots);
}

bool createActivityLogTopPalsFile(const QString& fileName, int slots)
{
    return create<ContactFile>(kContact, fileName, slots);
}

bool removeTopPalsAvlFile(const QString& number, int slots)
{
    const QString path = contactPath(number);
    const bool isRemoved = checkTopPalsFile(path, slots) && posix::removeFile(QFile::encodeName(path));
    std::printf("TP5_AVL: RC Store: EXIT: removeTopPalsAvlFile()\n");
    return isRemoved;
}

void initTopPalNumberDetails(TopPalsDetails& places)
{
    std::printf("TP5_AVL:RC Store: ENTER: initTopPalNumberDetails():\n");
    const QString path = detailsPath();
    makeStoreDirectory();
    bool isLoaded = false;
    if (checkTopPalsDetailsFile(path)) {
        isLoaded = load(places, path);
    } else {
        std::printf("TP5_AVL:RC Store:initTopPalNumberDetails(): File not yet created\n");
        isLoaded = createTopPalsDetailsFile(path);
        // It may be that of another process that was faster, with favourites.
        if (isLoaded)
            load(places, path);
    }
    std::printf("TP5_AVL: RC Store:initTopPalNumberDetails(): EXIT: returning status = %d\n", isLoaded);
}

bool storeTopPalsDetailsInFile(const TopPalsDetails& places, int place)
{
    std::printf("TP5_AVL:RC Store: ENTER: storeTopPalsDetailsInFile(): \n");
    const QString path = detailsPath();
    std::printf("TP5_AVL:RC Store: storeTopPalsDetailsInFile(): filePos = %d\n",
                static_cast<int>(DetailsFile::offset(place)));
    const posix::UniqueFd file = openStoreFile(QFile::encodeName(path));
    return DetailsFile::write(file.get(), place, places.at(static_cast<size_t>(place)));
}

bool modifyTopPalsAvlItem(Trace& trace, const PHONE_ENG_ActivityLog& record, int slots)
{
    trace << "TP5_AVL:RC Store:  ENTER: modifyTopPalsAvlItem()\n";
    bool isWritten = false;
    if (isContactSlot(record.topPalsAvlPos, slots)) {
        const posix::UniqueFd file = openStoreFile(contactFile(trace, fieldText(record.phoneNumber)));
        if (!file.isValid())
            trace << "TP5_AVL:RC Store: FAIL: file.open(IO_Raw|IO_ReadWrite):\n";
        isWritten = file.isValid() && ContactFile::write(file.get(), record.topPalsAvlPos, record);
    } else {
        trace << "TP5_AVL:RC Store:  FAIL: isTopPalsAvlLawyalPos:FALSE:\n";
    }
    trace << "TP5_AVL:RC Store:  EXIT: modifyTopPalsAvlItem()\n";
    return isWritten;
}

bool removeTopPalsAvlFileItem(Trace& trace, int fd, int pos, int slots)
{
    trace << "TP5_AVL: RC Store: ENTER: removeTopPalsAvlFileItem()\n";
    const bool isRemoved = isContactSlot(pos, slots) && ContactFile::writeBlank(fd, pos);
    trace << "TP5_AVL:RC Store:  EXIT: removeTopPalsAvlFileItem()\n";
    return isRemoved;
}

} // namespace zyn
