// Reads the files of a store, and backs them up.
#include "tools/store/StoreFiles.h"

#include "platform/posix/File_p.h"
#include "platform/posix/PathAt_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/FileCheck.h"
#include "tools/zynphone/ExitCode.h"
#include "tools/zynphone/Finding.h"
#include "utility/FixedText_p.h"

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <algorithm>

#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Copies one file; returns the reason on failure. Only regular files that are not behind another user's link belong to
/// the store.
QString copyFile(const QString& from, const QString& to)
{
    const posix::UniqueFd fd = posix::openTrusted(QFile::encodeName(from));
    if (!fd.isValid() && QFileInfo(from).isSymLink())
        return {};
    QFile file(fd.isValid() ? u"/proc/self/fd/%1"_s.arg(fd.get()) : from);
    if (!QFileInfo(file.fileName()).isFile())
        return {};
    return file.copy(to) ? QString() : u"cannot copy %1: %2"_s.arg(from, file.errorString());
}

} // namespace

StoreFiles::StoreFiles(const QString& directory)
    : m_directory(QDir::cleanPath(QDir(directory).absolutePath()))
{
    const QDir dir(m_directory);
    if (directory.isEmpty() || !dir.exists())
        throw CommandError(NoStore, u"%1: no such directory"_s.arg(directory));
    const QStringList names = dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    if (std::ranges::none_of(names, isRecordFileName) && std::ranges::none_of(names, isFavouritesFileName))
        throw CommandError(NoStore,
                           u"%1: no store directory, as it has no %2, %3, %4 and %5"_s.arg(
                               directory, recordFile(RC_CALL_CATEGORY_ANSWERED), recordFile(RC_CALL_CATEGORY_MISSED),
                               recordFile(RC_CALL_CATEGORY_DIALED), QLatin1String(kTopPalsDetailsName)));
    for (const QString& name : names) {
        const posix::UniqueFd fd = posix::openTrusted(QFile::encodeName(path(name)));
        m_images.emplace(name, posix::readWhole(fd.get(), kStoreFileLimit));
    }
}

QString StoreFiles::path(const QString& name) const
{
    return m_directory + u'/' + name;
}

QByteArray StoreFiles::image(const QString& name) const
{
    const auto found = m_images.find(name);
    return found == m_images.end() ? QByteArray() : found->second.value_or(QByteArray());
}

std::map<int, QString> favouritesIn(const QByteArray& image)
{
    std::map<int, QString> favourites;
    for (int place = 0; hasValidHeader(image) && place < DetailsFile::count(image); ++place) {
        const TopPalNumberDetail detail = DetailsFile::at(image, place);
        const QString number = latin1Text(detail.phoneNumber);
        if (detail.nthFileItem != TopPalNumberDetail::kFree && !number.isEmpty())
            favourites.emplace(place, number);
    }
    return favourites;
}

StoreRole roleOf(const QString& name, const std::map<int, QString>& favourites)
{
    if (isRecordFileName(name))
        return StoreRole::Calls;
    if (isFavouritesFileName(name))
        return StoreRole::Favourites;
    if (name == QLatin1String(kActivityLogLockName))
        return StoreRole::Lock;
    if (name == QLatin1String(kSeenCallsName))
        return StoreRole::SeenCalls;
    if (name.contains(QLatin1String(posix::kStagedInfix)))
        return StoreRole::Leftover;
    if (isContactFileName(name) || (canNameContactFile(name) && isAmong(favourites, name)))
        return StoreRole::Contact;
    return name.contains(QLatin1String(kFormerInfix)) ? StoreRole::Former : StoreRole::Stranger;
}

bool isAmong(const std::map<int, QString>& favourites, const QString& number)
{
    return std::ranges::any_of(favourites, [&](const auto& favourite) { return favourite.second == number; });
}

QString copyStore(const StoreFiles& files)
{
    QString path = files.directory() + QDateTime::currentDateTime().toString(u".yyyyMMdd-HHmmss"_s);
    // Another repair may have run in the same second.
    if (QFileInfo::exists(path))
        path += QDateTime::currentDateTime().toString(u"zzz"_s);
    if (!QDir().mkdir(path, QFileInfo(files.directory()).permissions()))
        throw failure(u"cannot make %1 for a copy, so nothing was changed"_s.arg(path));
    for (const auto& [name, image] : files.images()) {
        if (name == QLatin1String(kActivityLogLockName))
            continue;
        const QString problem = copyFile(files.path(name), path + u'/' + name);
        if (!problem.isEmpty()) {
            QDir(path).removeRecursively();
            throw failure(problem + u", so nothing was changed"_s);
        }
    }
    return path;
}

} // namespace zyn::tool
