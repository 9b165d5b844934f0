// Replaces, cuts, links, removes and spoils the files of the store, the favourites, the settings and the emergency
// numbers under the programs that work with them: nobody crashes, hangs, grows or believes what is not there.
#include "platform/SETUP_SET_Manager.h"
#include "recentcall/utility/PHONE_RecentCall.h"
#include "recentcall/utility/RecentCall_Messages_p.h"
#include "recentcall/utility/store/ActivityLogFile_p.h"
#include "tests/faults/CallLedger.h"
#include "tests/faults/ProcessStatus.h"
#include "tests/faults/Service.h"
#include "utility/PHONE_EmergencyCall.h"
#include "utility/PHONE_EmergencyList_p.h"
#include "utility/message/Payload_p.h"

#include <algorithm>
#include <array>
#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace faults {
namespace {

const QString kStore = u"/tmp/phone"_s;
const QString kElsewhere = u"/tmp/elsewhere"_s;
/// What somebody has linked into the place of a file, and wants to keep.
const QByteArray kPrecious = "somebody's letter\n";

enum class Damage { Replaced, Cut, Older, Removed, Linked, HardLinked, Dangling, Directory, Fifo, Noise };
constexpr std::array kDamages{
    std::pair{Damage::Replaced, "replaced"}, std::pair{Damage::Cut, "cut"},
    std::pair{Damage::Older, "older"},       std::pair{Damage::Removed, "removed"},
    std::pair{Damage::Linked, "linked"},     std::pair{Damage::HardLinked, "hard link"},
    std::pair{Damage::Dangling, "dangling"}, std::pair{Damage::Directory, "directory"},
    std::pair{Damage::Fifo, "FIFO"},         std::pair{Damage::Noise, "noise"},
};

QString nameOf(Damage damage)
{
    return QLatin1String(std::ranges::find(kDamages, damage, &std::pair<Damage, const char*>::first)->second);
}

bool writeFile(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size();
}

bool moveOver(const QString& path, const QByteArray& contents)
{
    const QString staged = u"/tmp/staged"_s;
    return writeFile(staged, contents) && ::rename(qPrintable(staged), qPrintable(path)) == 0;
}

/// One file in its place, and what is done to it.
class Victim
{
public:
    Victim(Campaign& campaign, QString path)
        : m_campaign(campaign)
        , m_path(std::move(path))
    {}

