// Checks all files of a store, each by itself and against the others.
#include "tools/store/StoreCheck.h"

#include "handset/favourites/ActivityLog.h"
#include "platform/posix/FileLock_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/FileCheck.h"
#include "tools/zynphone/Finding.h"

#include <QtCore/QFile>
#include <QtCore/QHash>

#include <algorithm>
#include <cerrno>

#include <signal.h>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

QStringList seenCallsProblems(const QByteArray& image)
{
    QStringList problems = headerProblems(image);
    const auto marks = image.size() - qsizetype{sizeof(StoreFileHeader)};
    if (marks > 0 && marks % qsizetype{sizeof(handset::SeenCalls::Mark)} != 0)
        problems += u"it ends within a call"_s;
    return problems;
}

/// Whether @p process cannot be running; a number from a file may be anything.
bool isGone(qint64 process)
{
    const auto id = static_cast<pid_t>(process);
    return id != process || id <= 0 || (::kill(id, 0) != 0 && errno == ESRCH);
}

class Check
{
public:
    explicit Check(const StoreFiles& files)
        : m_files(files)
        , m_favourites(favouritesIn(files.image(QLatin1String(kTopPalsDetailsName))))
    {}

    Findings findings()
    {
        for (const auto& [name, image] : m_files.images())
            checkFile(name, image);
        compareLists();
        checkMissingFiles();
        return m_findings;
    }

private:
    void checkFile(const QString& name, const std::optional<QByteArray>& image)
    {
        const StoreRole role = roleOf(name, m_favourites);
        if (role == StoreRole::Stranger)
            m_findings.add(name, u"no file of a store"_s);
        else if (!image)
            m_findings.add(name, u"no regular file that can be read"_s);
        else if (role == StoreRole::Leftover && isLeftover(name))
            m_findings.add(name, u"left over by a process that was making a file"_s);
        else
            checkContents(role, name, *image);
    }

    void checkContents(StoreRole role, const QString& name, const QByteArray& image)
    {
        if (role == StoreRole::Calls)
            m_findings.add(checkRecordFile(name, image).findings);
        else if (role == StoreRole::Favourites)
            m_findings.add(checkFavouritesFile(name, image).findings);
        else if (role == StoreRole::Contact)
            checkContact(name, image);
        const QStringList problems = role == StoreRole::SeenCalls ? seenCallsProblems(image)
                                     : role == StoreRole::Lock    ? QStringList(lockProblem(m_files.path(name)))
                                                                  : QStringList();
        for (const QString& problem : problems) {
            if (!problem.isEmpty())
                m_findings.add(name, problem);
        }
    }

    void checkContact(const QString& name, const QByteArray& image)
    {
        if (!isAmong(m_favourites, name))
            m_findings.add(name, u"no favourite has this number"_s);
        m_findings.add(checkContactFile(name, image).findings);
    }

    /// Finds uids that are in more than one list.
    void compareLists()
    {
        QHash<int32_t, QString> owners; // file and slot of the first
        for (const RC_CALL_CATEGORY_T list : kRecordLists) {
            const QString name = recordFile(list);
            const QByteArray image = m_files.image(name);
            const int places = hasValidHeader(image) ? RecordFile::count(image) : 0;
            for (const int place : RecordFile::usedSlots(image, places)) {
                const int32_t uid = RecordFile::at(image, place).uid;
                const QString owner = owners.value(uid);
                if (owner.isEmpty())
                    owners.insert(uid, u"%1, slot %2"_s.arg(name).arg(place));
                else if (!owner.startsWith(name))
                    m_findings.add(name, {kSlotWord, place}, u"uid %1 is that of %2 too"_s.arg(uid).arg(owner));
            }
        }
    }

    void checkMissingFiles()
    {
        const QString details = QLatin1String(kTopPalsDetailsName);
        for (const auto& [place, number] : m_favourites) {
            if (!canNameContactFile(number))
                m_findings.add(details, {kPlaceWord, place}, u"no file can have the number '%1'"_s.arg(number));
            else if (!m_files.images().contains(number))
                m_findings.add(details, {kPlaceWord, place}, u"the favourite %1 has no file"_s.arg(number));
        }
    }

    const StoreFiles& m_files;
    const std::map<int, QString> m_favourites;
    Findings m_findings;
};

} // namespace

Findings checkStore(const StoreFiles& files)
{
    return Check(files).findings();
}

Findings formerFiles(const StoreFiles& files)
{
    Findings copies;
    for (const auto& [name, image] : files.images()) {
        if (roleOf(name, {}) == StoreRole::Former)
            copies.add(name, u"the copy of a file whose entries did not all fit"_s);
    }
    return copies;
}

bool isLeftover(const QString& name)
{
    const QLatin1String infix(posix::kStagedInfix);
    return isGone(name.sliced(name.lastIndexOf(infix) + infix.size()).toLongLong());
}

QString lockProblem(const QString& path)
{
    const std::optional<posix::LockHolder> holder = posix::readLockHolder(QFile::encodeName(path));
    if (!holder)
        return u"it names no process"_s;
    return isGone(holder->process) ? u"process %1, which made it, is gone"_s.arg(holder->process) : QString();
}

} // namespace zyn::tool
