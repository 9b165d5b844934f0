// The five places for favourites, and their file.
#include "recentcall/utility/TopPalsDetails_p.h"

#include "platform/posix/File_p.h"
#include "platform/posix/Place_p.h"
#include "recentcall/utility/ActivityLogFile_p.h"
#include "recentcall/utility/StoreDirectory_p.h"
#include "recentcall/utility/TopPalsFile_p.h"
#include "utility/FixedText_p.h"

#include <QtCore/QFile>

#include <algorithm>
#include <cstdio>
#include <span>

#include <fcntl.h>

using zyn::posix::UniqueFd;

namespace zyn {
namespace {

QString detailsPath()
{
    return zyn::topPalsPath(QString::fromLatin1(zyn::kTopPalsDetailsName));
}

bool checkTopPalsFileHeader(const UniqueFd& file)
{
    zyn::StoreFileHeader header{0, 0};
    zyn::posix::readAt(file.get(), std::as_writable_bytes(std::span(&header, 1)), 0);
    return header.isValid();
}

/// Reads the places that the file holds whole; whether these are all.
bool load(zyn::TopPalsDetails& places, const QString& path)
{
    const UniqueFd file = zyn::posix::openTrusted(QFile::encodeName(path), O_RDONLY);
    if (!file.isValid()) {
        std::printf("TP5_AVL: RC Store:initTopPalNumberDetails(): FAIL: cannot open file %s\n",
                    path.toLatin1().constData());
        return false;
    }
    if (!checkTopPalsFileHeader(file))
        return false;
    zyn::TopPalsDetails stored;
    const ssize_t length =
        zyn::posix::readAt(file.get(), std::as_writable_bytes(std::span(stored)), off_t{zyn::topPalsDetailsOffset(0)});
    if (length < 0) {
        std::printf("TP5_AVL: RC Store:initTopPalNumberDetails():FAIL: file.status()==IO_Ok\n");
        return false;
    }
    const auto whole = static_cast<size_t>(length) / sizeof(TopPalNumberDetail);
    for (size_t i = 0; i < whole; ++i) {
        places[i].nthFileItem = stored[i].nthFileItem;
        zyn::storeText(places[i].phoneNumber, QByteArray(stored[i].phoneNumber, sizeof stored[i].phoneNumber));
    }
    return whole == places.size();
}

} // namespace

QLatin1String numberOf(const TopPalNumberDetail& place)
{
    const auto length = static_cast<qsizetype>(qstrnlen(place.phoneNumber, sizeof place.phoneNumber));
    return QLatin1String(place.phoneNumber, length);
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
    const auto offset = static_cast<int>(topPalsDetailsOffset(place));
    std::printf("TP5_AVL:RC Store: storeTopPalsDetailsInFile(): filePos = %d\n", offset);
    const UniqueFd file = openStoreFile(QFile::encodeName(path));
    const auto bytes = std::as_bytes(std::span(places).subspan(static_cast<size_t>(place), 1));
    return posix::writeAt(file.get(), bytes, off_t{offset});
}

} // namespace zyn
