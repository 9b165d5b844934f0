// Checks the file that names the favourites.
#include "tools/store/FavouritesFileCheck.h"

#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/StoreFileProblems.h"
#include "utility/FixedText_p.h"

#include <algorithm>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

struct Favourite
{
    int place;
    QString number;
};

constexpr Column<Favourite> kColumns[] = {
    {"place", "PLACE", [](const Favourite& favourite) { return QJsonValue(favourite.place); }},
    {"number", "NUMBER", [](const Favourite& favourite) { return QJsonValue(favourite.number); }},
};

/// What is wrong with @p detail, in @p place, seen alone.
QStringList placeProblems(const TopPalNumberDetail& detail, int place)
{
    const bool isFree = detail.nthFileItem == TopPalNumberDetail::kFree;
    const bool hasNumber = detail.phoneNumber[0] != '\0';
    QStringList problems;
    if (!isFree && detail.nthFileItem != place)
        problems += u"it names place %1"_s.arg(detail.nthFileItem);
    if (isFree && hasNumber)
        problems += u"it is free but has a number"_s;
    if (!isFree && !hasNumber)
        problems += u"it is taken but has no number"_s;
    if (!isTerminated(detail.phoneNumber))
        problems += u"the number has no NUL"_s;
    return problems;
}

} // namespace

int placeCount(const QByteArray& image)
{
    const qint64 length = std::min<qint64>(image.size(), kTopPalsDetailsSize) - topPalsDetailsOffset(0);
    return static_cast<int>(std::max<qint64>(length, 0) / qint64{sizeof(TopPalNumberDetail)});
}

TopPalNumberDetail detailAt(const QByteArray& image, int place)
{
    TopPalNumberDetail detail;
    std::memcpy(&detail, image.constData() + topPalsDetailsOffset(place), sizeof detail);
    return detail;
}

bool isFavouritesFileName(const QString& name)
{
    return name == QLatin1String(kTopPalsDetailsName);
}

bool isFavouritesFileImage(const QByteArray& image)
{
    return image.size() == kTopPalsDetailsSize && hasValidHeader(image);
}

FileFindings checkFavouritesFile(const QString& /*name*/, const QByteArray& image)
{
    Problems problems(headerProblems(image) + sizeProblems(image, kTopPalsDetailsSize));
    const int places = hasValidHeader(image) ? placeCount(image) : 0;
    std::vector<Favourite> favourites;
    for (int place = 0; place < places; ++place) {
        const TopPalNumberDetail detail = detailAt(image, place);
        QStringList found = placeProblems(detail, place);
        if (detail.nthFileItem != TopPalNumberDetail::kFree) {
            const QString number = latin1Text(detail.phoneNumber);
            const auto other = std::ranges::find(favourites, number, &Favourite::number);
            if (other != favourites.end())
                found += u"its number is that of place %1 too"_s.arg(other->place);
            favourites.push_back({place, number});
        }
        problems.add(place, found);
    }
    return {u"favourites"_s, kPlaceWord, problems, Table(kColumns, favourites)};
}

} // namespace zyn::tool
