// Makes a sound file of the favourites out of a damaged one.
#include "tools/store/FavouritesRepair.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/store/FavouritesFileCheck.h"
#include "tools/store/StoreFileProblems.h"
#include "utility/FixedText_p.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

using Detail = TopPalNumberDetail;

const QString& fileName()
{
    static const QString name = QLatin1String(zyn::kTopPalsDetailsName);
    return name;
}

QString numberOf(const Detail& detail)
{
    return zyn::latin1Text(detail.phoneNumber);
}

} // namespace

FavouritesRepair::FavouritesRepair(const StoreFiles& files, Findings& log)
    : m_files(files)
    , m_log(log)
{
    if (!files.images().contains(fileName()))
        return;
    const QByteArray image = files.image(fileName());
    const bool isTrusted = hasValidHeader(image);
    for (int place = 0; place < placeCount(image); ++place)
        take(detailAt(image, place), place, isTrusted);
    if (!isTrusted)
        m_log.add(fileName(), u"given a new header"_s);
    if (image.size() != kTopPalsDetailsSize)
        m_log.add(fileName(), u"given its size of %1 bytes"_s.arg(kTopPalsDetailsSize));
}

bool FavouritesRepair::add(const QString& number)
{
    const auto free = std::ranges::find(m_places, Detail::kFree, &Detail::nthFileItem);
    Detail detail;
    storeText(detail.phoneNumber, number.toLatin1());
    if (free == m_places.end() || numberOf(detail) != number)
        return false;
    detail.nthFileItem = static_cast<int32_t>(free - m_places.begin());
    *free = detail;
    tell(detail.nthFileItem, u"taken by %1, whose file has entries"_s.arg(number));
    return true;
}

QByteArray FavouritesRepair::image() const
{
    QByteArray image = bytesOf(StoreFileHeader{}).toByteArray();
    for (const Detail& place : m_places)
        image += bytesOf(place);
    return image;
}

void FavouritesRepair::take(const Detail& found, int place, bool isTrusted)
{
    Detail detail = found;
    if (!isTerminated(detail.phoneNumber)) {
        std::end(detail.phoneNumber)[-1] = '\0';
        tell(place, u"the number was cut by a character, for its NUL"_s);
    }
    const QString number = numberOf(detail);
    if (detail.nthFileItem == Detail::kFree && number.isEmpty())
        return;
    // A header that is wrong says that the rest may be anything.
    const bool isLikely = detail.nthFileItem == place || (isTrusted && detail.nthFileItem != Detail::kFree);
    if (!(isLikely || hasFile(number)) || !canNameContactFile(number) || isTaken(number)) {
        tell(place, u"made free, of the number '%1'"_s.arg(number));
        return;
    }
    if (detail.nthFileItem != place)
        tell(place, u"it names place %1: put right"_s.arg(detail.nthFileItem));
    detail.nthFileItem = place;
    m_places[static_cast<size_t>(place)] = detail;
}

void FavouritesRepair::tell(int place, const QString& text)
{
    m_log.add(fileName(), kPlaceWord, place, text);
}

bool FavouritesRepair::hasFile(const QString& number) const
{
    const auto file = m_files.images().find(number);
    return file != m_files.images().end() && file->second;
}

bool FavouritesRepair::isTaken(const QString& number) const
{
    return std::ranges::any_of(
        m_places, [&](const Detail& place) { return place.nthFileItem != Detail::kFree && numberOf(place) == number; });
}

} // namespace zyn::tool
