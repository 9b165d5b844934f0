// zynphone inspect: a whole store directory.
#include "tools/commands/StoreInspection.h"

#include "handset/favourites/Favourites.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/StoreCheck.h"
#include "tools/store/StoreCopy.h"
#include "tools/store/StoreRepair.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Counted.h"

#include <QtCore/QDir>
#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// What is done to a store that nobody else writes to, since this has its lock.
class Repair
{
public:
    explicit Repair(const QString& directory)
        : m_directory(StoreFiles(directory).directory())
        , m_lock(m_directory)
    {
        refuseIfServed();
        const QString lock = QLatin1String(zyn::kActivityLogLockName);
        const StoreFiles::Images images = StoreFiles(m_directory).images();
        const auto file = images.find(lock);
        const bool isLeft = file != images.end() && file->second && !lockProblem(m_directory + u'/' + lock).isEmpty();
        if (!m_lock.lock())
            throw failure(m_lock.problem() + u"; end it first"_s);
        if (isLeft)
            m_done.add(lock, u"removed"_s);
    }

    void run()
    {
        const StoreFiles files(m_directory);
        const StoreRepair repair(files);
        if (repair.isNeeded()) {
            m_copy = copyStore(files);
            refuseIfChanged(files);
            apply(repair);
        }
        m_left = checkStore(StoreFiles(m_directory));
    }

    bool isSound() const { return m_left.isEmpty(); }

    QString text() const
    {
        const QString saved = m_copy.isEmpty() ? QString() : u"saved %1\n"_s.arg(printable(m_copy));
        return saved + m_done.text() + m_left.text()
               + u"%1: %2, %3 left\n"_s.arg(printable(m_directory), counted(m_done.count(), "repair"),
                                            counted(m_left.count(), "problem"));
    }

    QJsonObject json() const
    {
        return {{u"directory"_s, m_directory},
                {u"copy"_s, m_copy.isEmpty() ? QJsonValue() : QJsonValue(m_copy)},
                {u"repairs"_s, m_done.json("repair")},
                {u"left"_s, m_left.json("problem")},
                {u"sound"_s, isSound()}};
    }

private:
    static bool isServed() { return zyn::posix::isServed(zyn::recentcall::kSocketPath); }

    static void refuseIfServed()
    {
        if (isServed())
            throw failure(
                u"the recent-call service at %1 runs; end it first"_s.arg(QLatin1String(zyn::recentcall::kSocketPath)));
    }

    /// A service that was started since may have stored a call, which the copy may lack.
    void refuseIfChanged(const StoreFiles& files) const
    {
        if (!isServed() && StoreFiles(m_directory).images() == files.images())
            return;
        QDir(m_copy).removeRecursively();
        refuseIfServed();
        throw failure(u"the store changed meanwhile, nothing was repaired"_s);
    }

    void apply(const StoreRepair& repair)
    {
        try {
            repair.apply();
        } catch (const CommandError& error) {
            throw failure(u"%1; the store as it was is in %2"_s.arg(error.message(), m_copy));
        }
        m_done.add(repair.log());
    }

    const QString m_directory;
    zyn::handset::ActivityLogLock m_lock;
    QString m_copy;
    Findings m_done;
    Findings m_left;
};

} // namespace

ExitCode verifyStore(const Invocation& invocation, Console& console)
{
    const StoreFiles files(invocation.argument(0));
    const Findings findings = checkStore(files);
    if (invocation.isSet(u"json"_s))
        console.write(QJsonDocument(QJsonObject{{u"directory"_s, files.directory()},
                                                {u"sound"_s, findings.isEmpty()},
                                                {u"problems"_s, findings.json("problem")}}));
    else
        console.write(findings.text() + formerFiles(files).text()
                      + u"%1: %2\n"_s.arg(printable(files.directory()), counted(findings.count(), "problem")));
    return findings.isEmpty() ? Done : Failed;
}

ExitCode repairStore(const Invocation& invocation, Console& console)
{
    Repair repair(invocation.argument(0));
    repair.run();
    if (invocation.isSet(u"json"_s))
        console.write(QJsonDocument(repair.json()));
    else
        console.write(repair.text());
    return repair.isSound() ? Done : Failed;
}

} // namespace zyn::tool