    const QString& path() const { return m_path; }
    /// Does @p damage with @p contents, which are valid; gives what is to be read next, as far as that is plain.
    QByteArray hit(Damage damage, const QByteArray& contents)
    {
        m_campaign.breakThings();
        const QByteArray now = contentsOf(m_path);
        QByteArray expected = put(damage, contents, now);
        if (damage != Damage::Older)
            m_older = contents;
        return expected;
    }
    /// Whether what was linked to its place has been left alone.
    bool isPreciousKept() const { return contentsOf(kElsewhere) == kPrecious; }
    bool isLink() const { return QFileInfo(m_path).isSymLink(); }
    void clear() const
    {
        if (QFileInfo(m_path).isDir() && !isLink())
            QDir(m_path).removeRecursively();
        ::unlink(qPrintable(m_path));
        ::unlink(qPrintable(kElsewhere));
    }

private:
    QByteArray put(Damage damage, const QByteArray& contents, const QByteArray& now)
    {
        switch (damage) {
        case Damage::Replaced:
            moveOver(m_path, contents);
            return contents;
        case Damage::Cut: {
            const qsizetype size = now.isEmpty() ? 0 : m_campaign.random().bounded(int(now.size()));
            QFile::resize(m_path, size);
            return now.first(size);
        }
        case Damage::Older:
            moveOver(m_path, m_older);
            return m_older;
        case Damage::Linked:
            clear();
            writeFile(kElsewhere, contents);
            return ::symlink(qPrintable(kElsewhere), qPrintable(m_path)) == 0 ? contents : QByteArray();
        case Damage::HardLinked:
            clear();
            writeFile(kElsewhere, kPrecious);
            return ::link(qPrintable(kElsewhere), qPrintable(m_path)) == 0 ? kPrecious : QByteArray();
        case Damage::Dangling:
            clear();
            m_campaign.check(::symlink(qPrintable(kElsewhere), qPrintable(m_path)) == 0, u"a link is made"_s);
            return {};
        case Damage::Noise: {
            QByteArray noise(m_campaign.random().bounded(1, 20'000), '\0');
            for (char& byte : noise)
                byte = char(m_campaign.random().bounded(256));
            moveOver(m_path, noise);
            return noise;
        }
        case Damage::Removed:
            clear();
            return {};
        case Damage::Directory:
            clear();
            QDir().mkdir(m_path);
            return {};
        case Damage::Fifo:
            clear();
            m_campaign.check(::mkfifo(qPrintable(m_path), 0600) == 0, u"a FIFO is made"_s);
            return {};
        }
        return {};
    }

    Campaign& m_campaign;
    const QString m_path;
    QByteArray m_older;
};

/// Whether nothing can be in the place until somebody clears it.
bool isBlocking(Damage damage)
{
    return damage == Damage::Directory || damage == Damage::Fifo;
}

/// What a process has, once it is warm, and may not exceed.
class Growth
{
public:
    void measure(pid_t process)
    {
        m_process = process;
        m_memory = memoryOf(process, "VmRSS");
        m_descriptors = descriptorsOf(process);
    }
    /// Checks it again; connections that are about to be closed are waited for.
    void check(Campaign& campaign, const QString& name) const
    {
        constexpr qint64 kMost = 4096; // KiB
        const qint64 growth = memoryOf(m_process, "VmRSS") - m_memory;
        campaign.measure(name + u" growth KiB"_s, growth);
        campaign.check(growth < kMost, u"%1 has grown by %2 KiB"_s.arg(name).arg(growth));
        campaign.check(comesTrue([&] { return descriptorsOf(m_process) <= m_descriptors; }),
                       u"%1 has %2 descriptors, not %3"_s.arg(name).arg(descriptorsOf(m_process)).arg(m_descriptors));
    }

private:
    pid_t m_process = 0;
    qint64 m_memory = 0;
    qint64 m_descriptors = 0;
};

// The store.

/// The start times of the calls of a list in an image of its file: none when that is not valid.
QList<int> startsIn(const QByteArray& image)
{
    QList<int> starts;
    if (zyn::RecordFile::isValid(image)) {
        for (const int slot : zyn::RecordFile::usedSlots(image))
            starts.append(zyn::RecordFile::at(image, slot).startTime);
    }
    std::ranges::sort(starts);
    return starts;
}

/// The same as the service lists them; nothing when it does not answer.
std::optional<QList<int>> startsOf(RC_CALL_CATEGORY_T list)
{
    const auto calls = listCalls();
    if (!calls)
        return std::nullopt;
    QList<int> starts;
    for (const Call& call : *calls) {
        if (call.category == list)
            starts.append(call.startTime);
    }
    std::ranges::sort(starts);
    return starts;
}

class StoreFault
{
public:
    explicit StoreFault(Campaign& campaign)
        : m_campaign(campaign)
    {}

    void run(Damage damage)
    {
        const RC_CALL_CATEGORY_T list =
            m_campaign.random().bounded(2) == 0 ? RC_CALL_CATEGORY_MISSED : RC_CALL_CATEGORY_DIALED;
        const RC_CALL_CATEGORY_T other =
            list == RC_CALL_CATEGORY_MISSED ? RC_CALL_CATEGORY_DIALED : RC_CALL_CATEGORY_MISSED;
        const QString where = u" (%1 list, %2)"_s.arg(list).arg(nameOf(damage));
        Victim& victim = list == RC_CALL_CATEGORY_MISSED ? m_missed : m_dialed;
        const auto others = startsOf(other);
        const QList<int> expected = startsIn(victim.hit(damage, image(list)));
        m_campaign.operate(3);
        const auto found = startsOf(list);
        m_campaign.check(found.has_value(), u"the service does not answer"_s + where);
        m_campaign.check(found == expected, u"what is listed is not what was put there"_s + where);
        Call call = next(list);
        PHONE_RecentCall_AddRecord(call);
        const bool isListed = startsOf(list).value_or(QList<int>()).contains(call.startTime);
        m_campaign.check(isListed != isBlocking(damage), u"a call is added nowhere, or not added"_s + where);
        m_campaign.check(damage != Damage::HardLinked || victim.isPreciousKept(),
                         u"a linked file is written"_s + where);
        m_campaign.check(damage != Damage::Linked
                             || (victim.isLink() && startsIn(contentsOf(kElsewhere)).contains(call.startTime)),
                         u"a call does not go where the link leads"_s + where);
        m_campaign.check(startsOf(other) == others, u"another list has changed"_s + where);
        victim.clear();
        m_campaign.check(startsOf(list) == QList<int>(), u"a fresh list is not empty"_s + where);
        PHONE_RecentCall_AddRecord(call);
        m_campaign.check(startsOf(list) == QList<int>{call.startTime}, u"a fresh list does not work"_s + where);
        m_campaign.check(startsIn(contentsOf(victim.path())) == QList<int>{call.startTime},
                         u"a fresh list is not on disk"_s + where);
    }

private:
    Call next(RC_CALL_CATEGORY_T list)
    {
        Call call = CallLedger::call(m_next++);
        call.category = list;
        return call;
    }
    QByteArray image(RC_CALL_CATEGORY_T list)
    {
        QByteArray image = zyn::RecordFile::blankImage();
        for (int slot = m_campaign.random().bounded(40); slot >= 0; --slot) {
            Call call = next(list);
            call.slot = slot;
            call.uid = 1'000'000 + m_next;
            zyn::RecordFile::put(image, slot, call);
        }
        return image;
    }

    Campaign& m_campaign;
    Victim m_missed{m_campaign, kStore + u"/rc_m"_s};
    Victim m_dialed{m_campaign, kStore + u"/rc_d"_s};
    int m_next = 0;
};

// The favourites.

class FavouritesFault
{
public:
    explicit FavouritesFault(Campaign& campaign)
        : m_campaign(campaign)
    {}

    bool beFavourite()
    {
        return comesTrue([&] {
            if (!isFavourite())
                zyn::sendMessage(zyn::kModifyFavourite, {QString(), m_number, u"somebody"_s, QString(), 0});
            return isFavourite();
        });
    }
    void run(Damage damage)
    {
        const std::array victims{&m_details, &m_contact, &m_seen};
        Victim& victim = *victims[size_t(m_campaign.random().bounded(int(victims.size())))];
        const QString where = u" (%1, %2)"_s.arg(QFileInfo(victim.path()).fileName(), nameOf(damage));
        m_campaign.check(beFavourite(), u"a favourite is registered"_s + where);
        victim.hit(damage, contentsOf(victim.path()));
        m_campaign.operate(2);
        addCall();
        if (&victim == &m_contact && !isBlocking(damage) && damage != Damage::Linked)
            m_campaign.check(comesTrue([&] { return isLogged(); }), u"a call is not logged"_s + where);
        m_campaign.check(damage != Damage::HardLinked || victim.isPreciousKept(),
                         u"a linked file is written"_s + where);
        victim.clear();
        m_campaign.check(beFavourite(), u"a favourite is registered"_s + where);
        addCall();
        m_campaign.check(comesTrue([&] { return isLogged(); }), u"a call is not logged in a fresh file"_s + where);
    }

private:
    bool isFavourite() const
    {
        const QByteArray details = contentsOf(m_details.path());
        return zyn::DetailsFile::isValid(details) && details.contains(zyn::favouriteKey(m_number).toLatin1())
               && QFileInfo(m_contact.path()).isFile();
    }
    void addCall()
    {
        m_last = CallLedger::call(3'000'000 + m_next++);
        m_last.setPhoneNumber(m_number);
        m_last.category = RC_CALL_CATEGORY_MISSED;
        m_campaign.check(PHONE_RecentCall_AddRecord(m_last) == 0, u"the recent-call service takes a call"_s);
    }
    /// Whether the last call is in the favourite's file, once.
    bool isLogged() const
    {
        const QByteArray image = contentsOf(m_contact.path());
        PHONE_ENG_ActivityLog entry;
        int times = 0;
        for (const int slot : zyn::ContactFile::usedSlots(image, zyn::ContactFile::count(image))) {
            zyn::ContactFile::read(entry, image, slot);
            times += entry.startTime == m_last.startTime ? 1 : 0;
        }
        return times == 1;
    }

    Campaign& m_campaign;
    const QString m_number = u"0301112220"_s;
    Victim m_details{m_campaign, kStore + u'/' + QLatin1String(zyn::kTopPalsDetailsName)};
    Victim m_contact{m_campaign, kStore + u'/' + zyn::favouriteKey(m_number)};
    Victim m_seen{m_campaign, kStore + u'/' + QLatin1String(zyn::kSeenCallsName)};
    Call m_last;
    int m_next = 0;
};

// The settings and the emergency numbers, as this process uses them.

class SettingsFault
{
public:
    explicit SettingsFault(Campaign& campaign)
        : m_campaign(campaign)
    {
        QDir().mkpath(QFileInfo(m_victim.path()).path());
    }

    void run(Damage damage)
    {
        const QString where = u" (settings, %1)"_s.arg(nameOf(damage));
        const QString stored = u"value %1"_s.arg(++m_next);
        const QByteArray put = m_victim.hit(damage, "[group]\nkey=" + stored.toUtf8() + '\n');
        m_campaign.operate(4);
        const QByteArray line = put.mid(put.indexOf("key=") + 4);
        const QString expected = put.contains("key=") ? QString::fromUtf8(line.first(
                                     std::max<qsizetype>(line.indexOf('\n'), line.contains('\n') ? 0 : line.size())))
                                                      : QString();
        if (damage != Damage::Noise)
            m_campaign.check(value() == expected, u"what is read is not what was put there"_s + where);
        const bool isSet = set(stored);
        m_campaign.check(isSet != isBlocking(damage), u"a set says something else than it does"_s + where);
        m_campaign.check(!isSet || value() == stored, u"a setting does not come back"_s + where);
        m_campaign.check(damage != Damage::HardLinked || m_victim.isPreciousKept(),
                         u"a linked file is written"_s + where);
        m_campaign.check(damage != Damage::Linked || m_victim.isLink(), u"a link is replaced"_s + where);
        m_victim.clear();
        m_campaign.check(value().isEmpty(), u"a removed setting is read"_s + where);
        m_campaign.check(set(stored) && value() == stored, u"a fresh file does not work"_s + where);
    }

private:
    QString value() const
    {
        QString text;
        SETUP_SET_Manager(m_victim.path(), false).getSettingInfo(u"group"_s, u"key"_s, text, QString());
        return text;
    }
    bool set(const QString& text) const
    {
        return SETUP_SET_Manager(m_victim.path(), false).setSettingInfo(u"group"_s, u"key"_s, text);
    }

    Campaign& m_campaign;
    Victim m_victim{m_campaign, u"/tmp/faults-settings/zyn_app9.cfg"_s};
    int m_next = 0;
};

class EmergencyFault
{
public:
    explicit EmergencyFault(Campaign& campaign)
        : m_campaign(campaign)
    {}

    void run(Damage damage)
    {
        const QString where = u" (emergency numbers, %1)"_s.arg(nameOf(damage));
        const QByteArray number = QByteArray::number(7000 + ++m_next);
        const QByteArray put = m_victim.hit(damage, QByteArray(number).leftJustified(42, '\0').repeated(2));
        m_campaign.operate(3);
        const bool isListed = put.left(42) == QByteArray(number).leftJustified(42, '\0');
        QByteArray asked = number;
        m_campaign.check(PHONE_IsEmergencyCall(asked.data()) == isListed, u"a number is, or is not, one"_s + where);
        m_campaign.check(zyn::emergency::readList().size() <= put.size() / 42 + 1, u"a number is made up"_s + where);
        m_campaign.check(damage != Damage::HardLinked || m_victim.isPreciousKept(),
                         u"a linked file is written"_s + where);
        m_victim.clear();
        const QString fresh = QString::fromLatin1(number);
        m_campaign.check(zyn::emergency::writeList({fresh}) && zyn::emergency::readList() == QStringList{fresh},
                         u"a fresh list does not work"_s + where);
    }

private:
    Campaign& m_campaign;
    Victim m_victim{m_campaign, QLatin1String(zyn::emergency::kListFile)};
    int m_next = 0;
};

/// An application that adds answered calls and lists all, all the time.
void workForEver()
{
    for (int id = 0;; ++id) {
        Call call = CallLedger::call(5'000'000 + id % 1'000'000);
        call.category = RC_CALL_CATEGORY_ANSWERED;
        PHONE_RecentCall_AddRecord(call);
        listCalls();
        pauseFor(std::chrono::milliseconds(5));
    }
}

} // namespace

void files(Campaign& campaign)
{
    constexpr unsigned int kHang = 120; // seconds in which a round ends, or else this process does
    std::array<Process, 3> services;
    constexpr std::array kNames{"zyn-recentcalld", "zyn-favourites", "zyn-phoned"};
    for (size_t i = 0; i < services.size(); ++i)
        campaign.check(services[i].start(campaign.program(kNames[i])), QLatin1String(kNames[i]) + u" starts"_s);
    Process application;
    application.fork(workForEver);
    StoreFault store(campaign);
    FavouritesFault favourites(campaign);
    SettingsFault settings(campaign);
    EmergencyFault emergency(campaign);
    std::array<Growth, services.size() + 1> growth;
    const qint64 rounds = campaign.length(800, 12);
    const qint64 warm = campaign.length(80, 4);
    for (qint64 round = 0; round < rounds; ++round) {
        ::alarm(kHang);
        const Damage damage = kDamages[size_t(campaign.random().bounded(int(kDamages.size())))].first;
        switch (round % 4) {
        case 0:
            store.run(damage);
            break;
        case 1:
            favourites.run(damage);
            break;
        case 2:
            settings.run(damage);
            break;
        default:
            emergency.run(damage);
        }
        for (size_t i = 0; i < services.size(); ++i)
            campaign.check(services[i].isRunning(), QLatin1String(kNames[i]) + u" has ended"_s);
        campaign.check(application.isRunning(), u"an application has ended"_s);
        if (round == warm) {
            growth[0].measure(::getpid());
            for (size_t i = 0; i < services.size(); ++i)
                growth[i + 1].measure(services[i].id());
        }
        campaign.progress(round + 1, rounds);
    }
    ::alarm(0);
    application.kill();
    growth[0].check(campaign, u"application"_s);
    for (size_t i = 0; i < services.size(); ++i) {
        growth[i + 1].check(campaign, QLatin1String(kNames[i]));
        campaign.check(services[i].stop(), QLatin1String(kNames[i]) + u" ends"_s);
    }
    QDir(kStore).removeRecursively();
}

} // namespace faults
