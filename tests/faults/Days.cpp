// A handset that runs for days, and whose clock is set: nothing is lost, nothing is counted twice, and nothing grows.
#include "tests/faults/Campaign.h"
#include "tests/faults/ProcessStatus.h"
#include "tests/faults/Service.h"

#include <QtCore/QDateTime>
#include <QtCore/QDirIterator>
#include <QtCore/QElapsedTimer>
#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>

#include <array>
#include <map>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace faults {
namespace {

/// The programs of a handset that nobody touches.
constexpr const char* kPrograms[] = {"zyn-recentcalld", "zyn-phoned", "zyn-favourites", "zyn-statusbar", "zyn-idle"};

/// The number of the favourite who calls now and then.
const QString kFavourite = u"+49301112222"_s;

struct DayCall
{
    QString number;
    QString list;
    bool isTalk;
};

/// A handset, played by its tool.
class Handset
{
public:
    explicit Handset(Campaign& campaign)
        : m_campaign(campaign)
    {
        for (const char* name : kPrograms) {
            auto& program = m_programs[name] = std::make_unique<Process>();
            m_campaign.check(program->start(m_campaign.program(name)),
                             QString::fromLatin1(name) + u" does not start"_s);
        }
    }
    ~Handset()
    {
        for (const auto& [name, program] : m_programs)
            m_campaign.check(program->stop(), QString::fromLatin1(name) + u" does not end"_s);
    }
    Handset(const Handset&) = delete;
    Handset& operator=(const Handset&) = delete;

    const std::map<QByteArray, std::unique_ptr<Process>>& programs() const { return m_programs; }

    /// What the tool prints; none when it fails.
    std::optional<QByteArray> ask(const QStringList& words)
    {
        QProcess tool;
        tool.start(m_campaign.program("zynphone"), words);
        const bool isDone =
            tool.waitForFinished(int(std::chrono::milliseconds(kPatience).count())) && tool.exitCode() == EXIT_SUCCESS;
        m_failure = isDone ? QByteArray() : tool.errorString().toUtf8() + ": " + tool.readAllStandardError();
        return isDone ? std::optional(tool.readAllStandardOutput()) : std::nullopt;
    }
    void tell(const QString& words)
    {
        m_campaign.operate();
        const bool isDone = ask(words.split(u' ')).has_value();
        m_campaign.check(isDone, u"zynphone %1 fails: %2"_s.arg(words, QString::fromUtf8(m_failure)));
    }

    /// The calls of the log, as the tool has them.
    QJsonArray calls()
    {
        return QJsonDocument::fromJson(ask({u"calls"_s, u"list"_s, u"--json"_s}).value_or(QByteArray())).array();
    }

