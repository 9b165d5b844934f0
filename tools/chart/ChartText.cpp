// The texts of a chart: names, times, and runs of similar messages folded into one entry.
#include "tools/chart/ChartText.h"

#include "handset/common/Text.h"
#include "tools/chart/ChartStory.h"
#include "tools/recording/MessageFields.h"
#include "tools/zynphone/BlockText.h"
#include "tools/zynphone/Text.h"

#include <algorithm>
#include <set>
#include <span>
#include <utility>

using namespace Qt::StringLiterals;

namespace zyn::tool {
namespace {

constexpr size_t kLeastFolded = 3;
constexpr size_t kLeastFoldedAcross = 20;
constexpr size_t kMostInTurn = 8;

using Messages = std::vector<ReceivedMessage>;
using Places = std::span<const size_t>;

size_t firstOf(const ChartRun& run)
{
    return run.messages.front();
}

bool isAlike(const ReceivedMessage& first, const ReceivedMessage& second)
{
    return first.name == second.name && first.channel == second.channel;
}

/// The longest fold at the beginning of @p places of one lane, in turns of as few names as possible; one message if
/// there is none.
ChartRun leadingFold(const Messages& messages, qsizetype lane, Places places)
{
    size_t longest = 1;
    size_t names = 1;
    for (size_t inTurn = 1; inTurn <= std::min(kMostInTurn, places.size()); ++inTurn) {
        size_t length = inTurn;
        while (length < places.size() && isAlike(messages[places[length]], messages[places[length - inTurn]]))
            ++length;
        length -= length % inTurn;
        if (length >= kLeastFolded * inTurn && length > longest) {
            longest = length;
            names = inTurn;
        }
    }
    return {lane, {places.begin(), places.begin() + std::ptrdiff_t(longest)}, names};
}

/// Adds @p places, between which there is no message of another lane.
void addUninterrupted(const Messages& messages, qsizetype lane, Places places, std::vector<ChartRun>& runs)
{
    while (!places.empty()) {
        runs.push_back(leadingFold(messages, lane, places));
        places = places.subspan(runs.back().messages.size());
    }
}

/// Adds @p places, of which none is in a fold across lanes.
void addParts(const Messages& messages, qsizetype lane, Places places, std::vector<ChartRun>& runs)
{
    while (!places.empty()) {
        const auto isGap = [](size_t place, size_t next) { return next != place + 1; };
        const auto last = std::ranges::adjacent_find(places, isGap);
        const size_t size = last == places.end() ? places.size() : size_t(last - places.begin()) + 1;
        addUninterrupted(messages, lane, places.first(size), runs);
        places = places.subspan(size);
    }
}

void addLane(const Messages& messages, qsizetype lane, Places places, std::vector<ChartRun>& runs)
{
    size_t before = 0; // messages without a run so far
    while (before < places.size()) {
        ChartRun fold = leadingFold(messages, lane, places.subspan(before));
        const size_t size = fold.messages.size();
        if (size < kLeastFoldedAcross) {
            ++before;
            continue;
        }
        addParts(messages, lane, places.first(before), runs);
        runs.push_back(std::move(fold));
        places = places.subspan(before + size);
        before = 0;
    }
    addParts(messages, lane, places, runs);
}

constexpr qint64 kSecond = 1000;
constexpr qint64 kMinute = 60 * kSecond;
constexpr qint64 kHour = 60 * kMinute;

constexpr qsizetype kFewValues = 3;
constexpr qsizetype kLongestValue = 60;       ///< characters of a field
constexpr qsizetype kLongestFoldedValue = 16; ///< of a field that changes in a fold
constexpr qsizetype kLongestName = 200;       ///< characters of a name, whatever the font
constexpr qsizetype kShownPayload = 4096;     ///< bytes
constexpr size_t kShownMessages = 40;         ///< of a fold

/// The first double-width character; almost all after it are, too.
constexpr char16_t kFirstWide = 0x2E80;

QStringList fieldTextsOf(const ReceivedMessage& message)
{
    QStringList texts = valueTexts(message, false);
    // Of many values, those that say something.
    if (texts.size() > kFewValues)
        texts.removeIf([](const QString& text) { return text.endsWith("=0"_L1) || text.endsWith("=null"_L1); });
    // XML allows no lone surrogate, which a text may contain.
    for (QString& text : texts)
        text = QString::fromUtf8(text.toUtf8());
    return texts;
}

/// Program and process number of each of @p participants, as printable text.
QStringList hearerTexts(const QList<Participant>& participants)
{
    QStringList texts;
    for (const Participant& participant : participants)
        texts += handset::jsonEscaped(u"%1 %2"_s.arg(participant.program).arg(participant.process));
    return texts;
}

QString payloadText(const QByteArray& payload)
{
    const QString shown = hexText(payload.first(std::min(payload.size(), kShownPayload)));
    return payload.size() > kShownPayload ? shown + u'\u2026' : shown;
}

/// The name of @p message on its card.
QString fullName(const ReceivedMessage& message)
{
    const ChartName name = chartName(message);
    return elided(name.prefix + name.own, kLongestName);
}

/// The names that alternate with the first message of @p run.
QStringList laterInTurn(const std::vector<ReceivedMessage>& messages, const ChartRun& run)
{
    QStringList names;
    for (const size_t place : std::span(run.messages).first(run.inTurn).subspan(1))
        names += u"then "_s + fullName(messages[place]);
    return names;
}

/// A field with the first, the last and other values, all prefixed with its name.
QString changeText(const QString& first, const QString& last)
{
    const qsizetype name = first.indexOf(u'=') + 1;
    const QString between = first == last ? u"\u2192\u2026\u2192"_s : u"\u2192"_s;
    return first.left(name) + elided(first.mid(name), kLongestFoldedValue) + between
           + elided(last.mid(last.indexOf(u'=') + 1), kLongestFoldedValue);
}

/// The width of @p character in a wide bold font, in hundredths of the font's size.
int boldWidth(QChar character)
{
    constexpr QLatin1String kNarrow("iljtfrI.,:;'|()[]!/ -");
    constexpr QLatin1String kBroad("mwMW@%");
    if (kNarrow.contains(character))
        return 42;
    if (kBroad.contains(character) || character >= QChar(kFirstWide))
        return 102;
    return character.isLower() || character == u'_' ? 65 : 75;
}

QString twoDigits(qint64 number)
{
    return u"%1"_s.arg(number, 2, 10, '0'_L1);
}

} // namespace

ChartLanes::ChartLanes(const std::vector<ReceivedMessage>& messages, qsizetype limit)
{
    QStringList programs;
    const auto add = [&](const QString& program) {
        if (!m_indexes.contains(program)) {
            m_indexes.insert(program, programs.size());
            programs += program;
        }
    };
    for (const ReceivedMessage& message : messages)
        add(senderLane(message));
    for (const ReceivedMessage& message : messages) {
        for (const Participant& hearer : message.hearers.value_or(QList<Participant>()))
            add(laneOf(hearer));
    }
    const qsizetype last = limit - 1;
    m_names = programs.size() > limit ? programs.first(last) : programs;
    m_others = programs.sliced(m_names.size());
    for (const QString& program : std::as_const(m_others))
        m_indexes[program] = last;
}

std::vector<qsizetype> ChartLanes::hearersOf(const ReceivedMessage& message) const
{
    std::set<qsizetype> lanes;
    for (const Participant& hearer : message.hearers.value_or(QList<Participant>()))
        lanes.insert(indexOf(laneOf(hearer)));
    lanes.erase(indexOf(senderLane(message)));
    return {lanes.begin(), lanes.end()};
}

QString ChartLanes::name(qsizetype lane) const
{
    return lane < m_names.size() ? m_names.at(lane) : u"%1 others"_s.arg(m_others.size());
}

std::vector<ChartRun> foldedRuns(const std::vector<ReceivedMessage>& messages, const ChartLanes& lanes)
{
    std::vector<ChartRun> runs;
    std::vector<std::vector<size_t>> places(static_cast<size_t>(lanes.size())); // of each lane's messages
    for (size_t i = 0; i < messages.size(); ++i)
        places[static_cast<size_t>(lanes.indexOf(senderLane(messages[i])))].push_back(i);
    for (qsizetype lane = 0; lane < lanes.size(); ++lane)
        addLane(messages, lane, places[static_cast<size_t>(lane)], runs);
    std::ranges::sort(runs, {}, firstOf);
    return runs;
}

ChartClock::ChartClock(qint64 longest)
    : m_hasMinutes(longest >= kMinute)
    , m_hasHours(longest >= kHour)
{}

QString ChartClock::text(qint64 milliseconds) const
{
    const QString fraction = u".%1"_s.arg(milliseconds % kSecond, 3, 10, '0'_L1);
    if (!m_hasMinutes)
        return QString::number(milliseconds / kSecond) + fraction;
    const QString seconds = u':' + twoDigits(milliseconds % kMinute / kSecond) + fraction;
    if (!m_hasHours)
        return QString::number(milliseconds / kMinute) + seconds;
    return QString::number(milliseconds / kHour) + u':' + twoDigits(milliseconds % kHour / kMinute) + seconds;
}

QString ChartClock::unit() const
{
    return m_hasHours ? u"h:min:s"_s : m_hasMinutes ? u"min:s"_s : u"s"_s;
}

QString durationText(qint64 milliseconds)
{
    if (milliseconds < kMinute)
        return u"%1.%2 s"_s.arg(milliseconds / kSecond).arg(milliseconds % kSecond / 100);
    if (milliseconds < kHour)
        return u"%1 min %2 s"_s.arg(milliseconds / kMinute).arg(milliseconds % kMinute / kSecond);
    return u"%1 h %2 min"_s.arg(milliseconds / kHour).arg(milliseconds % kHour / kMinute);
}

ChartName chartName(const ReceivedMessage& message)
{
    // The library's names are each of one channel; where the sender is not known, the lane is the channel.
    const bool isPlain =
        !message.sender.isKnown() || messageFields(message.channel, message.name, message.payload).isKnown;
    const QString channel = isPlain ? QString() : channelWord(message.channel) + u":\u00A0"_s;
    return {channel, messageWord(message.channel, message.name)};
}

QStringList chartFields(const std::vector<ReceivedMessage>& messages, const ChartRun& run)
{
    if (run.inTurn > 1)
        return laterInTurn(messages, run);
    QStringList first = fieldTextsOf(messages[run.messages.front()]);
    QStringList last = first;
    QList<bool> changes(first.size(), false);
    for (const size_t place : run.messages) {
        last = fieldTextsOf(messages[place]);
        // A different number of fields means a damaged payload or another number of parties.
        changes.resize(std::max(changes.size(), last.size()));
        for (qsizetype i = 0; i < changes.size(); ++i)
            changes[i] = changes[i] || first.value(i) != last.value(i);
    }
    for (qsizetype i = 0; i < first.size(); ++i)
        first[i] = changes[i] ? changeText(first[i], last.value(i)) : elided(first[i], kLongestValue);
    return first;
}

QString chartTooltip(const std::vector<ReceivedMessage>& messages, const ChartRun& run, const ChartClock& clock)
{
    const ReceivedMessage& first = messages[run.messages.front()];
    QStringList lines{u"%1: %2"_s.arg(nameText(first.channel), nameText(first.name))};
    if (const QString kind = messageFields(first.channel, first.name, first.payload).enumerator; !kind.isEmpty())
        lines += kind;
    if (first.sender.isKnown())
        lines += u"from "_s + hearerTexts({first.sender}).first();
    if (first.hearers)
        lines += first.hearers->isEmpty() ? u"nobody listens"_s : u"to "_s + hearerTexts(*first.hearers).join(u", "_s);
    for (const size_t place : std::span(run.messages).first(std::min(run.messages.size(), kShownMessages))) {
        const ReceivedMessage& message = messages[place];
        lines += clock.text(messages.front().time.msecsTo(message.time)) + u"  "_s
                 + message.time.toString(u"HH:mm:ss.zzz") + u" UTC"_s;
        if (run.inTurn > 1)
            lines += u"  "_s + fullName(message);
        for (const QString& field : fieldTextsOf(message))
            lines += u"  "_s + field;
        lines += u"  %1 %2"_s.arg(counted(message.payload.size(), "byte"), payloadText(message.payload)).trimmed();
    }
    if (run.messages.size() > kShownMessages)
        lines += u"and %1 more"_s.arg(run.messages.size() - kShownMessages);
    return lines.join(u'\n');
}

QStringList chartLines(const QStringList& words, qsizetype columns, qsizetype limit)
{
    QStringList lines;
    for (const QString& word : words) {
        const bool fits = !lines.isEmpty() && columnsOf(lines.last()) + 1 + columnsOf(word) <= columns;
        if (fits)
            lines.last() += u' ' + word;
        else
            lines += word;
    }
    if (lines.size() > limit) {
        lines.resize(limit);
        lines.last() += u" \u2026"_s;
    }
    for (QString& line : lines) {
        while (columnsOf(line) > columns)
            line = elided(line, line.size() - 1);
    }
    return lines;
}

qsizetype columnsOf(const QString& text)
{
    return text.size() + std::ranges::count_if(text, [](QChar character) {
               return character >= QChar(kFirstWide) && !character.isSurrogate();
           });
}

int boldWidth(const QString& text, int size)
{
    int width = 0;
    for (const QChar character : text)
        width += boldWidth(character);
    return (width * size + 99) / 100;
}

QString elidedToWidth(const QString& text, int size, int width)
{
    QString result = elided(text, kLongestName);
    while (result.size() > 1 && boldWidth(result, size) > width)
        result = elided(result, result.size() - 1);
    return result;
}

} // namespace zyn::tool
