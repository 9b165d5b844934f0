// zynphone inspect: shows, verifies and repairs the files of the store.
#include "tools/commands/Commands.h"

#include "handset/favourites/Favourites.h"
#include "platform/posix/File_p.h"
#include "platform/posix/UnixSocket_p.h"
#include "recentcall/utility/RecentCall_Client_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tools/store/FileCheck.h"
#include "tools/store/StoreCheck.h"
#include "tools/store/StoreFiles.h"
#include "tools/store/StoreRepair.h"
#include "tools/zynphone/Command.h"
#include "tools/zynphone/Console.h"
#include "tools/zynphone/Finding.h"
#include "tools/zynphone/Text.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

/// Work on a store that this process has locked.
class Repair
{
public:
    explicit Repair(const QString& directory)
        : m_directory(StoreFiles(directory).directory())
        , m_lock(m_directory)
    {
        refuseIfServed();
        const QString lock = QLatin1String(kActivityLogLockName);
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

    bool isValid() const { return m_left.empty(); }

    QString text() const
    {
        const QString saved = m_copy.isEmpty() ? QString() : u"saved %1\n"_s.arg(printable(m_copy));
        return saved + m_done.text() + m_left.text()
               + u"%1: %2, %3 left\n"_s.arg(printable(m_directory), counted(qsizetype(m_done.size()), "repair"),
                                            counted(qsizetype(m_left.size()), "problem"));
    }

    QJsonObject json() const
    {
        return {{u"directory"_s, m_directory},
                {u"copy"_s, m_copy.isEmpty() ? QJsonValue() : QJsonValue(m_copy)},
                {u"repairs"_s, m_done.json("repair")},
                {u"left"_s, m_left.json("problem")},
                {u"sound"_s, isValid()}};
    }

private:
    static bool isServed() { return posix::isServed(recentcall::kSocketPath); }

    static void refuseIfServed()
    {
        if (isServed())
            throw failure(
                u"the recent-call service at %1 runs; end it first"_s.arg(QLatin1String(recentcall::kSocketPath)));
    }

    /// A service started since may have stored a call that the copy lacks.
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
    handset::ActivityLogLock m_lock;
    QString m_copy;
    Findings m_done;
    Findings m_left;
};

/// Reports the faults of the store directory given as argument.
ExitCode verifyStore(const Invocation& invocation, Console& console)
{
    const StoreFiles files(invocation.argument(0));
    const Findings findings = checkStore(files);
    if (invocation.isSet(u"json"_s))
        console.write(QJsonDocument(QJsonObject{{u"directory"_s, files.directory()},
                                                {u"sound"_s, findings.empty()},
                                                {u"problems"_s, findings.json("problem")}}));
    else
        console.write(
            findings.text() + formerFiles(files).text()
            + u"%1: %2\n"_s.arg(printable(files.directory()), counted(qsizetype(findings.size()), "problem")));
    return findings.empty() ? Done : Failed;
}

/// Repairs it, and reports what was done and what is left.
ExitCode repairStore(const Invocation& invocation, Console& console)
{
    Repair repair(invocation.argument(0));
    repair.run();
    if (invocation.isSet(u"json"_s))
        console.write(QJsonDocument(repair.json()));
    else
        console.write(repair.text());
    return repair.isValid() ? Done : Failed;
}

/// The kinds of file, recognised by name or else by contents. Record files come last, because a contact file may have
/// their size.
constexpr FileKind kKinds[] = {kFavouritesFileKind, kContactFileKind, kRecordFileKind};

const FileKind& kindOf(const QString& path, const QString& name, const QByteArray& image)
{
    auto kind = std::ranges::find_if(kKinds, [&](const FileKind& candidate) { return candidate.isNamed(name); });
    if (kind == std::end(kKinds))
        kind = std::ranges::find_if(kKinds, [&](const FileKind& candidate) { return candidate.isShaped(image); });
    if (kind == std::end(kKinds))
        throw failure(u"%1: neither its name nor its header and size are those of a file of the store"_s.arg(path));
    return *kind;
}

QByteArray readFile(const QString& path)
{
    const std::optional<QByteArray> image = posix::readWhole(QFile::encodeName(path), kStoreFileLimit);
    if (image)
        return *image;
    const QFileInfo info(path);
    if (!info.exists())
        throw failure(u"%1: no such file"_s.arg(path));
    if (!info.isFile())
        throw failure(u"%1: not a regular file"_s.arg(path));
    if (info.size() > kStoreFileLimit)
        throw failure(u"%1: too long for a file of the store"_s.arg(path));
    throw failure(u"%1: cannot be read"_s.arg(path));
}

QJsonObject jsonReport(const QString& path, const QByteArray& image, const FileReport& report)
{
    return {{u"file"_s, path},
            {u"kind"_s, report.kind},
            {u"size"_s, image.size()},
            {u"sound"_s, report.isValid()},
            {u"problems"_s, QJsonArray::fromStringList(report.findings.positionedTexts())},
            {u"slots"_s, report.usedSlots.json()}};
}

QString textReport(const QString& path, const FileReport& report)
{
    const QString verdict = report.isValid() ? u"sound"_s : u"faulty"_s;
    QStringList lines{u"%1: %2, %3 in use, %4"_s.arg(printable(path), report.kind,
                                                     QString::number(report.usedSlots.count()), verdict)};
    for (const QString& problem : report.findings.positionedTexts())
        lines += u"  "_s + problem;
    const QString text = lines.join(u'\n') + u'\n';
    return report.usedSlots.isEmpty() ? text : text + report.usedSlots.text();
}

ExitCode inspectFile(const Invocation& invocation, Console& console)
{
    const QString path = invocation.argument(0);
    const QByteArray image = readFile(path);
    const QString name = QFileInfo(path).fileName();
    const FileReport report = kindOf(path, name, image).check(name, image);
    if (invocation.isSet(u"json"_s))
        console.write(QJsonDocument(jsonReport(path, image, report)));
    else
        console.write(textReport(path, report));
    return report.isValid() ? Done : Failed;
}

ExitCode inspect(const Invocation& invocation, Console& console)
{
    const bool verifies = invocation.isSet(u"verify"_s);
    const bool repairs = invocation.isSet(u"repair"_s);
    if (verifies && repairs)
        throw usageError(u"--verify and --repair exclude each other"_s);
    if (verifies)
        return verifyStore(invocation, console);
    return repairs ? repairStore(invocation, console) : inspectFile(invocation, console);
}

} // namespace