    /// Waits until the log has exactly the calls that were made, and checks each of them.
    void checkCalls(const QList<DayCall>& made)
    {
        QJsonArray logged;
        comesTrue([&] { return (logged = calls()).size() >= made.size(); });
        m_campaign.check(logged.size() == made.size(),
                         u"%1 calls are in the log, and %2 were made"_s.arg(logged.size()).arg(made.size()));
        for (const DayCall& call : made) {
            QList<QJsonObject> found;
            for (const auto value : logged) {
                if (value[u"number"_s].toString() == call.number)
                    found.append(value.toObject());
            }
            if (!m_campaign.check(found.size() == 1, u"%1 is %2 times in the log"_s.arg(call.number).arg(found.size())))
                continue;
            const QJsonObject& record = found.first();
            const int duration = record[u"duration"_s].toInt(-1);
            m_campaign.check(record[u"list"_s].toString() == call.list, u"%1 is in another list"_s.arg(call.number));
            m_campaign.check(call.isTalk ? duration >= 1 && duration <= kPatience.count() : duration == 0,
                             u"%1 has lasted %2 seconds"_s.arg(call.number).arg(duration));
        }
    }

private:
    Campaign& m_campaign;
    std::map<QByteArray, std::unique_ptr<Process>> m_programs;
    QByteArray m_failure; ///< of the tool, in its words
};

/// A caller's number that was never used.
QString nextNumber()
{
    static int last = 0;
    return u"0307%1"_s.arg(++last, 6, 10, QChar(u'0'));
}

/// Somebody calls; what is done between answering and the end is up to @p talk.
DayCall answered(
    Handset& handset, const std::function<void()>& talk = [] {})
{
    DayCall call{nextNumber(), u"answered"_s, true};
    handset.tell(u"phone incoming %1 Anna"_s.arg(call.number));
    handset.tell(u"phone answer"_s);
    talk();
    handset.tell(u"phone hangup"_s);
    return call;
}

DayCall missed(Handset& handset, const QString& number = nextNumber())
{
    handset.tell(u"phone incoming %1 Bert"_s.arg(number));
    handset.tell(u"phone missed"_s);
    return {number, u"missed"_s, false};
}

/// How many entries the favourite has.
qsizetype entries(Handset& handset)
{
    return QJsonDocument::fromJson(
               handset.ask({u"favourites"_s, u"show"_s, kFavourite, u"--json"_s}).value_or(QByteArray()))
        .array()
        .size();
}

// The clock.

/// Where the library is that gives the programs another clock than the machine's; none where it is not installed.
QString clockLibrary()
{
    QDirIterator folders(u"/usr/lib"_s, {u"libfaketime.so.1"_s}, QDir::Files, QDirIterator::Subdirectories);
    return folders.hasNext() ? folders.next() : QString();
}

const QString kClock = u"/tmp/clock"_s;

/// Times at which clocks have gone wrong: the epoch, the end of 32 bits, the hours that are twice or never there.
constexpr std::array kTimes = {"1970-01-01 00:00:05", "1999-12-31 23:59:59", "2026-03-29 01:59:59",
                               "2026-10-25 02:59:59", "2027-02-28 23:59:59", "2037-12-31 23:59:58",
                               "2038-01-19 03:14:06", "2038-01-19 03:14:09", "2099-06-01 12:00:00"};

void setClock(const QString& time)
{
    const QString next = kClock + u".next"_s;
    QFile file(next);
    if (file.open(QIODevice::WriteOnly) && file.write('@' + time.toUtf8() + '\n') > 0 && file.flush())
        ::rename(qPrintable(next), qPrintable(kClock));
}

/// Gives the processes that are started while it lives the campaign's clock, and another time zone.
class OtherClock
{
public:
    OtherClock(const QString& library, const char* zone)
    {
        qputenv("LD_PRELOAD", QFile::encodeName(library));
        qputenv("FAKETIME_TIMESTAMP_FILE", QFile::encodeName(kClock));
        qputenv("FAKETIME_NO_CACHE", "1");
        // As with a real clock, timers go on when it is set, and files keep the times at which they were written.
        qputenv("FAKETIME_DONT_FAKE_MONOTONIC", "1");
        qputenv("DONT_FAKE_MONOTONIC", "1");
        qputenv("NO_FAKE_STAT", "1");
        qputenv("TZ", zone);
    }
    ~OtherClock()
    {
        for (const char* name : {"LD_PRELOAD", "FAKETIME_TIMESTAMP_FILE", "FAKETIME_NO_CACHE",
                                 "FAKETIME_DONT_FAKE_MONOTONIC", "DONT_FAKE_MONOTONIC", "NO_FAKE_STAT", "TZ"})
            qunsetenv(name);
    }
    OtherClock(const OtherClock&) = delete;
    OtherClock& operator=(const OtherClock&) = delete;
};

constexpr std::array kZones = {"UTC", "Europe/Berlin", "America/St_Johns", "Pacific/Kiritimati", "Asia/Kathmandu"};

} // namespace

void setClocks(Campaign& campaign)
{
    const QString library = clockLibrary();
    if (library.isEmpty()) {
        campaign.skip(u"Debian's package faketime is not installed"_s);
        return;
    }
    setClock(QString::fromLatin1(kTimes.back()));
    const OtherClock clock(library, kZones[1]);
    Handset handset(campaign);
    handset.tell(u"favourites announce  %1 --name Dora"_s.arg(kFavourite));
    const auto anyOf = [&](const auto& choices) {
        return choices[size_t(campaign.random().bounded(int(choices.size())))];
    };
    const auto setAtRandom = [&] {
        setClock(QString::fromLatin1(anyOf(kTimes)));
        qputenv("TZ", anyOf(kZones));
        campaign.breakThings();
    };
    const qint64 rounds = campaign.length(200, 2);
    for (qint64 round = 0; round < rounds; ++round) {
        QList<DayCall> made;
        for (int i = 0; i < 3; ++i) {
            setAtRandom();
            made += answered(handset, setAtRandom);
            setAtRandom();
            made += missed(handset);
        }
        handset.checkCalls(made);
        // The same call is at the same time, wherever it is read.
        const QJsonArray here = handset.calls();
        setAtRandom();
        campaign.check(handset.calls() == here, u"the times of calls depend on the clock or the zone"_s);
        handset.tell(u"calls clear all"_s);
        handset.checkCalls({});
        campaign.progress(round + 1, rounds);
    }
    QFile::remove(kClock);
}

