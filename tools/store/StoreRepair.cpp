// Repairs a damaged store.
#include "tools/store/StoreRepair.h"

#include "handset/favourites/ActivityLog.h"
#include "platform/posix/PathAt_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "recentcall/utility/store/StoreFile_p.h"
#include "tools/store/FileCheck.h"
#include "tools/store/FileRepair.h"
#include "tools/store/StoreCheck.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/ExitCode.h"

#include <QtCore/QFile>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// The complete marks in @p image, behind its header.
QByteArray repairedSeenCalls(const QByteArray& image)
{
    const QByteArray marks = image.mid(qsizetype{sizeof(StoreFileHeader)});
    return bytesOf(StoreFileHeader{}).toByteArray()
           + marks.chopped(marks.size() % qsizetype{sizeof(handset::SeenCalls::Mark)});
}

/// The marks of those @p calls that the valid @p image contains under their old uids.
QByteArray newMarks(const QByteArray& image, const RenumberedCalls& calls)
{
    QByteArray marks;
    for (const auto& [oldUid, call] : calls) {
        const QByteArray old = bytesOf(handset::SeenCalls::Mark{oldUid, call.startTime}).toByteArray();
        qsizetype at = sizeof(StoreFileHeader);
        while (at < image.size() && image.sliced(at, old.size()) != old)
            at += old.size();
        if (at < image.size())
            marks += bytesOf(handset::SeenCalls::Mark{call.uid, call.startTime}).toByteArray();
    }
    return marks;
}

} // namespace

StoreRepair::StoreRepair(const StoreFiles& files)
    : m_files(files)
{
    repairCalls();
    repairFavourites();
    repairRest();
}

void StoreRepair::apply() const
{
    for (const auto& [name, image] : m_changed)
        replaceFile(m_files.path(name), image);
    for (const QString& name : m_removed) {
        const QString path = m_files.path(name);
        // Writing a file removes its leftovers.
        if (!posix::removeFile(QFile::encodeName(path)) && errno != ENOENT)
            throw failure(u"cannot remove %1: %2"_s.arg(path, qt_error_string(errno)));
    }
}

void StoreRepair::repairCalls()
{
    Images images;
    for (const RC_CALL_CATEGORY_T list : kRecordLists) {
        const QString name = recordFile(list);
        const auto file = m_files.images().find(name);
        if (file != m_files.images().end() && file->second)
            images.emplace(name, CallsRepair(name, m_log).repaired(*file->second));
    }
    m_renumbered = renumberCalls(images, m_log);
    for (const auto& [name, image] : images)
        change(name, image);
}

void StoreRepair::repairFavourites()
{
    const QString details = QLatin1String(kTopPalsDetailsName);
    const auto file = m_files.images().find(details);
    const bool isThere = file != m_files.images().end();
    if (isThere && !file->second)
        return;
    FavouritesRepair repair(m_files, m_log);
    const auto favourites = favouritesIn(repair.image());
    for (const auto& [name, image] : m_files.images()) {
        if (image && roleOf(name, favourites) == StoreRole::Contact)
            repairContact(name, repair, isAmong(favourites, name));
    }
    const QByteArray repaired = repair.image();
    if (isThere || !favouritesIn(repaired).empty())
        change(details, repaired);
    addMissingContacts(repaired);
}

void StoreRepair::repairContact(const QString& name, FavouritesRepair& favourites, bool isRegistered)
{
    if (contactSlots() == 0)
        return;
    ContactRepair repair(name, m_log);
    QByteArray image = repair.repaired(m_files.image(name));
    renumberEntries(image, name, m_renumbered, m_log);
    if (!isRegistered && repair.recordCount() == 0) {
        remove(name, u"removed, as it has no entry and belongs to no favourite"_s);
        return;
    }
    change(name, image);
    if (!isRegistered)
        favourites.add(name);
}

void StoreRepair::addMissingContacts(const QByteArray& details)
{
    for (const auto& [place, number] : favouritesIn(details)) {
        if (m_files.images().contains(number))
            continue;
        Findings shape;
        change(number, ContactRepair(number, shape).repaired({}));
        m_log.add(number, u"made, with blank slots"_s);
    }
}

void StoreRepair::repairRest()
{
    for (const auto& [name, image] : m_files.images()) {
        const StoreRole role = roleOf(name, {});
        if (role == StoreRole::Leftover && image && isLeftover(name)) {
            remove(name, u"removed"_s);
        } else if (role == StoreRole::SeenCalls && image) {
            const QByteArray repaired = repairedSeenCalls(*image);
            if (repaired != *image)
                m_log.add(name, u"given a header and whole calls"_s);
            const QByteArray more = newMarks(repaired, m_renumbered);
            if (!more.isEmpty())
                m_log.add(name, u"given the new uids of calls"_s);
            change(name, repaired + more);
        }
    }
}

void StoreRepair::change(const QString& name, const QByteArray& image)
{
    const auto file = m_files.images().find(name);
    if (file == m_files.images().end() || file->second != image)
        m_changed.insert_or_assign(name, image);
}

void StoreRepair::remove(const QString& name, const QString& why)
{
    m_log.add(name, why);
    m_removed += name;
}

} // namespace zyn::tool