Command inspectCommand()
{
    return {
        .name = u"inspect"_s,
        .summary = u"Show what a file of the store holds and whether it is sound (exit code 0) or not (1)"_s,
        .details =
            u"\nThe object of --json has the fields file, kind, size, sound, problems (texts) and slots,\n"
            "objects: of a record file with the fields of 'calls list' and slot, the place in the file,\n"
            "of topPalsDetails with place and number, of a favourite's file with those of 'favourites show'.\n"
            "A favourite's file is sound when it has as many slots as the settings of this handset say.\n"
            "topPalsCalls and topPalsLock are for zyn-favourites alone and cannot be inspected.\n"
            "\n--verify and --repair take the whole store directory. The objects of --json have the fields\n"
            "directory, sound, and problems of --verify; copy, repairs and left of --repair: objects with\n"
            "file, slot (null for a file as a whole) and problem or repair. Before --repair changes anything it\n"
            "saves a copy of the directory beside it; it refuses while a service that writes to the store runs.\n"
            "Whatever does not fit is reported and stays in the copy. The exit code is %1 for any other directory.\n"_s
                .arg(int{NoStore}),
        .arguments = {{u"FILE"_s, u"a record file: rc_a, rc_m, rc_d; topPalsDetails; the file of a favourite, "
                                  "named by its number; or a copy of one"_s}},
        .options = {jsonOption(),
                    flagOption(u"verify"_s, u"check all files of the store directory FILE, also with each other"_s),
                    flagOption(u"repair"_s, u"make all files of the store directory FILE sound"_s)},
        .run = inspect};
}

} // namespace zyn::tool