// The week.

namespace {

/// What a process and its files must not have more of from day to day.
struct Size
{
    qint64 memory;
    qint64 descriptors;
};

QMap<QByteArray, Size> sizes(const Handset& handset)
{
    QMap<QByteArray, Size> sizes;
    for (const auto& [name, program] : handset.programs())
        sizes[name] = {memoryOf(program->id(), "RssAnon"), descriptorsOf(program->id())};
    return sizes;
}

/// The names of the handset's files, in the private /tmp.
QStringList files()
{
    QStringList found;
    QDirIterator files(u"/tmp"_s, QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        found += files.next();
    found.sort();
    return found;
}

/// Waits until the favourites' owner has the entry of the day.
void checkFavourite(Campaign& campaign, Handset& handset, qsizetype days)
{
    campaign.check(comesTrue([&] { return entries(handset) == days; }),
                   u"the favourite has %1 entries after %2 days"_s.arg(entries(handset)).arg(days));
}

void playDay(Campaign& campaign, Handset& handset, qint64 calls, int day)
{
    handset.tell(u"phone network 5 26201"_s);
    QList<DayCall> made;
    for (qint64 i = 0; i < calls; ++i) {
        handset.tell(u"phone signal-quality %1"_s.arg(i % 6));
        handset.tell(u"phone battery-capacity %1"_s.arg(100 - i % 101));
        made += i % 3 == 2 ? missed(handset) : answered(handset);
        // The log holds fifty of each list; a favourite's log is full early on, and goes on with its newest entries.
        if (made.size() == 40) {
            handset.checkCalls(made);
            handset.tell(u"calls clear all"_s);
            made.clear();
        }
    }
    made += missed(handset, kFavourite);
    handset.checkCalls(made);
    // Its owner takes a call from the log, a little later.
    checkFavourite(campaign, handset, day);
    handset.tell(u"phone low-battery"_s);
    handset.tell(u"calls clear all"_s);
}

} // namespace

void playWeek(Campaign& campaign)
{
    constexpr int kDays = 7;
    /// KiB by which a program may grow after its first day: an arena of the allocator that comes late.
    constexpr qint64 kGrowth = 256;
    Handset handset(campaign);
    handset.tell(u"favourites announce  %1 --name Dora"_s.arg(kFavourite));
    const qint64 calls = campaign.length(400, 2);
    QMap<QByteArray, Size> first;
    QStringList firstFiles;
    qint64 growth = 0;
    for (int day = 1; day <= kDays; ++day) {
        playDay(campaign, handset, calls, day);
        const auto now = sizes(handset);
        if (day == 1) {
            first = now;
            firstFiles = files();
        }
        for (auto size = now.begin(); size != now.end(); ++size) {
            const Size& before = first[size.key()];
            growth = std::max(growth, size->memory - before.memory);
            campaign.check(size->memory > 0 && size->memory <= before.memory + kGrowth,
                           u"%1 has grown from %2 to %3 KiB"_s.arg(QString::fromLatin1(size.key()))
                               .arg(before.memory)
                               .arg(size->memory));
            // A client may just be served; so it may have been after the first day.
            const pid_t process = handset.programs().at(size.key())->id();
            campaign.check(comesTrue([&] { return descriptorsOf(process) <= before.descriptors; }),
                           u"%1 has %2 descriptors, and had %3"_s.arg(QString::fromLatin1(size.key()))
                               .arg(size->descriptors)
                               .arg(before.descriptors));
        }
        campaign.check(files() == firstFiles,
                       u"there are other files after day %1: %2"_s.arg(day).arg(files().join(u' ')));
        campaign.progress(day, kDays);
    }
    campaign.measure(u"growth in KiB"_s, growth);
}

} // namespace faults
